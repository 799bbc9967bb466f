// The process-wide objects.
#ifndef QX_CORE_GLOBAL_DATA_H
#define QX_CORE_GLOBAL_DATA_H

#include <qxcore/base.h>

class IMutexProvider;
class CQXLockStatManager;
class CQXModuleManager;
class CQXClientData;

// All null while the library is not initialised. The exports do not test them.
class CQXGlobalData {
  public:
    static IMutexProvider* m_mutexProvider;
    static CQXLockStatManager* m_lockStatManager;
    // A cell and not the handle itself, so that alerts and trace, which run before the
    // initialisation and after the termination too, can tell the mutex's absence by a null test.
    static QXHandle* m_debugMutex;
    static CQXModuleManager* m_moduleManager;
    static CQXClientData* m_clientData;
};

// Builds the objects in the order of the members: each constructor uses the earlier ones. A failure
// leaves what is built in place.
void QXGlobalsConstruct();

// Destroys, in the order that the members' users force, whatever is there.
void QXGlobalsDestroy();

#endif
