#ifndef QX_PLATFORM_WINDOWS_PROCESSOR_NATIVE_H
#define QX_PLATFORM_WINDOWS_PROCESSOR_NATIVE_H

#include "system_headers.h"

namespace platform {

inline bool ProcessorHasAvx2() noexcept {
    constexpr DWORD kAvx2Available = 40;
    return ::IsProcessorFeaturePresent(kAvx2Available) != FALSE;
}

inline bool RunsUnderMemoryChecker() noexcept {
    return false;
}

}  // namespace platform

#endif
