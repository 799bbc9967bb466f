// The mutex interface, what all mutexes share, and the provider's interface.
#ifndef QX_SYNC_MUTEX_H
#define QX_SYNC_MUTEX_H

#include <qxcore/mutex.h>

#include <string>

#include "core/ref_counted.h"

struct QXLockStats;

// The handle of a mutex is the address of one of these, and its exports are calls of these
// operations, in this order.
class IMutex : public CQXCoreRefCounted {
  public:
    virtual QXResult Acquire() = 0;
    virtual QXResult TryAcquire() = 0;
    virtual QXResult Release() = 0;
    virtual QXResult GetStats(QXLockStats* stats) = 0;
    virtual void ResetStats() = 0;
    // Not 0 if the assertion holds.
    virtual i32 AssertOwnership(i16 wantOwned) = 0;
    virtual std::string GetName() = 0;
    virtual u32 GetFlags() = 0;
    virtual u8 IsStatExempt() = 0;
    virtual void* GetOSMutex() = 0;
};

class IMutexProvider : public CQXCoreRefCounted {
  public:
    // Stores the mutex with one reference for the caller; nothing on failure.
    virtual QXResult CreateMutex(const char* name, u32 flags, IMutex** out) = 0;
};

namespace qx::core {

class CQXMutex : public IMutex {
  public:
    CQXMutex(const char* name, u32 flags) : m_flags(flags), m_name(name) {}

    std::string GetName() override { return m_name; }
    u32 GetFlags() override { return m_flags; }
    u8 IsStatExempt() override { return (m_flags & QX_MUTEX_NOSTATS) != 0; }

  protected:
    const u32 m_flags;
    const std::string m_name;
};

}  // namespace qx::core

#endif
