// What the processor can do.
#ifndef QX_PLATFORM_PROCESSOR_H
#define QX_PLATFORM_PROCESSOR_H

#include <processor_native.h>

namespace platform {

// Whether instructions over 32 bytes of integers can be used: the processor has them and the system
// keeps their registers. False on processors of another family. Does not block.
bool ProcessorHasAvx2() noexcept;

// Whether a program that checks each use of memory stands in for the processor. False where that
// cannot be asked. Does not block.
bool RunsUnderMemoryChecker() noexcept;

}  // namespace platform

#endif
