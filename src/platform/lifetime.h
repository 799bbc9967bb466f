// Loading and unloading of the library itself.
#ifndef QX_PLATFORM_LIFETIME_H
#define QX_PLATFORM_LIFETIME_H

#include <lifetime_native.h>

#include "platform/types.h"

namespace platform {

enum EntryReason : u32 {
    kProcessDetach = 0,  // DLL_PROCESS_DETACH
    kProcessAttach = 1,  // DLL_PROCESS_ATTACH
};

// True if threads of the process may still run inside the library while it is being detached, so
// that nothing they may hold or wait for can be freed. That is so at the end of a process in which
// other threads are alive, and on back ends whose system does not stop them first.
// `reserved` is the entry function's last argument: null when the library is unloaded in a process
// that goes on, and, where the back end looked, at the end of a process that has no other thread.
bool OtherThreadsMayRun(const void* reserved) noexcept;

// Has `before` called ahead of each fork of the process, in the thread that forks, and `after`
// behind it on both sides. Null for neither. Systems without fork never call them.
using ForkGuard = void (*)();
void SetForkGuards(ForkGuard before, ForkGuard after) noexcept;

}  // namespace platform

// The entry function of the library, defined above this layer. The system's loader, or the back
// end, calls it with the reasons above, each once for a load, from one thread at a time. The result
// is not 0 on success.
extern "C" int QX_ENTRY_CALL DllMain(platform::ModuleHandle instance, platform::EntryWord reason,
                                     void* reserved);

#endif
