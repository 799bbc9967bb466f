// Nothing here is inline on this back end.
#ifndef QX_PLATFORM_POSIX_FILES_NATIVE_H
#define QX_PLATFORM_POSIX_FILES_NATIVE_H
#endif
