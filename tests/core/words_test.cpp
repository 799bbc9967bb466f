// Atomic words, unaligned access, byte order and the mapping of native numbers to results.
#include <gtest/gtest.h>
#include <qxcore/atomic.h>
#include <qxcore/bytes.h>
#include <qxcore/result.h>

#include <thread>

namespace {

TEST(Atomics, ChangesGiveTheNewValueAndExchangesTheOld) {
    uint32_t word = 0xFFFFFFFF;
    EXPECT_EQ(4u, QXAtomicAdd32(&word, 5));
    EXPECT_EQ(5u, QXAtomicIncrement(&word));
    EXPECT_EQ(4u, QXAtomicDecrement(&word));
    EXPECT_EQ(4u, QXAtomicCompareExchange(&word, 5, 4));
    EXPECT_EQ(5u, QXAtomicCompareExchange(&word, 7, 4));
    EXPECT_EQ(5u, QXAtomicExchange(&word, 9));
    EXPECT_EQ(9u, word);
    size_t size = SIZE_MAX;
    EXPECT_EQ(1u, QXAtomicAddSZ(&size, 2));
}

TEST(Atomics, LoseNoUpdateOfTwoThreads) {
    constexpr int kRounds = 20000;
    uint32_t word = 0;
    size_t size = 0;
    const auto count = [&] {
        for (int round = 0; round < kRounds; ++round) {
            QXAtomicIncrement(&word);
            QXAtomicAddSZ(&size, 2);
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(2u * kRounds, word);
    EXPECT_EQ(4u * kRounds, size);
}

TEST(UnalignedAccess, WorksAtOddAddresses) {
    unsigned char bytes[9];
    void* const place = reinterpret_cast<uintptr_t>(bytes) % 2 != 0 ? bytes : bytes + 1;
    EXPECT_EQ(place, QXPutUnalignedInt16(place, 0xFFFE));
    EXPECT_EQ(0xFFFEu, QXGetUnalignedInt16(place));
    EXPECT_EQ(place, QXPutUnalignedInt32(place, 0x89ABCDEF));
    EXPECT_EQ(0x89ABCDEFu, QXGetUnalignedInt32(place));
    EXPECT_EQ(place, QXPutUnalignedInt64(place, 0x8123456789ABCDEF));
    EXPECT_EQ(0x8123456789ABCDEFu, QXGetUnalignedInt64(place));
}

TEST(ByteOrder, IsReversed) {
    EXPECT_EQ(0x2211, QXSwapInt16(0x1122));
    EXPECT_EQ(0x44332211u, QXSwapInt32(0x11223344));
    EXPECT_EQ(0x8877665544332211u, QXSwapInt64(0x1122334455667788));
}

TEST(ResultFromNative, IsAClosedMapping) {
    struct Row {
        uint32_t native, result;
    };
    for (const Row& row : {Row{0, 0},
                           {2, 0x80070002},
                           {3, 0x80070002},
                           {5, 0x80070005},
                           {6, 0x80070006},
                           {14, 0x8007000E},
                           {32, 0x80070005},
                           {183, 0x800700B7},
                           {258, 0x800705B4},
                           {8, 0x80004005},
                           {1460, 0x80004005},
                           {0x80070002, 0x80004005}}) {
        EXPECT_EQ(static_cast<QXResult>(row.result), QXResultFromNative(row.native)) << row.native;
    }
}

}  // namespace
