// One cached class.
#ifndef QX_COMPONENT_FACTORY_DATA_H
#define QX_COMPONENT_FACTORY_DATA_H

#include <qxcore/unknown.h>

#include "core/ref_counted.h"

class CQXFactoryData : public CQXCoreRefCounted {
  public:
    // Adds a reference to the factory, which may be null, and takes the opening of the library
    // over.
    CQXFactoryData(IQXUnknown* factory, QXHandle library);
    ~CQXFactoryData() override;

    // The destructor's first step. QX_E_FAIL if the factory throws: it counts as released then.
    QXResult ReleaseFactory() noexcept;

    // What the library returned: the interface that the first caller asked for.
    IQXUnknown* m_pFactory;
    QXHandle m_hLibrary;
};

#endif
