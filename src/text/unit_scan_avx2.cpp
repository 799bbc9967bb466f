#include "text/unit_scan.h"

#ifdef QX_SCAN_BLOCKS
#include "text/unit_scan_loops.h"

constinit const unit_scan::Loops unit_scan::kAvx2Loops = unit_scan::kLoops;
#endif
