#include "lock_report.h"

#include <cinttypes>
#include <cstdio>

void DescribeLock(const char* name, QXHandle mutex) {
    QXLockStats stats;
    Check(QXGetLockStats(mutex, &stats), "QXGetLockStats");
    std::fprintf(stderr,
                 "Mutex %s: taken %" PRId64 " times, blocked %" PRId64
                 " times, longest wait %" PRId64 " us, longest hold %" PRId64 " us\n",
                 name, stats.acquireCount, stats.contentionCount, stats.maxAcquireTime,
                 stats.maxHeldTime);
}

void AppendLockReport(const std::string& path) {
    Check(QXDumpLockStats("count_text", Wide(path.c_str()).c_str()), path.c_str());
}
