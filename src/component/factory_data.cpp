#include "component/factory_data.h"

#include <qxcore/module.h>

#include <utility>

#include "core/entry.h"
#include "core/entry_guard.h"

CQXFactoryData::CQXFactoryData(IQXUnknown* factory, QXHandle library)
    : m_pFactory(factory), m_hLibrary(library) {
    if (m_pFactory != nullptr) {
        m_pFactory->AddRef();
    }
}

// While this library is being unloaded its token is gone and the close is refused: the factory is
// released, its library stays.
CQXFactoryData::~CQXFactoryData() {
    ReleaseFactory();
    QXModuleLibClose(s_moduleToken, m_hLibrary);
}

QXResult CQXFactoryData::ReleaseFactory() noexcept {
    return RunGuarded([&] {
        if (IQXUnknown* const factory = std::exchange(m_pFactory, nullptr)) {
            factory->Release();
        }
        return QX_S_OK;
    });
}
