#ifndef QX_SYNC_SEMAPHORE_H
#define QX_SYNC_SEMAPHORE_H

#include "sync/waiting_object.h"

class CQXSemaphoreImpl : public WaitingObject {
  public:
    CQXSemaphoreImpl(u32 initialCount, const char* name, u32 flags);
};

#endif
