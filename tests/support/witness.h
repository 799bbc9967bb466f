// A component library that writes down what happens to it, for tests of whoever loads it.
#ifndef TESTS_SUPPORT_WITNESS_H
#define TESTS_SUPPORT_WITNESS_H

#include <qxcore.h>

#ifdef _WIN32
#define WITNESS_EXPORT extern "C" __declspec(dllexport)
#else
#define WITNESS_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// What a class of the witness does when it is asked for. The class id is kWitnessClass with this
// number as Data2.
enum WitnessBehaviour : uint16_t {
    kPlain = 1,
    kPositiveResult,  // answers 7 with a factory
    kRefuses,         // answers kWitnessRefusal with something in the result
    kComesBack,       // looks the plain class up before it answers
    kNullFactory,     // answers 0 with a null factory
    kSlow,            // yields for a while before it answers
    kThrows,          // throws, with something in the result
    kThrowsOnRelease  // answers with a factory that throws when it is released for good
};

constexpr GUID WitnessClass(WitnessBehaviour behaviour) {
    return {0x57495453, behaviour, 0x4E45, {0x80, 1, 2, 3, 4, 5, 6, 7}};
}

constexpr QXResult kWitnessRefusal = static_cast<QXResult>(0x80040111);
constexpr QXResult kNoInterface = static_cast<QXResult>(0x80004002);

// The environment variable that names the file in which the witness writes a word for each event:
// "loaded", "asked", "made", "released" (a factory's last reference), "unloaded".
constexpr char kWitnessLog[] = "QXCORE_WITNESS_LOG";

#endif
