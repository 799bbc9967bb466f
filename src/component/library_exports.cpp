#include <qxcore/module.h>

#include "core/client_data.h"
#include "core/entry_guard.h"
#include "core/global_data.h"

namespace {

CQXLibraryLoader& Loader() {
    return CQXGlobalData::m_clientData->m_libraryLoader;
}

}  // namespace

QXResult QXLibOpen(const wchar* path, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *out = Loader().Open(path);
        return QX_S_OK;
    });
}

QXResult QXLibClose(QXHandle library) {
    return RunGuarded([&] {
        Loader().Close(library);
        return QX_S_OK;
    });
}

QXResult QXLibGetSymbol(QXHandle library, const wchar* name, void** out) {
    *out = nullptr;
    return RunGuarded([&] {
        *out = Loader().GetSymbol(library, name);
        return QX_S_OK;
    });
}
