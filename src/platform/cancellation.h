// Keeps the calling thread from being cancelled.
#ifndef QX_PLATFORM_CANCELLATION_H
#define QX_PLATFORM_CANCELLATION_H

#include <cancellation_native.h>

namespace platform {

// For the length of a scope: cancellation unwinds a thread's stack, which code that does not throw,
// or that ends what it catches, cannot let pass. A request waits until the scope is left. Where
// threads cannot be cancelled this does nothing. Never fails, never blocks.
class CancellationOff;

}  // namespace platform

#endif
