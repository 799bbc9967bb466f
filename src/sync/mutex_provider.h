// Makes mutexes.
#ifndef QX_SYNC_MUTEX_PROVIDER_H
#define QX_SYNC_MUTEX_PROVIDER_H

#include "sync/mutex.h"

namespace qx::core {

class CQXMutexProvider : public IMutexProvider {
  public:
    QXResult CreateMutex(const char* name, u32 flags, IMutex** out) override;
};

}  // namespace qx::core

#endif
