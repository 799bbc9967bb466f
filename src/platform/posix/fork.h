// What the back end does round a fork of the process.
#ifndef QX_PLATFORM_POSIX_FORK_H
#define QX_PLATFORM_POSIX_FORK_H

namespace platform {

// To be called when the library is loaded: handlers that a program installs later then run before
// these. The C library forgets them when the library is unloaded.
void InstallForkHandlers() noexcept;

// Waits for the forks that are under way in other threads and keeps later ones out of the library,
// whose code is about to go.
void EndForkHandling() noexcept;

}  // namespace platform

#endif
