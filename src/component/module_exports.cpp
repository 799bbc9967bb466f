#include <qxcore/component.h>
#include <qxcore/module.h>

#include "component/module_manager.h"
#include "core/entry_guard.h"
#include "core/global_data.h"

namespace {

// The lock is let go before the operation runs: a mark that is taken away meanwhile stops the calls
// that come later, not this one.
template <typename Operation>
QXResult RunIfMarked(QXModuleToken token, Operation&& operation) {
    return RunGuarded([&] {
        return CQXGlobalData::m_moduleManager->IsMarked(token) ? operation() : QX_E_NOTINITIALIZED;
    });
}

}  // namespace

QXResult QXModuleSetInitialized(QXModuleToken token, int16_t initialized) {
    return RunGuarded([&] {
        if (initialized != 0) {
            CQXGlobalData::m_moduleManager->Mark(token);
        } else {
            CQXGlobalData::m_moduleManager->Unmark(token);
        }
        return QX_S_OK;
    });
}

QXResult QXModuleComCreateObject(QXModuleToken token, const GUID* classID, void* outer,
                                 const GUID* interfaceID, void** result) {
    return RunIfMarked(token,
                       [&] { return QXComCreateObject(classID, outer, interfaceID, result); });
}

QXResult QXModuleComGetClassObject(QXModuleToken token, const GUID* classID,
                                   const GUID* interfaceID, void** result) {
    return RunIfMarked(token, [&] { return QXComGetClassObject(classID, interfaceID, result); });
}

QXResult QXModuleLibOpen(QXModuleToken token, const wchar* path, QXHandle* out) {
    return RunIfMarked(token, [&] { return QXLibOpen(path, out); });
}

QXResult QXModuleLibClose(QXModuleToken token, QXHandle library) {
    return RunIfMarked(token, [&] { return QXLibClose(library); });
}
