// Reading reports of lock statistics, and making a page of them.
#include <gtest/gtest.h>
#include <qxlockreport/page.h>
#include <qxlockreport/report.h>

#include <sstream>
#include <string>

namespace {

const std::string kHead =
    "CPU Frequency,1000000\n"
    "Name/Handle,Held Count,Total Held Time,Max Held Time,Acquire Count,Total Acquire Time,"
    "Max Acquire Time,Contention Count\n";

LockReport Read(const std::string& text) {
    std::istringstream in(text);
    return ReadLockReport(in);
}

TEST(LockReportText, EachDumpHasItsTitleItsTimeAndItsRows) {
    const std::string text =
        "BeginLockStatistics: a - b - 11/21/2026 17:00:00\r\n" + kHead +
        "QX_MUTEX:0x00000000000000AF(a,b(c),1),2),1,2,3,4,5,6,7\r\n"
        "QX_DEL_MUTEX:0x00000000000000B0(),1,-2,3,4,9223372036854775807,6,7\r\n"
        "EndLockStatistics: a - b - 11/21/2026 17:00:00\r\n\r\n\r\n"
        "BeginLockStatistics: second - 11/21/2026 17:00:01\n" +
        kHead +
        "QX_MUTEX:0x00000000000000AF(two\nlines),1,2,3,4,5,6,7\n"
        "QX_MUTEX:0x00000000000000AF(cut),1,2,\n"
        "QX_MUTEX:0x00000000000000AF(behind),1,2,3,4,5,6,7\n"
        "noise\n"
        "QX_MUTEX:0x00000000000000AF(cut";
    const LockReport report = Read(text);
    ASSERT_EQ(2u, report.m_dumps.size());
    EXPECT_EQ("a - b", report.m_dumps[0].m_title);
    EXPECT_EQ("11/21/2026 17:00:00", report.m_dumps[0].m_time);
    EXPECT_TRUE(report.m_dumps[0].m_isWhole);
    EXPECT_FALSE(report.m_dumps[1].m_isWhole);
    EXPECT_EQ(3, report.m_strangeLines);
    ASSERT_EQ(2u, report.m_dumps[0].m_rows.size());
    const LockRow& live = report.m_dumps[0].m_rows[0];
    EXPECT_EQ("a,b(c),1),2", live.m_name);
    EXPECT_EQ("00000000000000AF", live.m_address);
    EXPECT_EQ((std::array<int64_t, kFigureCount>{1, 2, 3, 4, 5, 6, 7}), live.m_figures);
    const LockRow& retired = report.m_dumps[0].m_rows[1];
    EXPECT_FALSE(live.m_isRetired);
    EXPECT_TRUE(retired.m_isRetired);
    EXPECT_EQ("", retired.m_name);
    EXPECT_EQ(-2, retired.m_figures[kTotalHeldTime]);
    EXPECT_EQ(INT64_MAX, retired.m_figures[kTotalAcquireTime]);
    ASSERT_EQ(2u, report.m_dumps[1].m_rows.size());
    EXPECT_EQ("two\nlines", report.m_dumps[1].m_rows[0].m_name);
    EXPECT_EQ("behind", report.m_dumps[1].m_rows[1].m_name);
}

TEST(LockReportPage, NoNameBreaksOutOfIt) {
    std::ostringstream out;
    const LockReport report = Read(
        "BeginLockStatistics: <b>\"{{js}} - 11/21/2026 17:00:00\n" + kHead +
        "QX_MUTEX:0x00000000000000AF(</script><script>x(\\'1')//\x01\xFF\xC0\x80\xE2\x82\xC3\xA4)"
        ",1,2,3,4,5,6,7\n");
    WritePage(report, "source", out);
    const std::string page = out.str();
    EXPECT_EQ(page.npos, page.find("<b>"));
    EXPECT_EQ(page.npos, page.find("<script>x"));
    EXPECT_NE(page.npos, page.find("\"title\":\"\\u003cb\\u003e\\u0022{{js}}\""));
    EXPECT_NE(
        page.npos,
        page.find("[0,\"00000000000000AF\",\"\\u003c/script\\u003e\\u003cscript\\u003ex("
                  "\\u005c\\u00271\\u0027)//\\u0001\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\xC3\xA4\""
                  ",1,2,3,4,5,6,7]"));
}

}  // namespace
