#ifndef QX_SYSTEM_MY_ADDRESSES_H
#define QX_SYSTEM_MY_ADDRESSES_H

// Destroys the mutex of the address lists. The lists stay: they are never released.
void ReleaseMyAddresses() noexcept;

#endif
