// QXFileOpen: the flag word in the platform's terms.
#include <qxcore/file.h>

#include <iterator>

#include "platform/errors.h"
#include "platform/files.h"

namespace {

constexpr u32 kAccessBits = QX_FILE_READ | QX_FILE_WRITE;
constexpr u32 kDispositionBits = QX_FILE_CREATE | QX_FILE_TRUNCATE | QX_FILE_EXCLUSIVE;
constexpr i32 kWriteModes = 0222;
constexpr QXResult kCreated = 2;

// By the three bits; 0 is refused.
constexpr u32 kDispositions[8] = {
    platform::kOpenExisting,
    platform::kOpenAlways,
    platform::kTruncateExisting,
    platform::kCreateAlways,
    0,
    platform::kCreateNew,
    0,
    platform::kCreateNew,
};
static_assert(QX_FILE_CREATE == 1u << 8 && QX_FILE_TRUNCATE == 2u << 8 &&
              QX_FILE_EXCLUSIVE == 4u << 8);

// What one opening asks of the platform.
struct FileOpening {
    FileOpening(const wchar* path, u32 flags, i32 mode)
        : m_flags(flags),
          m_access(flags & kAccessBits),
          m_attributes(platform::kAttributeNormal),
          m_name(path) {
        if ((flags & QX_FILE_CREATE) != 0 && (mode & kWriteModes) == 0) {
            m_attributes = platform::kAttributeReadOnly;
        }
        if ((flags & QX_FILE_TEMPORARY) != 0) {
            MakeTemporary();
        }
        if ((flags & QX_FILE_WRITETHROUGH) != 0) {
            m_attributes |= platform::kFlagWriteThrough;
        }
    }

    u32 Disposition() const { return kDispositions[(m_flags & kDispositionBits) >> 8]; }

    u32 m_flags;
    u32 m_access;
    u32 m_attributes;
    const wchar* m_name;

  private:
    void MakeTemporary() {
        if (m_name == nullptr || *m_name == 0) {
            MakeTemporaryName();
            m_flags &= ~kDispositionBits;
        } else {
            m_flags |= QX_FILE_CREATE;
        }
        m_attributes |= platform::kAttributeTemporary | platform::kFlagDeleteOnClose;
        m_access |= platform::kDelete;
    }

    // Without a name the opening fails.
    void MakeTemporaryName() {
        wchar directory[260] = {};
        m_temporaryName[0] = 0;
        platform::GetTempPathW(std::size(directory), directory);
        platform::GetTempFileNameW(directory, u"tmp", m_temporaryName);
        m_name = m_temporaryName;
    }

    wchar m_temporaryName[264];
};

QXResult ResultOfOpening(u32 disposition) {
    const bool tells =
        disposition == platform::kCreateAlways || disposition == platform::kOpenAlways;
    return tells && platform::GetLastError() != platform::kErrorAlreadyExists ? kCreated : QX_S_OK;
}

}  // namespace

QXResult QXFileOpen(const wchar* path, uint32_t flags, int32_t mode, QXHandle* file) {
    *file = QX_INVALID_HANDLE;
    const FileOpening opening(path, flags, mode);
    const platform::HANDLE opened = platform::CreateFileW(
        opening.m_name, opening.m_access, platform::kShareRead | platform::kShareWrite,
        opening.Disposition(), opening.m_attributes);
    if (opened == QX_INVALID_HANDLE) {
        return QXResultFromNative(platform::GetLastError());
    }
    *file = opened;
    const QXResult result = ResultOfOpening(opening.Disposition());
    if ((flags & QX_FILE_APPEND) != 0 &&
        platform::SetFilePointer(opened, 0, 2) == platform::kInvalidFilePointer) {
        return QXResultFromNative(platform::GetLastError());
    }
    return result;
}
