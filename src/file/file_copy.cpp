#include <qxcore/file.h>

#include <cstdlib>

#include "platform/errors.h"
#include "platform/files.h"

namespace {

constexpr u32 kBufferSize = 16384;

// The count decides alone: a failure to read reads as the end.
u32 ReadPiece(QXHandle source, void* buffer) {
    u32 count = 0;
    platform::ReadFile(source, buffer, kBufferSize, &count);
    return count;
}

QXResult WritePiece(QXHandle destination, const void* buffer, u32 count) {
    u32 written = 0;
    const bool wrote = platform::WriteFile(destination, buffer, count, &written);
    const QXResult result = wrote ? QX_S_OK : QXResultFromNative(platform::GetLastError());
    return written != count ? QX_E_FAIL : result;
}

QXResult CopyBytes(QXHandle source, QXHandle destination, void* buffer) {
    while (const u32 count = ReadPiece(source, buffer)) {
        const QXResult result = WritePiece(destination, buffer, count);
        if (result != QX_S_OK) {
            return result;
        }
    }
    return QX_S_OK;
}

}  // namespace

QXResult QXFileCopy(const wchar* source, const wchar* destination, uint32_t flags, int32_t mode,
                    QXHandle* file) {
    if (file != nullptr) {
        *file = QX_INVALID_HANDLE;
    }
    QXHandle from;
    QXHandle to;
    if (const QXResult result = QXFileOpen(source, QX_FILE_READ, 0, &from); QX_FAILED(result)) {
        return result;
    }
    if (const QXResult result = QXFileOpen(destination, flags | QX_FILE_WRITE, mode, &to);
        QX_FAILED(result)) {
        QXFileClose(from);
        return result;
    }
    void* const buffer = std::malloc(kBufferSize);
    if (buffer == nullptr) {
        return QX_E_OUTOFMEMORY;
    }
    const QXResult result = CopyBytes(from, to, buffer);
    if (result == QX_S_OK && file != nullptr) {
        *file = to;
    } else {
        QXFileClose(to);
    }
    std::free(buffer);
    QXFileClose(from);
    return result;
}
