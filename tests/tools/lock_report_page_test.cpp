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

std::string PageOf(const std::string& text) {
    std::istringstream in(text);
    std::ostringstream out;
    WritePage(ReadLockReport(in), "source", out);
    return out.str();
}

TEST(LockReportText, EachDumpHasItsTitleItsTimeAndItsRows) {
    const std::string page =
        PageOf("BeginLockStatistics: a - b - 11/21/2026 17:00:00\r\n" + kHead +
               "QX_MUTEX:0x00000000000000AF(a,b(c),1),2),1,2,3,4,5,6,7\r\n"
               "QX_DEL_MUTEX:0x00000000000000B0(),1,-2,3,4,9223372036854775807,6,7\r\n"
               "EndLockStatistics: a - b - 11/21/2026 17:00:00\r\n\r\n\r\n"
               "BeginLockStatistics: second - 11/21/2026 17:00:01\n" +
               kHead +
               "QX_MUTEX:0x00000000000000AF(two\nlines),1,2,3,4,5,6,7\n"
               "QX_MUTEX:0x00000000000000AF(cut),1,2,\n"
               "QX_MUTEX:0x00000000000000AF(behind),1,2,3,4,5,6,7\n"
               "noise\n"
               "QX_MUTEX:0x00000000000000AF(cut");
    EXPECT_NE(
        page.npos,
        page.find(
            "\"strangeLines\":3,\"dumps\":["
            "{\"title\":\"a - b\",\"time\":\"11/21/2026 17:00:00\",\"whole\":true,\"rows\":["
            "[0,\"00000000000000AF\",\"a,b(c),1),2\",1,2,3,4,5,6,7],\n"
            "[1,\"00000000000000B0\",\"\",1,-2,3,4,9223372036854775807,6,7]]},\n"
            "{\"title\":\"second\",\"time\":\"11/21/2026 17:00:01\",\"whole\":false,\"rows\":["
            "[0,\"00000000000000AF\",\"two\\u000alines\",1,2,3,4,5,6,7],\n"
            "[0,\"00000000000000AF\",\"behind\",1,2,3,4,5,6,7]]}]}"))
        << page;
}

TEST(LockReportPage, NoNameBreaksOutOfIt) {
    const std::string page = PageOf(
        "BeginLockStatistics: <b>\"{{js}} - 11/21/2026 17:00:00\n" + kHead +
        "QX_MUTEX:0x00000000000000AF(</script><script>x(\\'1')//\x01\xFF\xC0\x80\xE2\x82\xC3\xA4)"
        ",1,2,3,4,5,6,7\n");
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
