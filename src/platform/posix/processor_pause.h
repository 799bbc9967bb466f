// A hint to the processor that a loop waits for another thread.
#ifndef QX_PLATFORM_POSIX_PROCESSOR_PAUSE_H
#define QX_PLATFORM_POSIX_PROCESSOR_PAUSE_H

namespace platform {

inline void PauseProcessor() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

}  // namespace platform

#endif
