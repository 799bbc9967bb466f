// Child processes.
#ifndef QX_PROCESS_PROCESS_MANAGER_H
#define QX_PROCESS_PROCESS_MANAGER_H

#include <qxcore/mutex.h>

class CQXProcessManager {
  public:
    CQXProcessManager();
    ~CQXProcessManager();
    CQXProcessManager(const CQXProcessManager&) = delete;
    CQXProcessManager& operator=(const CQXProcessManager&) = delete;

  private:
    QXHandle m_setMutex;
};

#endif
