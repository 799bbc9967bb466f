#include "support.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int32_t kReplacement = 0xFFFD;

}  // namespace

std::u16string Wide(const char* narrow) {
    const std::string source = narrow;
    std::u16string wide(source.size(), u'\0');
    wide.resize(std::min(QXAnsiToUnicode(wide.data(), narrow, wide.size()), wide.size()));
    // Text that cannot be converted has a length too; what it does not have is a way back.
    std::string back(source.size() + 1, '\0');
    QXUnicodeToAnsi(back.data(), wide.c_str(), back.size());
    if (source != back.c_str()) {
        throw Failure{source, QX_E_ILLEGALCHAR};
    }
    return wide;
}

std::u16string WideForPeople(const char* narrow) {
    std::u16string wide(std::strlen(narrow), u'\0');
    size_t used = 0;
    QXUTF8ToW(wide.data(), wide.size(), &used, narrow, -1, kReplacement);
    wide.resize(used);
    return wide;
}

std::string Narrow(const std::u16string& wide) {
    const auto length = static_cast<int32_t>(wide.size());
    std::string narrow(wide.size() * 3, '\0');
    size_t used = 0;
    QXWToUTF8(narrow.data(), narrow.size(), &used, wide.data(), length, kReplacement);
    narrow.resize(used);
    return narrow;
}

std::string Explain(QXResult result) {
    switch (result) {
        case QX_E_NOTFOUND:
            return "not found";
        case QX_E_ACCESSDENIED:
            return "access denied";
        case QX_E_OUTOFMEMORY:
            return "out of memory";
        case QX_E_ILLEGALCHAR:
            return "no text in the program's encoding";
        case QX_E_NOTREGISTERED:
            return "not registered; see --register";
        case QX_E_ABORT:
            return "interrupted";
        default:
            break;
    }
    char code[32];
    std::snprintf(code, sizeof code, "result 0x%08X", static_cast<unsigned>(result));
    return code;
}

void Complain(const std::string& about, QXResult result) {
    std::fprintf(stderr, "count_text: %s: %s\n", about.c_str(), Explain(result).c_str());
}
