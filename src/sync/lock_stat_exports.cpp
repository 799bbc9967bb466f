#include <qxcore/lockstats.h>

#include "core/global_data.h"
#include "sync/lock_stat_manager.h"

QXResult QXGetLockStats(QXHandle mutex, QXLockStats* stats) {
    return static_cast<IMutex*>(mutex)->GetStats(stats);
}

QXResult QXResetLockStats() {
    CQXGlobalData::m_lockStatManager->ResetStatsAll();
    return QX_S_OK;
}

QXResult QXDumpLockStats(const char* title, const wchar* path) {
    return CQXGlobalData::m_lockStatManager->DumpStats(title != nullptr ? title : "LockStatsDump",
                                                       path != nullptr ? path : u"qxlockstats.csv");
}
