#include "file_locks.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include "platform/errors.h"

namespace platform {
namespace {

class SectionHolder {
  public:
    explicit SectionHolder(CRITICAL_SECTION* section) noexcept : m_section(section) {
        EnterCriticalSection(m_section);
    }
    ~SectionHolder() { LeaveCriticalSection(m_section); }
    SectionHolder(const SectionHolder&) = delete;
    SectionHolder& operator=(const SectionHolder&) = delete;

  private:
    CRITICAL_SECTION* const m_section;
};

struct flock KernelRange(short type, u64 begin, u64 end) noexcept {
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(begin);
    range.l_len = static_cast<off_t>(end - begin);
    return range;
}

u32 LockError(int error) noexcept {
    switch (error) {
        case EAGAIN:
        case EACCES:
            return kErrorLockViolation;
        case EBADF:
            return kErrorAccessDenied;
        default:
            return NativeErrorFromErrno(error);
    }
}

}  // namespace

FileLocks::~FileLocks() {
    if (!m_ranges.empty()) {
        UnlockInKernel(0, INT64_MAX);
    }
}

u32 FileLocks::Lock(int file, u32 offset, u32 length, bool exclusive, bool wait) noexcept {
    const Range range = {offset, u64{offset} + length, exclusive};
    if (const u32 error = Reserve(file, range)) {
        return error;
    }
    const u32 error = length != 0 ? LockInKernel(range, wait) : u32{kErrorSuccess};
    if (error != 0) {
        GiveUp(range);
    }
    return error;
}

u32 FileLocks::Unlock(u32 offset, u32 length) noexcept {
    const SectionHolder hold(&m_lock);
    const auto found = std::find_if(m_ranges.begin(), m_ranges.end(), [&](const Range& each) {
        return each.m_begin == offset && each.m_end == u64{offset} + length;
    });
    if (found == m_ranges.end()) {
        return kErrorNotLocked;
    }
    const Range range = *found;
    m_ranges.erase(found);
    UnlockWhatNoneCovers(range);
    return kErrorSuccess;
}

// Noted before the wait, so that another thread with this handle does not get the bytes meanwhile.
u32 FileLocks::Reserve(int file, const Range& range) noexcept {
    const SectionHolder hold(&m_lock);
    if (std::any_of(m_ranges.begin(), m_ranges.end(),
                    [&](const Range& each) { return each.Conflicts(range); })) {
        return kErrorLockViolation;
    }
    try {
        m_ranges.push_back(range);
    } catch (const std::bad_alloc&) {
        return kErrorOutOfMemory;
    }
    ChooseDescriptor(file);
    return kErrorSuccess;
}

void FileLocks::GiveUp(const Range& range) noexcept {
    const SectionHolder hold(&m_lock);
    m_ranges.erase(std::find(m_ranges.begin(), m_ranges.end(), range));
}

// The kernel wants a descriptor for writing for an exclusive lock and one for reading for a shared
// one, the reference platform either for both. The first lock decides, since the locks of two
// descriptions would meet.
void FileLocks::ChooseDescriptor(int file) noexcept {
    if (m_file >= 0) {
        return;
    }
    m_file = file;
    if ((::fcntl(file, F_GETFL) & O_ACCMODE) != O_RDWR) {
        char path[32];
        std::snprintf(path, sizeof path, "/proc/self/fd/%d", file);
        m_reopened = OpenDescriptor(path, O_RDWR | O_NOCTTY);
        if (m_reopened) {
            m_file = m_reopened.Get();
        }
    }
}

u32 FileLocks::LockInKernel(const Range& range, bool wait) const noexcept {
    struct flock wanted = KernelRange(static_cast<short>(range.m_exclusive ? F_WRLCK : F_RDLCK),
                                      range.m_begin, range.m_end);
    while (::fcntl(m_file, wait ? F_OFD_SETLKW : F_OFD_SETLK, &wanted) != 0) {
        if (errno != EINTR) {
            return LockError(errno);
        }
    }
    return kErrorSuccess;
}

void FileLocks::UnlockInKernel(u64 begin, u64 end) const noexcept {
    struct flock range = KernelRange(F_UNLCK, begin, end);
    ::fcntl(m_file, F_OFD_SETLK, &range);
}

// Other shared locks of the handle may lie over parts of the range.
void FileLocks::UnlockWhatNoneCovers(const Range& range) const noexcept {
    u64 begin = range.m_begin;
    while (begin < range.m_end) {
        u64 covered = begin;
        u64 end = range.m_end;
        for (const Range& each : m_ranges) {
            if (each.m_begin <= begin) {
                covered = std::max(covered, each.m_end);
            } else {
                end = std::min(end, each.m_begin);
            }
        }
        if (covered > begin) {
            begin = covered;
        } else {
            UnlockInKernel(begin, end);
            begin = end;
        }
    }
}

}  // namespace platform
