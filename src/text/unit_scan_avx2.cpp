#include "text/unit_scan_avx2.h"

#ifdef __AVX2__
#include "text/unit_scan_loops.h"

namespace unit_scan {

constinit const Loops kAvx2Loops = kLoops;

}  // namespace unit_scan
#endif
