// The loops over blocks of 32 bytes, for processors that have them.
#ifndef QX_TEXT_UNIT_SCAN_AVX2_H
#define QX_TEXT_UNIT_SCAN_AVX2_H

#include "text/unit_scan.h"

namespace unit_scan {

extern const Loops kAvx2Loops;

}  // namespace unit_scan

#endif
