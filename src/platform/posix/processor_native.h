// Nothing here is inline on this back end.
#ifndef QX_PLATFORM_POSIX_PROCESSOR_NATIVE_H
#define QX_PLATFORM_POSIX_PROCESSOR_NATIVE_H
#endif
