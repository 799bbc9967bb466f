// The entry function: what happens when the library is loaded and unloaded.
#include "core/entry.h"

#include <qxcore/module.h>
#include <qxcore/mutex.h>

#include "component/module_manager.h"
#include "core/client_data.h"
#include "core/core_init.h"
#include "core/global_data.h"
#include "platform/lifetime.h"

void* const s_moduleToken = reinterpret_cast<void*>(&DllMain);

namespace {

// Kept for debuggers; no code reads it.
[[gnu::used]] constinit platform::ModuleHandle s_hInstance = nullptr;

// A fork waits until no thread is at the marks or at the thread table: the child would find their
// locks held by a thread that it does not have, and could not even be unloaded.
void EnterForFork() {
    CQXGlobalData::m_moduleManager->EnterForFork();
    QXMutexAcquire(CQXGlobalData::m_clientData->m_threadManager.MapMutex());
}
void LeaveAfterFork() {
    QXMutexRelease(CQXGlobalData::m_clientData->m_threadManager.MapMutex());
    CQXGlobalData::m_moduleManager->LeaveAfterFork();
}

// After an initialisation that failed, which nobody is told of, there may be no module manager.
void SetOwnMark(int16_t initialized) {
    if (CQXGlobalData::m_moduleManager != nullptr) {
        QXModuleSetInitialized(s_moduleToken, initialized);
    }
}

void Attach(platform::ModuleHandle instance) {
    s_hInstance = instance;
    QXCoreInit();
    SetOwnMark(1);
    if (CQXGlobalData::m_clientData != nullptr) {
        platform::SetForkGuards(EnterForFork, LeaveAfterFork);
    }
}

// The token goes first, so that no component library is unloaded from here on.
void Detach(const void* reserved) {
    SetOwnMark(0);
    if (platform::OtherThreadsMayRun(reserved)) {
        // They may hold or wait for anything, so all stays where it is but the factories, which
        // are told of the end if they can be reached without waiting.
        if (CQXGlobalData::m_clientData != nullptr) {
            CQXGlobalData::m_clientData->m_factoryManager.TryFlush();
        }
        return;
    }
    platform::SetForkGuards(nullptr, nullptr);
    QXCoreTerm();
}

}  // namespace

// Reports success also when the initialisation failed.
int QX_ENTRY_CALL DllMain(platform::ModuleHandle instance, platform::EntryWord reason,
                          void* reserved) {
    if (reason == platform::kProcessAttach) {
        Attach(instance);
    } else if (reason == platform::kProcessDetach) {
        Detach(reserved);
    }
    return 1;
}
