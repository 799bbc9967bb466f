#include <gtest/gtest.h>
#include <qxcore/system.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

TEST(SystemInfo, FillsEachFieldAndNoPadding) {
    QXSystemInfoRecord info;
    std::memset(&info, 0xA5, sizeof info);
    ASSERT_EQ(QXGetSystemInfo(&info, 0), QX_S_OK);
    EXPECT_LE(info.availablePhysicalMemory, info.totalPhysicalMemory);
    EXPECT_LT(info.availableVirtualMemory, info.totalVirtualMemory);
    EXPECT_EQ(info.pageSize & (info.pageSize - 1), 0u);
    EXPECT_EQ(info.allocationGranularity % info.pageSize, 0u);
    EXPECT_EQ(info.reservedZero, 0u);
#if defined(__x86_64__)
    EXPECT_EQ(info.processorType, 8664u);
    EXPECT_GT(info.processorLevel, 0u);
#endif
    unsigned char bytes[sizeof info];
    std::memcpy(bytes, &info, sizeof info);
    for (size_t i = offsetof(QXSystemInfoRecord, buildNumber) + 2; i < sizeof info; ++i) {
        EXPECT_EQ(bytes[i], 0xA5u);
    }
}

TEST(SystemInfo, UserNameFitsABufferOfItsLengthAndOne) {
    wchar name[300];
    ASSERT_EQ(QXGetUserName(name, 300), QX_S_OK);
    const auto length = static_cast<uint32_t>(std::u16string(name).size());
    ASSERT_GT(length, 0u);
    std::vector<wchar> exact(length + 1, u'?');
    EXPECT_EQ(QXGetUserName(exact.data(), length), QX_E_FAIL);
    EXPECT_EQ(exact, std::vector<wchar>(length + 1, u'?'));
    EXPECT_EQ(QXGetUserName(exact.data(), length + 1), QX_S_OK);
    EXPECT_EQ(exact.data(), std::u16string(name));
}

}  // namespace
