#ifndef QX_PLATFORM_WINDOWS_CANCELLATION_NATIVE_H
#define QX_PLATFORM_WINDOWS_CANCELLATION_NATIVE_H

namespace platform {

class CancellationOff {
  public:
    CancellationOff() noexcept {}
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;
};

}  // namespace platform

#endif
