#include <gtest/gtest.h>
#include <qxcore/result.h>

namespace {

TEST(ResultFromNative, IsAClosedMapping) {
    struct Row {
        uint32_t native;
        uint32_t result;
    };
    constexpr Row kRows[] = {
        {0, 0},
        {1, 0x80004005},
        {2, 0x80070002},
        {3, 0x80070002},
        {4, 0x80004005},
        {5, 0x80070005},
        {6, 0x80070006},
        {8, 0x80004005},
        {14, 0x8007000E},
        {32, 0x80070005},
        {183, 0x800700B7},
        {258, 0x800705B4},
        {1460, 0x80004005},
        {0x80070002, 0x80004005},
        {0xFFFFFFFF, 0x80004005},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(static_cast<QXResult>(row.result), QXResultFromNative(row.native)) << row.native;
    }
}

}  // namespace
