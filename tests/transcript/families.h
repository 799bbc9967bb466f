// The families of calls that a transcript is made of. A new family is a file <family>_calls.cpp and
// a row in families.cpp.
#ifndef TESTS_TRANSCRIPT_FAMILIES_H
#define TESTS_TRANSCRIPT_FAMILIES_H

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "transcript/line.h"
#include "transcript/random.h"

// Makes one call, with arguments drawn at random, and prints what it gives.
using MakeCall = std::function<void(Random& random, Line& line)>;

struct Call {
    const char* name;
    MakeCall make;
    uint32_t weight = 1;  // how often it is drawn beside the others
};

struct Family {
    const char* name;

    // The kinds of calls. Those of one list work on common objects, which end with the list.
    std::vector<Call> (*calls)();

    // Prints what needs no drawing. May be null.
    void (*fixed)();
};

std::span<const Family> Families();

// The component library that class lookups may use, wide text; empty if there is none.
extern std::u16string componentLibrary;

// A call that is a member function of the objects that a list works on.
template <typename Objects>
MakeCall Member(const std::shared_ptr<Objects>& objects,
                void (Objects::*make)(Random& random, Line& line)) {
    return [objects, make](Random& random, Line& line) { (objects.get()->*make)(random, line); };
}

// Objects that end with the list that works on them.
class Unshared {
  public:
    Unshared() = default;
    Unshared(const Unshared&) = delete;
    Unshared& operator=(const Unshared&) = delete;
};

#endif
