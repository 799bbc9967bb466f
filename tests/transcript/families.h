// The families of calls that a transcript is made of. A new family is a file <family>_calls.cpp, a
// line here and one in transcript.cpp.
#ifndef TESTS_TRANSCRIPT_FAMILIES_H
#define TESTS_TRANSCRIPT_FAMILIES_H

#include <functional>
#include <string>
#include <vector>

#include "transcript/line.h"
#include "transcript/random.h"

struct Call {
    const char* name;

    // Makes one call, with arguments drawn at random, and prints what it gives.
    std::function<void(Random& random, Line& line)> make;
    uint32_t weight = 1;  // how often it is drawn beside the others
};

// Those of one list work on common objects, which end with the list.
using Calls = std::vector<Call>;
Calls ClassCalls();
Calls ConverterCalls();
Calls FileCalls();
Calls HostCalls();
Calls LineFileCalls();
Calls MemoryCalls();
Calls NumberCalls();
Calls OptionCalls();
Calls RegistryCalls();
Calls SharedMemoryCalls();
Calls TextCalls();
Calls TransformCalls();
Calls WaitingCalls();
Calls WordCalls();

// What needs no drawing.
void PrintConverters();
void PrintSystem();
void PrintTextCase();
void PrintWords();

// The component library that class lookups may use; empty if there is none.
extern std::u16string componentLibrary;

#endif
