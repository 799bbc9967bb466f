// Events, and gates: manual-reset events under names of their own.
#include <qxcore/event.h>

#include "core/entry_guard.h"
#include "platform/events.h"
#include "sync/waiting_object.h"

namespace {

class CQXEventImpl : public WaitingObject {
  public:
    CQXEventImpl(const char* name, u32 flags, bool manualReset) : WaitingObject(name, flags) {
        m_handle = platform::CreateEventA(nullptr, manualReset, false, nullptr);
        if (m_handle == nullptr) {
            ThrowLastError();
        }
    }
};

QXResult Create(const char* name, u32 flags, bool manualReset, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *out = new CQXEventImpl(name, flags, manualReset);
        return QX_S_OK;
    });
}

platform::HANDLE NativeOf(QXHandle event) {
    return static_cast<CQXEventImpl*>(event)->m_handle;
}

}  // namespace

QXResult QXEventCreate(const char* name, uint32_t flags, QXHandle* out) {
    return Create(name, flags, (flags & QX_EVENT_MANUALRESET) != 0, out);
}

QXResult QXEventDestroy(QXHandle event) {
    delete static_cast<CQXEventImpl*>(event);
    return QX_S_OK;
}

QXResult QXEventSignal(QXHandle event) {
    return RunGuarded([&] { return ResultOf(platform::SetEvent(NativeOf(event))); });
}

QXResult QXEventReset(QXHandle event) {
    return RunGuarded([&] { return ResultOf(platform::ResetEvent(NativeOf(event))); });
}

QXResult QXEventWait(QXHandle event) {
    return RunGuarded([&] { return WaitFor(NativeOf(event), platform::kInfinite, QX_S_OK); });
}

QXResult QXEventTimedWait(QXHandle event, uint32_t ms) {
    return RunGuarded([&] { return WaitFor(NativeOf(event), ms, QX_E_TIMEOUT); });
}

QXResult QXGateCreate(const char* name, uint32_t flags, QXHandle* out) {
    return Create(name, flags, true, out);
}

QXResult QXGateDestroy(QXHandle gate) {
    return QXEventDestroy(gate);
}

QXResult QXGateOpen(QXHandle gate) {
    return QXEventSignal(gate);
}

QXResult QXGateClose(QXHandle gate) {
    return QXEventReset(gate);
}

QXResult QXGateWait(QXHandle gate) {
    return QXEventWait(gate);
}

QXResult QXGateTimedWait(QXHandle gate, uint32_t ms) {
    return QXEventTimedWait(gate, ms);
}

QXResult QXGateTryWait(QXHandle gate) {
    return RunGuarded([&] { return WaitFor(NativeOf(gate), 0, QX_E_FAIL); });
}
