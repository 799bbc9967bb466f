// The locks of one file handle.
#ifndef QX_PLATFORM_POSIX_FILES_FILE_LOCKS_H
#define QX_PLATFORM_POSIX_FILES_FILE_LOCKS_H

#include <vector>

#include "../descriptors.h"
#include "platform/sync.h"
#include "platform/types.h"

namespace platform {

// Locks of an open file description, which no other handle of the process drops. The kernel joins
// the ranges that one description has locked, so each of them is noted here.
class FileLocks {
  public:
    // Unlocks everything. A child between its fork and its exec may still have a copy of the
    // descriptor, which would keep the locks.
    ~FileLocks();

    // Errors: 33 others or the handle itself have locked some of it, 5, 14. Waits for others if it
    // is told to.
    u32 Lock(int file, u32 offset, u32 length, bool exclusive, bool wait) noexcept;

    // Errors: 158.
    u32 Unlock(u32 offset, u32 length) noexcept;

  private:
    struct Range {
        u64 m_begin;
        u64 m_end;
        bool m_exclusive;

        bool operator==(const Range&) const = default;
        bool Conflicts(const Range& other) const noexcept {
            return m_begin < other.m_end && other.m_begin < m_end &&
                   (m_exclusive || other.m_exclusive);
        }
    };
    using Ranges = std::vector<Range>;

    u32 Reserve(int file, const Range& range) noexcept;
    void GiveUp(const Range& range) noexcept;
    void ChooseDescriptor(int file) noexcept;
    u32 LockInKernel(const Range& range, bool wait) const noexcept;
    void UnlockInKernel(u64 begin, u64 end) const noexcept;
    void UnlockWhatNoneCovers(const Range& range) const noexcept;

    CRITICAL_SECTION m_lock;
    Ranges m_ranges;
    int m_file = -1;
    OwnedDescriptor m_reopened;
};

}  // namespace platform

#endif
