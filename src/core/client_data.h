// The managers that serve clients.
#ifndef QX_CORE_CLIENT_DATA_H
#define QX_CORE_CLIENT_DATA_H

#include "component/factory_manager.h"
#include "component/library_loader.h"
#include "core/ref_counted.h"
#include "process/process_manager.h"
#include "process/thread_manager.h"

// The members are built in this order and destroyed in the reverse.
class CQXClientData : public CQXCoreRefCounted {
  public:
    CQXClientData();
    ~CQXClientData() override;

    CQXProcessManager m_processManager;
    CQXThreadManager m_threadManager;
    CQXLibraryLoader m_libraryLoader;
    CQXFactoryManager m_factoryManager;
};

#endif
