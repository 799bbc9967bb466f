// The modules that are marked as initialised.
#ifndef QX_COMPONENT_MODULE_MANAGER_H
#define QX_COMPONENT_MODULE_MANAGER_H

#include <qxcore/module.h>

#include <set>

#include "platform/types.h"

class CQXModuleManager {
  public:
    CQXModuleManager();
    ~CQXModuleManager();
    CQXModuleManager(const CQXModuleManager&) = delete;
    CQXModuleManager& operator=(const CQXModuleManager&) = delete;

    void Mark(QXModuleToken token);
    void Unmark(QXModuleToken token);
    bool IsMarked(QXModuleToken token);

  private:
    QXHandle m_setLock;
    std::set<std::uintptr_t> m_moduleSet;
};

#endif
