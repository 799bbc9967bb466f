// Objects that are shared by name, as one process sees them.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "support/failure.h"
#include "support/unique_name.h"

namespace {

constexpr uint32_t kReadWrite = QX_FILE_READ | QX_FILE_WRITE;
constexpr uint32_t kCreateNew = QX_FILE_CREATE | QX_FILE_EXCLUSIVE;
constexpr QXResult kNew = 2;

QXHandle OpenSemaphore(const std::string& name, uint32_t count) {
    QXHandle semaphore = nullptr;
    EXPECT_EQ(QX_S_OK, QXNamedSemOpen(name.c_str(), count, &semaphore));
    return semaphore;
}

QXResult OpenMemory(const std::string& name, uint32_t flags, uint32_t size, QXHandle* out) {
    *out = nullptr;
    return QXSharedMemOpen(name.c_str(), flags, 0, size, out);
}

char* Attach(QXHandle mapping, uint32_t flags = kReadWrite) {
    void* view = nullptr;
    EXPECT_EQ(QX_S_OK, QXSharedMemAttach(mapping, flags, &view));
    return static_cast<char*>(view);
}

TEST(NamedSemaphore, OneNameIsOneCountUntilTheLastClose) {
    const std::string name = UniqueName();
    const QXHandle first = OpenSemaphore(name, 1);
    const QXHandle second = OpenSemaphore(name, 5);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(second));
    EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(first));
    EXPECT_EQ(QX_S_OK, QXNamedSemPost(first));
    uint32_t value = 0;
    EXPECT_EQ(QX_S_OK, QXNamedSemGetValue(first, &value));
    EXPECT_EQ(UINT32_MAX, value);
    EXPECT_EQ(QX_S_OK, QXNamedSemClose(first));
    EXPECT_EQ(QX_S_OK, QXNamedSemWait(second));
    EXPECT_EQ(QX_S_OK, QXNamedSemClose(second));
    const QXHandle fresh = OpenSemaphore(name, 1);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(fresh));
    EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(fresh));
    EXPECT_EQ(QX_S_OK, QXNamedSemClose(nullptr));
}

TEST(NamedSemaphore, CountsUpTo32767) {
    const QXHandle semaphore = OpenSemaphore(UniqueName(), 32766);
    EXPECT_EQ(QX_S_OK, QXNamedSemPost(semaphore));
    EXPECT_EQ(QX_E_FAIL, QXNamedSemPost(semaphore));
    for (int taken = 0; taken < 32767; ++taken) {
        ASSERT_EQ(QX_S_OK, QXNamedSemTryWait(semaphore));
    }
    EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
    QXNamedSemClose(semaphore);
    QXHandle refused = nullptr;
    EXPECT_EQ(QX_E_FAIL, QXNamedSemOpen(UniqueName().c_str(), 32768, &refused));
    EXPECT_EQ(QX_INVALID_HANDLE, refused);
}

TEST(SharedMem, FlagsDecideBetweenOpeningAndCreating) {
    const struct {
        uint32_t flags;
        uint32_t size;
        QXResult whenMissing;
        QXResult whenThere;
    } rows[] = {
        {kReadWrite | QX_FILE_CREATE, 100, kNew, QX_S_OK},
        {QX_FILE_EXCLUSIVE, 1, kNew, QX_S_OK},
        {kCreateNew, 100, kNew, QX_E_FAIL},
        {QX_FILE_CREATE, 0, QX_E_FAIL, QX_E_FAIL},
        {0, 100, QX_E_NOTFOUND, kNew},
        {kReadWrite, 0, QX_E_NOTFOUND, kNew},
    };
    for (const auto& row : rows) {
        const std::string name = UniqueName();
        const QXHandle semaphore = OpenSemaphore(name, 0);  // another name space
        QXHandle there = QX_INVALID_HANDLE;
        for (const QXResult expected : {row.whenMissing, row.whenThere}) {
            QXHandle mapping;
            const ErrnoStays errnoStays;
            EXPECT_EQ(expected, OpenMemory(name, row.flags, row.size, &mapping)) << row.flags;
            EXPECT_EQ(QX_FAILED(expected), mapping == QX_INVALID_HANDLE) << row.flags;
            if (QX_SUCCEEDED(expected)) {
                EXPECT_EQ(QX_S_OK, QXSharedMemClose(mapping));
            }
            if (there == QX_INVALID_HANDLE) {
                EXPECT_EQ(kNew, OpenMemory(name, QX_FILE_CREATE, 10, &there));
            }
        }
        EXPECT_EQ(QX_S_OK, QXSharedMemClose(there));
        QXNamedSemClose(semaphore);
    }
}

TEST(SharedMem, NamesFitOrAreRefused) {
    QXHandle mapping;
    EXPECT_EQ(QX_E_FAIL, OpenMemory(std::string(508, 'n'), QX_FILE_CREATE, 1, &mapping));
    EXPECT_EQ(QX_INVALID_HANDLE, mapping);
    std::string longest = (UniqueName() + std::string(507, 'n')).substr(0, 507);
    EXPECT_EQ(kNew, OpenMemory(longest, QX_FILE_CREATE, 1, &mapping));
    longest.back() = 'm';
    QXHandle other;
    EXPECT_EQ(kNew, OpenMemory(longest, QX_FILE_CREATE, 1, &other));
    QXSharedMemClose(other);
    QXSharedMemClose(mapping);
}

