// The counted initialisation, called by the entry function alone.
#ifndef QX_CORE_CORE_INIT_H
#define QX_CORE_CORE_INIT_H

#include <qxcore/base.h>

#include "platform/task_allocator.h"

// 1 from the first initialisation on, and never cleared. File and registry code has a second branch
// for 0, which is dead from then on but kept.
extern u32 s_isWinNT;

// The process's task allocator, while the library is initialised.
extern platform::IMalloc* s_pMalloc;

// The second and later calls only count.
QXResult QXCoreInit();

// Undoes the last of the calls above. QX_E_FAIL without one to undo.
QXResult QXCoreTerm();

#endif
