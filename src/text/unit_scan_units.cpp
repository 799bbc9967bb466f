#define QX_SCAN_UNITS_ALONE
#include "text/unit_scan_loops.h"

constinit const unit_scan::Loops unit_scan::kUnitLoops = unit_scan::kLoops;
