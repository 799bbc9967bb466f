// What is not the same on every platform that the tests run on, each with its reason. A test names
// what it allows.
#ifndef TESTS_SUPPORT_KNOWN_DIFFERENCES_H
#define TESTS_SUPPORT_KNOWN_DIFFERENCES_H

#include <clocale>

// Whether this is Wine, and neither the reference platform itself nor Linux.
bool RunsUnderWine();
inline bool DoesNotRunUnderWine() {
    return !RunsUnderWine();
}

#ifdef _WIN32
inline constexpr bool kOnReferencePlatform = true;
#else
inline constexpr bool kOnReferencePlatform = false;
#endif

// ---- Linux and the reference platform

// Narrow text is of the ANSI code page there, and its letters above ASCII have a case of their own.
inline constexpr bool kNarrowTextIsUtf8 = !kOnReferencePlatform;

// The user's locale there is the system's, whatever ICU's default is.
inline constexpr bool kLocaleIsOfIcu = !kOnReferencePlatform;

// The loader there takes a wide path as it is; here it is made narrow first.
inline constexpr bool kLoaderNeedsNarrowPath = !kOnReferencePlatform;

// A path of a key that begins with a separator is refused there.
inline constexpr bool kKeyPathsMayBeginWithSeparator = !kOnReferencePlatform;

// A registry of a test's own there is an ordinary key in the place of a root, without views.
inline constexpr bool kOwnRegistryHasViews = !kOnReferencePlatform;

// A wild card cannot stand in the name of a directory there, so it is no matter of what is there.
inline constexpr bool kWildCardsAreOrdinaryInNames = !kOnReferencePlatform;

// The end of a process there detaches what was loaded last first, a component before the library
// that it was loaded by.
inline constexpr bool kEndDetachesLastLoadedFirst = kOnReferencePlatform;

// A locale in which wide letters above ASCII have a case. False if there is none.
inline bool UseLocaleOfWideLetters() {
    return std::setlocale(LC_ALL, kOnReferencePlatform ? "" : "C.UTF-8") != nullptr;
}

// The lower case of 0xC3 in narrow text.
inline constexpr int kLowerOfHighUnit = kNarrowTextIsUtf8 ? 0xC3 : 0xE3;

// A locale in which narrow letters above ASCII have none.
inline void UseLocaleOfNarrowLetters() {
    if (!kNarrowTextIsUtf8) {
        std::setlocale(LC_ALL, "C");
    }
}

// ---- Wine and the reference platform

// Wine orders keys by their names in lower case, the reference platform in upper case: `_` stands
// between the two.
inline constexpr auto& KeysAreOrderedInLowerCase = RunsUnderWine;

// Wine lets a key's name have 256 units, one more than the reference platform.
inline constexpr auto& KeyNamesMayHave256Units = RunsUnderWine;

// Wine takes the `%` behind an unknown variable as its end and never as the next one's beginning.
inline constexpr auto& UnknownVariableTakesItsEnd = RunsUnderWine;

// Wine ends a thread where it stands, also while it changes Wine's own table of handles. An
// assertion of Wine's (server_get_unix_fd) then ends about one process in seven.
inline constexpr auto& BusyProcessesMayEndBadly = RunsUnderWine;

// Wine moves a file's position behind 4 GiB also where only 32 bits of it can be told.
inline constexpr auto& NarrowSeeksEndAtFourGigabytes = DoesNotRunUnderWine;

// Wine truncates a file that is opened without write access.
inline constexpr auto& TruncationNeedsWriteAccess = DoesNotRunUnderWine;

// Wine asks the system about the read-only attribute, which lets its administrator do everything.
inline constexpr auto& ReadOnlyAttributeBindsTheAdministrator = DoesNotRunUnderWine;

// Wine says of an empty path that it cannot be made whole, but leaves the last error alone.
inline constexpr auto& AnEmptyPathHasAnErrorOfItsOwn = DoesNotRunUnderWine;

// Wine's heap grows by some 30 bytes with each loading and unloading, and it maps a little more now
// and then.
inline constexpr auto& LoaderKeepsMemoryOfARound = RunsUnderWine;

// Wine forgets the name of a mapping with its last handle, though a view of it is left.
inline constexpr auto& ViewsKeepTheNameOfAMapping = DoesNotRunUnderWine;

#endif
