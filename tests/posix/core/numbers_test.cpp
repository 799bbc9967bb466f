// The native numbers behind results that say less, and what an operation leaves alone.
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/errors.h"
#include "platform/multibyte.h"
#include "platform/registry.h"
#include "support/system.h"

namespace {

using namespace platform;

constexpr u32 kAccess = kKeyAllAccess | kKeyWow64View64;

struct OpenKeys {
    OpenKeys() {
        u32 disposition = 0;
        RegCreateKeyExW(PredefinedKey(kHkeyCurrentUser), u"k", 0, nullptr, 0, kAccess, nullptr,
                        &m_key, &disposition);
        RegCreateKeyExW(m_key, u"longer", 0, nullptr, 0, kAccess, nullptr, &m_gone, &disposition);
        RegSetValueExW(m_key, u"value", 0, kRegBinary, "data", 4);
        RegDeleteKeyExW(m_key, u"longer", kKeyWow64View64, 0);
        RegCreateKeyExW(m_key, u"below", 0, nullptr, 0, kAccess, nullptr, &m_below, &disposition);
    }
    ~OpenKeys() {
        for (const HKEY key : {m_key, m_gone, m_below}) {
            RegCloseKey(key);
        }
    }

    HKEY m_key = nullptr;
    HKEY m_gone = nullptr;
    HKEY m_below = nullptr;
};

TEST(Numbers, FailuresOfTheRegistryHaveTheirsAndLeaveErrnoAndTheLastErrorAlone) {
    const OwnRegistry registry;
    const OpenKeys keys;
    char16_t name[3];
    u32 length = 3;
    u32 room = 10;
    char data[2];
    u32 small = 2;
    HKEY none = nullptr;
    errno = 4711;
    SetLastError(815);
    const struct {
        const char* what;
        u32 number;
        u32 expected;
    } rows[] = {
        {"a name that does not fit",
         RegEnumKeyExW(keys.m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
         kErrorMoreData},
        {"a value's name that does not fit",
         RegEnumValueW(keys.m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
         kErrorMoreData},
        {"behind the last",
         RegEnumKeyExW(keys.m_key, 1, name, &length, nullptr, nullptr, nullptr, nullptr),
         kErrorNoMoreItems},
        {"behind the last value",
         RegEnumValueW(keys.m_key, 1, name, &room, nullptr, nullptr, nullptr, nullptr),
         kErrorNoMoreItems},
        {"a key that is gone",
         RegEnumKeyExW(keys.m_gone, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
         kErrorKeyDeleted},
        {"a small buffer", RegQueryValueExW(keys.m_key, u"value", nullptr, nullptr, data, &small),
         kErrorMoreData},
        {"no value", RegQueryValueExW(keys.m_key, u"none", nullptr, nullptr, nullptr, nullptr),
         kErrorFileNotFound},
        {"no store",
         RegOpenKeyExW(PredefinedKey(kHkeyLocalMachine), u"k", 0, kKeyRead | kKeyWow64View64,
                       &none),
         kErrorFileNotFound},
        {"no key", RegCloseKey(nullptr), kErrorInvalidHandle},
    };
    EXPECT_EQ(4711, errno);
    EXPECT_EQ(815u, GetLastError());
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, row.number) << row.what;
    }
}

TEST(Numbers, TextThatDoesNotFitIsAnInsufficientBuffer) {
    char narrow[2];
    char16_t wide[2];
    errno = 4711;
    EXPECT_EQ(0, WideCharToMultiByte(u"abc", 3, narrow, 2));
    EXPECT_EQ(u32{kErrorInsufficientBuffer}, GetLastError());
    SetLastError(0);
    EXPECT_EQ(0, MultiByteToWideChar("abc", 3, wide, 2));
    EXPECT_EQ(u32{kErrorInsufficientBuffer}, GetLastError());
    EXPECT_EQ(4711, errno);
}

}  // namespace
