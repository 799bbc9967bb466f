#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Behind it, since it needs its types.
#include <shellapi.h>

#include <cstdio>

#include "failure.h"
#include "platform.h"

namespace {

std::string Utf8Of(const wchar_t* text) {
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

// The system saves and brings back keys for whom these rights are on.
void TakeRight(const wchar_t* name) {
    HANDLE token = nullptr;
    TOKEN_PRIVILEGES rights{.PrivilegeCount = 1, .Privileges = {{{}, SE_PRIVILEGE_ENABLED}}};
    if (::OpenProcessToken(::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token) != 0) {
        if (::LookupPrivilegeValueW(nullptr, name, &rights.Privileges[0].Luid) != 0) {
            ::AdjustTokenPrivileges(token, FALSE, &rights, 0, nullptr, nullptr);
        }
        ::CloseHandle(token);
    }
}

class StoreKey {
  public:
    StoreKey(Store store, const wchar_t* right) {
        TakeRight(right);
        const bool isUser = store == Store::kUser;
        Check(::RegOpenKeyExW(isUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE,
                              isUser ? nullptr : L"Software", 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY,
                              &m_key));
    }
    ~StoreKey() { ::RegCloseKey(m_key); }
    StoreKey(const StoreKey&) = delete;
    StoreKey& operator=(const StoreKey&) = delete;

    static void Check(LSTATUS status) {
        if (status != ERROR_SUCCESS) {
            throw Failure("the system refuses it with its error " + std::to_string(status));
        }
    }
    HKEY Get() const { return m_key; }

  private:
    HKEY m_key = nullptr;
};

}  // namespace

std::vector<std::string> PrepareProgram(int, char**) {
    for (std::FILE* const stream : {stdin, stdout, stderr}) {
        ::_setmode(::_fileno(stream), _O_BINARY);
    }
    ::SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    wchar_t** const arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back(Utf8Of(arguments[i]));
    }
    ::LocalFree(arguments);
    return texts;
}

bool IsErrorTerminal() {
    return ::_isatty(::_fileno(stderr)) != 0;
}

bool FlushToDisk(const std::filesystem::path& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    const bool isDone = file != INVALID_HANDLE_VALUE && ::FlushFileBuffers(file) != 0;
    if (file != INVALID_HANDLE_VALUE) {
        ::CloseHandle(file);
    }
    return isDone;
}

// The system does not write over a file.
void BackUpStore(Store store, const std::filesystem::path& file) {
    const StoreKey key(store, L"SeBackupPrivilege");
    StoreKey::Check(::RegSaveKeyExW(key.Get(), file.c_str(), nullptr, REG_LATEST_FORMAT));
}

void RestoreStore(Store store, const std::filesystem::path& file) {
    const StoreKey key(store, L"SeRestorePrivilege");
    StoreKey::Check(::RegRestoreKeyW(key.Get(), file.c_str(), REG_FORCE_RESTORE));
}
