#ifndef QX_FILE_ENTRY_TIMES_H
#define QX_FILE_ENTRY_TIMES_H

#include "platform/clocks.h"
#include "platform/files.h"

// The times of a listing's entries, in seconds since 1970: by way of the local time, which is read
// with the season of now, whatever the date.
//
// A conversion asks for the zone anew, which takes as long as looking at ten entries. What it adds
// to universal time is the same for a whole week, unless the zone changes in it, so it is
// kept for weeks that begin and end alike, for as long as the clock shows the same second.
class EntryTimes {
  public:
    // Before each entry.
    void Refresh() noexcept;

    // 0 for a time that cannot be converted.
    i64 SecondsOf(const platform::FILETIME& time) noexcept;

  private:
    struct Week {
        i64 m_number;  // since 1970; 0 for none
        bool m_isUniform;
        i64 m_difference;
    };
    static constexpr u64 kWeeks = 64;

    const Week& Look(i64 number) noexcept;

    // A second is told by the clock that takes least.
    const platform::SystemTimeFunction m_readClock =
        platform::FindSystemTimeFunction("GetSystemTimeAsFileTime");
    i64 m_now = 0;
    Week m_weeks[kWeeks] = {};
};

#endif
