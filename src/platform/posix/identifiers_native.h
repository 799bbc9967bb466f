// Nothing here is inline on this back end.
#ifndef QX_PLATFORM_POSIX_IDENTIFIERS_NATIVE_H
#define QX_PLATFORM_POSIX_IDENTIFIERS_NATIVE_H
#endif
