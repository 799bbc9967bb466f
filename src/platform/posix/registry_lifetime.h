// What forking and unloading need to know of the registry.
#ifndef QX_PLATFORM_POSIX_REGISTRY_LIFETIME_H
#define QX_PLATFORM_POSIX_REGISTRY_LIFETIME_H

namespace platform {

// Closes the stores and forgets where they are. Nothing may be using them.
void CloseRegistryStores() noexcept;

// Waits until nobody uses the stores, closes them and keeps them so until the other is called, in
// the parent and in the child.
void CloseRegistryStoresForFork() noexcept;
void FreeRegistryStoresAfterFork() noexcept;

// To be called in the child: other threads' looks at what is remembered ended with them.
void ForgetInheritedRegistryUsers() noexcept;

}  // namespace platform

#endif
