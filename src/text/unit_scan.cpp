#include "text/unit_scan.h"

#include "platform/processor.h"

namespace unit_scan {
namespace {

// A memory checker would report the bytes around a text that come with a block.
const Loops& LoopsForThisProcessor() {
#ifdef QX_SCAN_BLOCKS
    if (!platform::RunsUnderMemoryChecker()) {
        return platform::ProcessorHasAvx2() ? kAvx2Loops : kSse2Loops;
    }
#endif
    return kUnitLoops;
}

// Threads that choose at the same time choose the same.
const Loops& ChooseLoops() {
    const Loops& best = LoopsForThisProcessor();
    s_bestLoops.store(&best, std::memory_order_relaxed);
    return best;
}

// A loop that stands in for one that nobody has chosen yet.
template <auto kLoop>
struct First;

template <typename Result, typename... Arguments, Result (*Loops::*kLoop)(Arguments...)>
struct First<kLoop> {
    static Result Call(Arguments... arguments) { return (ChooseLoops().*kLoop)(arguments...); }
};

constexpr Loops kFirstLoops = {
    .findEnd = First<&Loops::findEnd>::Call,
    .findEndWithin = First<&Loops::findEndWithin>::Call,
    .findUnit = First<&Loops::findUnit>::Call,
    .findLast = First<&Loops::findLast>::Call,
    .findNotAsciiNarrow = First<&Loops::findNotAsciiNarrow>::Call,
    .findNotAsciiWide = First<&Loops::findNotAsciiWide>::Call,
    .findDifference = First<&Loops::findDifference>::Call,
    .findLowerDifference = First<&Loops::findLowerDifference>::Call,
    .compare = First<&Loops::compare>::Call,
    .compareWithin = First<&Loops::compareWithin>::Call,
    .order = First<&Loops::order>::Call,
    .compareUpper = First<&Loops::compareUpper>::Call,
    .compareUpperWithin = First<&Loops::compareUpperWithin>::Call,
    .copyNarrow = First<&Loops::copyNarrow>::Call,
    .copyWide = First<&Loops::copyWide>::Call,
};

}  // namespace

constinit std::atomic<const Loops*> s_bestLoops{&kFirstLoops};

}  // namespace unit_scan
