// A gate that another object owns.
#ifndef QX_SYNC_OWNED_GATE_H
#define QX_SYNC_OWNED_GATE_H

#include <qxcore/event.h>

#include "core/exception.h"

class OwnedGate {
  public:
    explicit OwnedGate(const char* name) { ThrowIfFailed(QXGateCreate(name, 0, &m_handle)); }
    ~OwnedGate() { QXGateDestroy(m_handle); }
    OwnedGate(const OwnedGate&) = delete;
    OwnedGate& operator=(const OwnedGate&) = delete;

    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle;
};

#endif
