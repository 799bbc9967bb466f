// What the unloading of the library needs to know of the registry.
#ifndef QX_PLATFORM_POSIX_REGISTRY_UNLOAD_H
#define QX_PLATFORM_POSIX_REGISTRY_UNLOAD_H

namespace platform {

// Closes the stores and forgets where they are. Nothing may be using them.
void CloseRegistryStores() noexcept;

}  // namespace platform

#endif
