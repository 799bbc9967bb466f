#include <gtest/gtest.h>
#include <qxcore/memory.h>
#include <qxcore/result.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

bool IsZero(const void* bytes, size_t size) {
    const auto* first = static_cast<const char*>(bytes);
    return std::all_of(first, first + size, [](char byte) { return byte == 0; });
}

TEST(Memory, BlocksAreAlignedAndTheirSizeIsExact) {
    for (const size_t size : {0, 1, 15, 16, 17, 4096, 1000000}) {
        void* block = nullptr;
        ASSERT_EQ(QX_S_OK, QXMalloc(size, &block)) << size;
        ASSERT_NE(nullptr, block);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t));
        EXPECT_EQ(size, QXMallocSize(block));
        std::memset(block, 0xA5, size);
        ASSERT_EQ(QX_S_OK, QXRealloc(&block, size + 3));
        EXPECT_EQ(size + 3, QXMallocSize(block));
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t));
        EXPECT_EQ(QX_S_OK, QXFree(block));
    }
    EXPECT_EQ(0u, QXMallocSize(nullptr));
    EXPECT_EQ(QX_S_OK, QXFree(nullptr));
}

TEST(Memory, WhatDoesNotFitFailsAndLeavesTheOldBlock) {
    for (const size_t size : {SIZE_MAX, SIZE_MAX - 15, SIZE_MAX - 16, SIZE_MAX / 2 + 1}) {
        void* block = &block;
        EXPECT_EQ(QX_E_OUTOFMEMORY, QXMalloc(size, &block));
        EXPECT_EQ(nullptr, block);
        block = &block;
        EXPECT_EQ(QX_E_OUTOFMEMORY, QXCalloc(size, 1, &block));
        EXPECT_EQ(nullptr, block);
        ASSERT_EQ(QX_S_OK, QXMalloc(4, &block));
        std::memcpy(block, "abc", 4);
        void* const before = block;
        EXPECT_EQ(QX_E_OUTOFMEMORY, QXRealloc(&block, size));
        EXPECT_EQ(QX_E_OUTOFMEMORY, QXRecalloc(&block, size));
        EXPECT_EQ(before, block);
        EXPECT_STREQ("abc", static_cast<char*>(block));
        QXFree(block);
    }
    void* block = nullptr;
    EXPECT_EQ(QX_E_OUTOFMEMORY, QXCalloc(SIZE_MAX / 4, 8, &block));
    EXPECT_EQ(QX_E_OUTOFMEMORY, QXRecalloc(&block, SIZE_MAX));
    EXPECT_EQ(nullptr, block);
}

TEST(Memory, CallocAndRecallocGiveZeroBytes) {
    void* block = nullptr;
    ASSERT_EQ(QX_S_OK, QXCalloc(3, 5, &block));
    EXPECT_EQ(15u, QXMallocSize(block));
    EXPECT_TRUE(IsZero(block, 15));
    QXFree(block);
    block = nullptr;
    ASSERT_EQ(QX_S_OK, QXRecalloc(&block, 16));
    EXPECT_TRUE(IsZero(block, 16));
    std::memset(block, 0xFF, 16);
    ASSERT_EQ(QX_S_OK, QXRecalloc(&block, 8));
    ASSERT_EQ(QX_S_OK, QXRecalloc(&block, 4000));
    EXPECT_EQ(0, std::memcmp(block, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8));
    EXPECT_TRUE(IsZero(static_cast<char*>(block) + 8, 4000 - 8));
    void* const before = block;
    EXPECT_EQ(QX_S_OK, QXRecalloc(&block, 0));
    EXPECT_EQ(before, block);  // it points at freed memory, as told
}

TEST(Memory, SizesOfZeroMakeFreeAndKeepEmptyBlocks) {
    void* block = nullptr;
    ASSERT_EQ(QX_S_OK, QXMalloc(10, &block));
    EXPECT_EQ(QX_S_OK, QXRealloc(&block, 0));
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(QX_S_OK, QXRealloc(&block, 0));
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(0u, QXMallocSize(block));
    void* const before = block;
    EXPECT_EQ(QX_E_POINTER, QXRecalloc(&block, 8));  // before it is touched
    EXPECT_EQ(before, block);
    EXPECT_EQ(QX_S_OK, QXRecalloc(&block, 0));
    EXPECT_EQ(8u, QXGetAlignedSize(1));
    EXPECT_EQ(8u, QXGetAlignedSize(8));
    EXPECT_EQ(0u, QXGetAlignedSize(SIZE_MAX - 6));
}

}  // namespace
