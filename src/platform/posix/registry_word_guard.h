// Keeps a file that somebody cut from ending the process that has it mapped.
#ifndef QX_PLATFORM_POSIX_REGISTRY_WORD_GUARD_H
#define QX_PLATFORM_POSIX_REGISTRY_WORD_GUARD_H

#include <cstddef>

namespace platform {

// A page of the process's own, all zeros, that files can be mapped over in place. Null if there is
// none to be had. A touch of what is no longer behind it puts zeros there, by a handler of SIGBUS
// that passes everything else on to the handler that was there before.
void* MakeGuardedPage() noexcept;

std::size_t GuardedPageSize() noexcept;

// Puts zeros in the place of a file. Nobody who looks meanwhile finds nothing there.
bool ClearGuardedPage(void* page) noexcept;

// Takes back the pages and, unless a program put its own handler in front, ours.
void ReleaseGuardedPages() noexcept;

}  // namespace platform

#endif
