// How a failure travels inside the library.
#ifndef QX_CORE_EXCEPTION_H
#define QX_CORE_EXCEPTION_H

#include <qxcore/result.h>

#include "platform/errors.h"
#include "platform/types.h"

// Thrown by value, caught by reference; deliberately no std::exception.
class EQXCoreException {
  public:
    explicit EQXCoreException(QXResult result) noexcept : m_result(result) {}

    QXResult m_result;
};

// Throws a negative result on.
inline void ThrowIfFailed(QXResult result) {
    if (QX_FAILED(result)) {
        throw EQXCoreException(result);
    }
}

// The result of a native operation that tells of its success.
inline QXResult ResultOf(bool succeeded) {
    return succeeded ? QX_S_OK : QXResultFromNative(platform::GetLastError());
}

// Throws the calling thread's last error. To be called in the line behind the failing operation.
[[noreturn]] inline void ThrowLastError() {
    // Before the exception's memory is taken, which may leave a number of its own.
    const u32 error = platform::GetLastError();
    throw EQXCoreException(QXResultFromNative(error));
}

#endif
