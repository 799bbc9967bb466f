#include "text/unit_scan.h"

#include "text/unit_scan_loops.h"

constinit const unit_scan::Loops unit_scan::kPlainLoops = unit_scan::kLoops;
