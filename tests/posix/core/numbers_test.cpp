// The native numbers behind results that say less, and what a failing operation leaves alone.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <functional>

#include "platform/files.h"
#include "platform/handles.h"
#include "platform/libraries.h"
#include "platform/multibyte.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/shared.h"
#include "platform/threads.h"
#include "support/failure.h"
#include "support/system.h"

namespace {

using namespace platform;

constexpr u32 kAccess = kKeyAllAccess | kKeyWow64View64;

struct Row {
    const char* what;
    u32 number;
    std::function<u32()> call;
};

TEST(Numbers, OfTheRegistryAreItsResultsAndNoLastErrors) {
    const OwnRegistry registry;
    HKEY key = nullptr, gone = nullptr, below = nullptr, none = nullptr;
    u32 disposition = 0;
    const auto create = [&](HKEY parent, const char16_t* name, HKEY* out) {
        RegCreateKeyExW(parent, name, 0, nullptr, 0, kAccess, nullptr, out, &disposition);
    };
    create(PredefinedKey(kHkeyCurrentUser), u"k", &key);
    create(key, u"longer", &gone);
    WriteRegistryValue(key, u"", 0, nullptr, u"value", kRegBinary, "data", 4);
    RegDeleteKeyExW(key, u"longer", kKeyWow64View64, 0);
    create(key, u"below", &below);
    char16_t name[3];
    u32 length = 0;
    const auto nameKey = [&](HKEY parent, u32 index) {
        return RegEnumKeyExW(parent, index, name, &(length = 3), nullptr, nullptr, nullptr,
                             nullptr);
    };
    const auto nameValue = [&](u32 index, u32 room) {
        return RegEnumValueW(key, index, name, &(length = room), nullptr, nullptr, nullptr,
                             nullptr);
    };
    const auto query = [&](const char16_t* value, void* data, u32* size) {
        return RegQueryValueExW(key, value, nullptr, nullptr, data, size);
    };
    u32 small = 2;
    const Row rows[] = {
        {"a name that does not fit", kErrorMoreData, [&] { return nameKey(key, 0); }},
        {"a value's name that does not fit", kErrorMoreData, [&] { return nameValue(0, 3); }},
        {"behind the last", kErrorNoMoreItems, [&] { return nameKey(key, 1); }},
        {"behind the last value", kErrorNoMoreItems, [&] { return nameValue(1, 10); }},
        {"a key that is gone", kErrorKeyDeleted, [&] { return nameKey(gone, 0); }},
        {"a small buffer", kErrorMoreData, [&] { return query(u"value", name, &small); }},
        {"no value", kErrorFileNotFound, [&] { return query(u"none", nullptr, nullptr); }},
        {"no store", kErrorFileNotFound,
         [&] {
             return RegOpenKeyExW(PredefinedKey(kHkeyLocalMachine), u"k", 0,
                                  kKeyRead | kKeyWow64View64, &none);
         }},
        {"no key", kErrorInvalidHandle, [] { return RegCloseKey(nullptr); }},
    };
    for (const Row& row : rows) {
        u32 number = 0;
        EXPECT_EQ(kNoNumber, LastErrorOf([&] { number = row.call(); })) << row.what;
        EXPECT_EQ(row.number, number) << row.what;
    }
    for (const HKEY each : {key, gone, below}) {
        RegCloseKey(each);
    }
}

// Each call fails, so it gives 0.
TEST(Numbers, AreTheLastErrorsOfOtherOperations) {
    const TemporaryDirectory directory;
    const std::u16string here = directory.Path().u16string();
    const std::u16string missing = here + u"/missing";
    const std::u16string full = here + u"/file";
    WriteFile(full, "text");
    char narrow[4];
    char16_t wide[264];
    u32 done = 0;
    u64 position = 0;
    STARTUPINFOW startup = {};
    PROCESS_INFORMATION information = {};
    const auto open = [](const std::u16string& path, u32 access, u32 disposition) -> u32 {
        const HANDLE file = CreateFileW(path.c_str(), access, 0, disposition, kAttributeNormal);
        return file != QX_INVALID_HANDLE;
    };
    const auto start = [&](const std::u16string& program, const char16_t* in) -> u32 {
        std::u16string line = program;
        return CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, true,
                              kCreateUnicodeEnvironment, nullptr, in, &startup, &information);
    };
    const HANDLE file = CreateFileW(full.c_str(), kGenericRead, 0, kOpenExisting, kAttributeNormal);
    const HANDLE mapping =
        CreateFileMappingW(QX_INVALID_HANDLE, nullptr, kPageReadWrite, 0, 10, u"SHM:numbers");
    CloseHandle(mapping);
    const Row rows[] = {
        {"no file", kErrorFileNotFound, [&] { return open(missing, kGenericRead, kOpenExisting); }},
        {"a file that is there", kErrorFileExists,
         [&] { return open(full, kGenericWrite, kCreateNew); }},
        {"a directory", kErrorAccessDenied,
         [&] { return open(here, kGenericRead, kOpenExisting); }},
        {"no write access", kErrorAccessDenied, [&] { return WriteFile(file, "x", 1, &done); }},
        {"before the start", kErrorNegativeSeek,
         [&] { return SetFilePointerEx(file, -1, &position, 0); }},
        {"no lock", kErrorNotLocked, [&] { return UnlockFile(file, 0, 1); }},
        {"nothing to delete", kErrorFileNotFound, [&] { return DeleteFileW(missing.c_str()); }},
        {"a directory that is there", kErrorAlreadyExists,
         [&] { return CreateDirectoryW(here.c_str()); }},
        {"a directory in use", kErrorDirectoryNotEmpty,
         [&] { return RemoveDirectoryW(here.c_str()); }},
        {"no directory to remove", kErrorDirectory, [&] { return RemoveDirectoryW(full.c_str()); }},
        {"an empty path", kErrorInvalidName, [&] { return GetFullPathNameW(u"", 264, wide); }},
        {"no library", kErrorModuleNotFound,
         [&] { return LoadLibraryW(missing.c_str()) != nullptr; }},
        {"text for a library", kErrorBadExeFormat,
         [&] { return LoadLibraryW(full.c_str()) != nullptr; }},
        {"no symbol's library", kErrorModuleNotFound,
         [&] { return GetProcAddress(nullptr, "x") != nullptr; }},
        {"a closed library", kErrorInvalidHandle, [] { return FreeLibrary(nullptr); }},
        {"no mapping", kErrorFileNotFound,
         [] { return OpenFileMappingW(kFileMapRead, false, u"SHM:none") != nullptr; }},
        {"a mapping of nothing", kErrorInvalidParameter,
         [] {
             return CreateFileMappingW(QX_INVALID_HANDLE, nullptr, kPageReadWrite, 0, 0,
                                       u"SHM:none") != nullptr;
         }},
        {"a closed mapping", kErrorInvalidHandle,
         [&] { return MapViewOfFile(mapping, kFileMapRead, 0, 0, 0) != nullptr; }},
        {"no view", kErrorInvalidAddress, [&] { return UnmapViewOfFile(wide); }},
        {"no program", kErrorFileNotFound, [&] { return start(missing, nullptr); }},
        {"text for a program", kErrorAccessDenied, [&] { return start(full, nullptr); }},
        {"no directory for a program", kErrorDirectory,
         [&] { return start(u"/bin/true", missing.c_str()); }},
        {"no process", kErrorInvalidParameter,
         [] { return OpenProcess(kProcessQueryAndRead, false, 0x7FFFFFF0) != nullptr; }},
        {"no processor", kErrorInvalidParameter,
         [] { return u32(SetThreadAffinityMask(GetCurrentThread(), 0)); }},
        {"nobody to wait for", kErrorInvalidParameter,
         [] { return WaitForMultipleObjects(0, nullptr, false, kInfinite) != kWaitFailed; }},
        {"text that does not fit", kErrorInsufficientBuffer,
         [&] { return u32(WideCharToMultiByte(u"abcde", 5, narrow, 4)); }},
        {"narrow text that does not fit", kErrorInsufficientBuffer,
         [&] { return u32(MultiByteToWideChar("abc", 3, wide, 2)); }},
    };
    for (const Row& row : rows) {
        u32 result = 1;
        EXPECT_EQ(row.number, LastErrorOf([&] { result = row.call(); })) << row.what;
        EXPECT_EQ(0u, result) << row.what;
    }
    CloseHandle(file);
}

}  // namespace
