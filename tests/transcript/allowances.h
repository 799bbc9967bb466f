// All that may differ between the platforms, each by a name and with its reason. Where a call
// could show one of these differences it asks here, and nowhere else.
#ifndef TESTS_TRANSCRIPT_ALLOWANCES_H
#define TESTS_TRANSCRIPT_ALLOWANCES_H

#include <qxcore/file.h>
#include <qxcore/registry.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace allowance {

// Narrow text is UTF-8 on Linux and in the system's code page on the reference platform. Both hold
// ASCII.
inline std::string NarrowEncodingIsTheSystems(std::string text) {
    for (char& unit : text) {
        unit = (unit & 0x7F) != 0 ? static_cast<char>(unit & 0x7F) : '?';
    }
    return text;
}

// Units from 0x80 up have the case that the system's code page gives them. These have none in any.
inline std::string CaseIsTheRuntimes(std::string text) {
    for (char& unit : text) {
        if ((unit & 0x80) != 0) {
            unit = static_cast<char>(0xA1 | (unit & 0x1E));
        }
    }
    return text;
}

// A mapped unit from 0x80 up is a negative number on Linux, and positive where the runtime says so.
inline uint32_t MappedUnitHasAnySign(int32_t mapped) {
    return static_cast<uint8_t>(mapped);
}

// Classes and cases beyond ASCII come from the C runtime's tables, which do not agree on all units.
inline bool WideClassIsTheRuntimes(uint32_t unit) {
    constexpr uint32_t kAgreed[][2] = {{0, 0x7F},        {0xC0, 0xDE},     {0xE0, 0xFE},
                                       {0x391, 0x3A1},   {0x3B1, 0x3C1},   {0x410, 0x44F},
                                       {0x3041, 0x3093}, {0x4E00, 0x9FA5}, {0xD800, 0xDFFF}};
    return std::none_of(std::begin(kAgreed), std::end(kAgreed), [unit](const uint32_t(&range)[2]) {
        return range[0] <= unit && unit <= range[1];
    });
}

inline std::u16string CaseIsTheRuntimes(std::u16string text) {
    for (char16_t& unit : text) {
        if (WideClassIsTheRuntimes(unit)) {
            unit = static_cast<char16_t>(0x410 + unit % 64);
        }
    }
    return text;
}

// What is no number has any bits beside those that say so, and zero has either sign where there is
// nothing but a sign.
inline double NoNumberHasAnyBits(double number) {
    return std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number;
}
inline double ZeroOfNothingHasAnySign(double number, bool nothing) {
    return nothing && number == 0 ? 0 : number;
}

// Whether an inexact number below the normal range is an error is the C library's decision.
inline int UnderflowMayBeNoError(double number, int error) {
    return std::fpclassify(number) == FP_SUBNORMAL ? 0 : error;
}

// The user's locale has the platform's own name ("en_US_POSIX" has none on the reference platform).
inline std::u16string LocaleIsTheUsers(const std::u16string& name) {
    return name.empty() ? u"none" : u"a name";
}

// The roots 0 and 3 are one tree on the reference platform, a merged view of the machine's and the
// user's classes, and so is the machine's tree outside "Software". So each root has a key of its
// own.
inline std::u16string RootsAreMergedViews(int32_t root) {
    return root == QX_HKEY_CLASSES      ? u"w64qxcore6-transcript-32"
           : root == QX_HKEY_CLASSES_64 ? u"w64qxcore6-transcript-64"
                                        : u"Software\\w64qxcore6-transcript";
}

// The reference platform stores a text's terminator that was not counted, if there is one behind
// the text. So there is never one.
inline std::vector<char16_t> UncountedTerminatorIsStored(const std::u16string& data) {
    const std::u16string guarded = data + u'~';
    return {guarded.begin(), guarded.end()};
}

// Wine takes the text between a single percent sign and the next reference for a name, and leaves
// the reference as it is.
inline std::u16string SinglePercentSignHidesReference(std::u16string text) {
    std::replace(text.begin(), text.end(), u'%', u'_');
    return text;
}

// Wine takes keys whose name is one unit longer than the limit, and does not find values with such
// names where others refuse the name.
inline constexpr size_t kLongestKeyName = 255;
inline constexpr size_t kLongestValueName = 16383;

// Wine lists keys in the order of their lower case, others in that of their upper case. These stand
// in one order by either.
inline constexpr std::u16string_view kKeysInOneOrderByEitherCase =
    u"|\\a|\\A|\\b|\\a\\b|\\A\\B\\c|\\a\\b\\C\\d|\\b_|\\B1|\\a\\|\\a\\\\b|\\x/y|\\ |\\.|\\\u00E4|"
    u"\\\u00C4|\\i|\\I|\\\u0131|\\\u0130|\\\u03C3|\\\u03A3|\\\u0436|\\\u0416|\\\U00010400|"
    u"\\\U00010428|\\no such key";

// An enumeration goes on behind the last name on Linux and at the next place elsewhere, so that a
// key that is made or deleted meanwhile may show a name twice or hide one. So it ends with each
// change.
inline constexpr bool kChangesMoveEnumerations = true;

// Wine lists values by name, and not in the order in which they were first set.
template <typename Values>
Values ValuesAreListedByName(Values values) {
    std::sort(values.begin(), values.end());
    return values;
}

// Wine forgets the name of a mapping with its last handle, though a view of it is left.
inline constexpr bool kNameGoesWithTheLastHandle = true;

// A file that is open, or a directory with one, cannot go on the reference platform, and who opens
// a temporary file must be alone with it.
inline constexpr bool kOpenFilesStay = true;

// Wine asks the system about the read-only attribute, which binds its administrator to nothing.
inline constexpr bool kReadOnlyBindsNotEverybody = true;

// A lock keeps others from reading and writing on the reference platform, and on Linux from
// locking.
inline constexpr bool kLocksBindReaders = true;

// What a handle has locked for itself alone it may share on the reference platform, but not on
// Linux.
inline constexpr bool kOwnLockMayBindItsHandle = true;

// Wine truncates a file that is opened without write access.
inline uint32_t TruncationMayNeedAccess(uint32_t flags) {
    return (flags & QX_FILE_TRUNCATE) != 0 ? flags | QX_FILE_WRITE : flags;
}

// Wine lists an interface without an address as one of address 0.0.0.0.
inline constexpr bool kMissingAddressMayBeListed = true;

// A whole path has the separator of the platform.
inline std::u16string SeparatorIsThePlatforms(std::u16string path) {
    std::replace(path.begin(), path.end(), u'\\', u'/');
    return path;
}

}  // namespace allowance

#endif
