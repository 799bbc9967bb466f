#include "component/factory_data.h"

#include <qxcore/module.h>

#include "core/entry.h"

CQXFactoryData::CQXFactoryData(IQXUnknown* factory, QXHandle library)
    : m_pFactory(factory), m_hLibrary(library) {
    if (m_pFactory != nullptr) {
        m_pFactory->AddRef();
    }
}

// While this library is being unloaded its token is gone and the close is refused: the factory is
// released, its library stays.
CQXFactoryData::~CQXFactoryData() {
    if (m_pFactory != nullptr) {
        m_pFactory->Release();
        m_pFactory = nullptr;
    }
    QXModuleLibClose(s_moduleToken, m_hLibrary);
}
