#include "text/unit_scan.h"

#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#else
#define RUNNING_ON_VALGRIND 0
#endif

namespace unit_scan {
namespace {

// A memory checker would report the bytes around a text that come with a block.
const Loops& LoopsForThisProcessor() {
#ifdef QX_SCAN_BLOCKS
    if (RUNNING_ON_VALGRIND == 0) {
        return __builtin_cpu_supports("avx2") ? kAvx2Loops : kSse2Loops;
    }
#endif
    return kUnitLoops;
}

}  // namespace

constinit std::atomic<const Loops*> s_bestLoops{nullptr};

// Threads that ask at the same time find the same.
const Loops& ChooseLoops() {
    const Loops& best = LoopsForThisProcessor();
    s_bestLoops.store(&best, std::memory_order_relaxed);
    return best;
}

}  // namespace unit_scan
