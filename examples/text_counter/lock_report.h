// What the measured mutexes have seen.
#ifndef EXAMPLES_LOCK_REPORT_H
#define EXAMPLES_LOCK_REPORT_H

#include <string>

#include "support.h"

// One line about one mutex, to standard error.
void DescribeLock(const char* name, QXHandle mutex);

// Appends the library's report on all of them to a file.
void AppendLockReport(const std::string& path);

#endif
