#include "file/entry_times.h"

#include <qxcore/time.h>

#include <algorithm>
#include <bit>
#include <iterator>

namespace {

constexpr i64 kStepsPerSecond = 10'000'000;
constexpr i64 kSecondsFrom1601To1970 = 11'644'473'600;
constexpr i64 kSecondsPerWeek = i64{7} * 24 * 3600;

i64 UniversalSeconds(const platform::FILETIME& time) {
    const u64 steps = u64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    return static_cast<i64>(steps / kStepsPerSecond) - kSecondsFrom1601To1970;
}

platform::FILETIME FileTimeOf(i64 seconds) {
    const u64 steps = static_cast<u64>((seconds + kSecondsFrom1601To1970) * kStepsPerSecond);
    platform::FILETIME time;
    time.dwLowDateTime = static_cast<u32>(steps);
    time.dwHighDateTime = static_cast<u32>(steps >> 32);
    return time;
}

i64 Convert(const platform::FILETIME& time) {
    platform::FILETIME local;
    platform::SYSTEMTIME record;
    i64 seconds = 0;
    if (!platform::FileTimeToLocalFileTime(&time, &local) ||
        !platform::FileTimeToSystemTime(&local, &record)) {
        return 0;
    }
    const QXTimeRecord calendar = std::bit_cast<QXTimeRecord>(record);
    return QX_SUCCEEDED(QXTimeToPosix(&calendar, &seconds)) ? seconds : 0;
}

}  // namespace

void EntryTimes::Refresh() noexcept {
    platform::FILETIME now;
    m_readClock(&now);
    if (m_now != UniversalSeconds(now)) {
        m_now = UniversalSeconds(now);
        std::fill(std::begin(m_weeks), std::end(m_weeks), Week{});
    }
}

i64 EntryTimes::SecondsOf(const platform::FILETIME& time) noexcept {
    const i64 universal = UniversalSeconds(time);
    if (universal < kSecondsPerWeek) {
        return Convert(time);
    }
    const Week& week = Look(universal / kSecondsPerWeek);
    return week.m_isUniform ? universal + week.m_difference : Convert(time);
}

const EntryTimes::Week& EntryTimes::Look(i64 number) noexcept {
    Week& week = m_weeks[static_cast<u64>(number) % kWeeks];
    if (week.m_number != number) {
        const i64 begin = number * kSecondsPerWeek;
        const i64 end = begin + kSecondsPerWeek;
        const i64 atBegin = Convert(FileTimeOf(begin));
        const i64 atEnd = Convert(FileTimeOf(end));
        week = {number, atBegin != 0 && atEnd - atBegin == kSecondsPerWeek, atBegin - begin};
    }
    return week;
}
