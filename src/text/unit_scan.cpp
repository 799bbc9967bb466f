#include "text/unit_scan.h"

#include "text/unit_scan_avx2.h"
#include "text/unit_scan_loops.h"

namespace unit_scan {

const Loops& BestLoops() {
#if defined(__x86_64__) && !defined(QX_SCAN_UNITS_ALONE)
    if (__builtin_cpu_supports("avx2")) {
        return kAvx2Loops;
    }
#endif
    return kLoops;
}

}  // namespace unit_scan
