// Names and values are UTF-8 in the process's environment and compare with case. A byte that is no
// part of well-formed UTF-8 reads as U+FFFD. A program that runs with more rights than its caller
// has no environment here: the caller made it, and what is expanded may name a library to load.
#include "platform/environment.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "platform/errors.h"
#include "platform/multibyte.h"

namespace platform {
namespace {

// Null for text that can name no variable: it is empty or ill-formed.
const char* FindVariable(const std::u16string& name) {
    const std::size_t length = wcstombs(nullptr, name.c_str(), 0);
    if (length == 0 || length == SIZE_MAX) {
        return nullptr;
    }
    std::string narrow(length, '\0');
    wcstombs(narrow.data(), name.c_str(), length);
    return ::secure_getenv(narrow.c_str());
}

void AppendWide(std::u16string& out, const char* value) {
    const i32 length = static_cast<i32>(std::strlen(value));
    const i32 units = MultiByteToWideChar(value, length, nullptr, 0);
    const std::size_t end = out.size();
    out.resize(end + static_cast<std::size_t>(units));
    MultiByteToWideChar(value, length, out.data() + end, units);
}

std::u16string Expand(std::u16string_view source) {
    std::u16string out;
    for (;;) {
        const std::size_t open = source.find(u'%');
        out += source.substr(0, open);
        if (open == source.npos) {
            return out;
        }
        source.remove_prefix(open);
        const std::size_t close = source.find(u'%', 1);
        if (close == source.npos) {
            return out.append(source);
        }
        if (const char* value = FindVariable(std::u16string(source.substr(1, close - 1)))) {
            AppendWide(out, value);
            source.remove_prefix(close + 1);
        } else {
            out += source.substr(0, close);
            source.remove_prefix(close);
        }
    }
}

}  // namespace

u32 ExpandEnvironmentStringsW(const char16_t* source, char16_t* target, u32 capacity) noexcept {
    const ErrnoKeeper keeper;
    if (source == nullptr) {
        SetLastError(kErrorInvalidParameter);
        return 0;
    }
    try {
        const std::u16string text = Expand(source);
        const std::size_t needed = text.size() + 1;
        if (needed <= capacity) {
            text.copy(target, text.size());
            target[text.size()] = 0;
        }
        return static_cast<u32>(needed);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return 0;
    }
}

}  // namespace platform