TEST(SharedMem, ViewsShowEachOthersWritesAndOutliveTheHandle) {
    const std::string name = UniqueName();
    QXHandle first;
    QXHandle second;
    ASSERT_EQ(kNew, OpenMemory(name, QX_FILE_CREATE, 5000, &first));
    ASSERT_EQ(QX_S_OK, OpenMemory(name, QX_FILE_CREATE, 1, &second));
    char* const view = Attach(first);
    char* const other = Attach(second, QX_FILE_READ);
    EXPECT_EQ(std::string(8192, '\0'), std::string(view, 8192));
    std::memset(view, 'x', 8192);  // whole pages
    EXPECT_EQ(std::string(8192, 'x'), std::string(other, 8192));
    EXPECT_EQ(QX_S_OK, QXSharedMemClose(first));
    EXPECT_EQ(QX_S_OK, QXSharedMemClose(second));
    EXPECT_EQ(QX_S_OK, QXSharedMemDetach(other));
    QXHandle again;
    EXPECT_EQ(ViewsKeepTheNameOfAMapping() ? QX_S_OK : kNew,
              OpenMemory(name, QX_FILE_CREATE, 1, &again));
    EXPECT_EQ(QX_S_OK, QXSharedMemClose(again));
    EXPECT_EQ(QX_S_OK, QXSharedMemDetach(view));
    EXPECT_EQ(QX_E_NOTFOUND, OpenMemory(name, 0, 1, &again));
}

TEST(SharedMem, AttachTakesTheWholeFlagWord) {
    const std::string name = UniqueName();
    QXHandle all, reading, writing;
    ASSERT_EQ(kNew, OpenMemory(name, QX_FILE_CREATE, 10, &all));
    ASSERT_EQ(kNew, OpenMemory(name, QX_FILE_READ, 0, &reading));
    ASSERT_EQ(kNew, OpenMemory(name, kReadWrite, 0, &writing));
    for (const auto& [mapping, flags, result] : {std::tuple{all, QX_FILE_READ, QX_S_OK},
                                                 {all, QX_FILE_WRITE, QX_S_OK},
                                                 {reading, QX_FILE_READ, QX_S_OK},
                                                 {writing, kReadWrite, QX_S_OK},
                                                 {reading, kReadWrite, QX_E_ACCESSDENIED},
                                                 {writing, QX_FILE_READ, QX_E_ACCESSDENIED}}) {
        void* view = &view;
        EXPECT_EQ(result, QXSharedMemAttach(mapping, flags, &view)) << flags;
        EXPECT_EQ(QX_FAILED(result), view == &view);
        if (QX_SUCCEEDED(result)) {
            if (flags != QX_FILE_READ) {
                static_cast<char*>(view)[9] = 'x';
            }
            QXSharedMemDetach(view);
        }
    }
    for (const QXHandle mapping : {all, reading, writing}) {
        QXSharedMemClose(mapping);
    }
}

TEST(SharedMem, WhatIsNoHandleOrViewIsRefused) {
    QXHandle mapping;
    ASSERT_EQ(kNew, OpenMemory(UniqueName(), QX_FILE_CREATE, 10, &mapping));
    char* const view = Attach(mapping);
    EXPECT_EQ(QX_S_OK, QXSharedMemClose(mapping));
    EXPECT_EQ(QX_E_HANDLE, QXSharedMemClose(mapping));
    EXPECT_EQ(QX_E_HANDLE, QXSharedMemClose(nullptr));
    void* none = &none;
    const ErrnoStays errnoStays;
    EXPECT_EQ(QX_E_HANDLE, QXSharedMemAttach(mapping, kReadWrite, &none));
    EXPECT_EQ(&none, none);
    std::vector<char> memory(4096, 'm');
    EXPECT_EQ(QX_E_FAIL, QXSharedMemDetach(memory.data()));
    EXPECT_EQ('m', memory[0]);
    EXPECT_EQ(QX_S_OK, QXSharedMemDetach(view));
    EXPECT_EQ(QX_E_FAIL, QXSharedMemDetach(view));
}

TEST(RestrictedDescriptor, AdmitsAuthenticatedUsersAlone) {
    alignas(8) unsigned char descriptor[QX_SECURITY_DESCRIPTOR_SIZE];
    std::memset(descriptor, 0xEE, sizeof descriptor);
    void* list = nullptr;
    ASSERT_EQ(QX_S_OK, QXWinBuildRestrictedSD(descriptor, 0x1F0003, &list));
    unsigned char expected[QX_SECURITY_DESCRIPTOR_SIZE] = {1, 0, 4, 0};
    std::memcpy(expected + 32, &list, sizeof list);
    // The bytes 4 to 7 lie between two fields.
    EXPECT_EQ(0, std::memcmp(expected, descriptor, 4));
    EXPECT_EQ(0, std::memcmp(expected + 8, descriptor + 8, sizeof expected - 8));
    const unsigned char entry[] = {2,    0, 28, 0, 1, 0, 0, 0, 0, 0, 20, 0, 3, 0,
                                   0x1F, 0, 1,  1, 0, 0, 0, 0, 0, 5, 11, 0, 0, 0};
    EXPECT_EQ(0, std::memcmp(entry, list, sizeof entry));
    QXWinFreeRestrictedSD(list);
    QXWinFreeRestrictedSD(nullptr);
}

}  // namespace
