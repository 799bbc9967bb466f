#include "sync/mutex_provider.h"

#include "core/entry_guard.h"
#include "sync/mutex_checked.h"
#include "sync/mutex_impl.h"

namespace qx::core {
namespace {

u32 CleanFlags(u32 flags) {
    return (flags & QX_MUTEX_NOSTATS) != 0 ? flags & ~QX_MUTEX_STATS : flags;
}

IMutex* NewMutex(const char* name, u32 flags) {
    if ((flags & (QX_MUTEX_STATS | QX_MUTEX_CHECKED)) != 0) {
        return new CQXCoreMutexChecked(name, flags);
    }
    return new CQXCoreMutexImpl(name, flags);
}

}  // namespace

QXResult CQXMutexProvider::CreateMutex(const char* name, u32 flags, IMutex** out) {
    return RunGuarded([&] {
        const u32 cleanFlags = CleanFlags(flags);
        IMutex* const mutex = NewMutex(name, cleanFlags);
        AddReference(mutex);
        *out = mutex;
        return QX_S_OK;
    });
}

}  // namespace qx::core
