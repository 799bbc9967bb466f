// All that may differ between the platforms, each by a name and with its reason. Where a call
// could show one of these differences it asks here, and nowhere else.
#ifndef TESTS_TRANSCRIPT_ALLOWANCES_H
#define TESTS_TRANSCRIPT_ALLOWANCES_H

#include <qxcore/registry.h>

#include <algorithm>
#include <string>
#include <vector>

namespace allowance {

// Narrow text is UTF-8 on Linux and in the system's code page on the reference platform. Both hold
// ASCII.
inline std::string NarrowEncodingIsTheSystems(std::string text) {
    for (char& unit : text) {
        unit = static_cast<char>(unit & 0x7F);
        unit = unit != 0 ? unit : '?';
    }
    return text;
}

// The user's locale has the platform's own name ("en_US_POSIX" has none on the reference platform).
inline std::u16string LocaleIsTheUsers(const std::u16string& name) {
    return name.empty() ? u"none" : u"a name";
}

// The roots 0 and 3 are one tree on the reference platform, a merged view of the machine's and the
// user's classes, and so is the machine's tree outside "Software". So each root has a key of its
// own.
inline std::u16string RootsAreMergedViews(int32_t root) {
    switch (root) {
        case QX_HKEY_CLASSES:
            return u"w64qxcore6-transcript-32";
        case QX_HKEY_CLASSES_64:
            return u"w64qxcore6-transcript-64";
        default:
            return u"Software\\w64qxcore6-transcript";
    }
}

// The reference platform stores a text's terminator that was not counted, if there is one behind
// the text. So there is never one.
inline std::vector<char16_t> UncountedTerminatorIsStored(const std::u16string& data) {
    std::vector<char16_t> guarded(data.begin(), data.end());
    guarded.push_back(u'~');
    return guarded;
}

// Wine lists values by name, and not in the order in which they were first set.
template <typename Values>
Values ValuesAreListedByName(Values values) {
    std::sort(values.begin(), values.end());
    return values;
}

}  // namespace allowance

#endif
