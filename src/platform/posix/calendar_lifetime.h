// What forking needs to know of the calendar.
#ifndef QX_PLATFORM_POSIX_CALENDAR_LIFETIME_H
#define QX_PLATFORM_POSIX_CALENDAR_LIFETIME_H

namespace platform {

// Waits until no other thread converts a time, and keeps it so until the other is called, in the
// parent and in the child.
void HoldCalendarForFork() noexcept;
void FreeCalendarAfterFork() noexcept;

}  // namespace platform

#endif
