// Nothing of streams is inline on this side.
#ifndef QX_PLATFORM_POSIX_STREAMS_NATIVE_H
#define QX_PLATFORM_POSIX_STREAMS_NATIVE_H
#endif
