#ifndef QX_SYSTEM_LOCAL_HOST_H
#define QX_SYSTEM_LOCAL_HOST_H

// Forgets every answer. Nobody asks any more.
void ReleaseLocalHostCache() noexcept;

#endif
