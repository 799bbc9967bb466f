/**
 * @file
 * The wall clock, the time zone, the calendar, and a counter for measuring.
 *
 * Every call reads the clocks and the zone anew. Pointers are not tested. Any thread may call any
 * function here.
 */
#ifndef QXCORE_TIME_H
#define QXCORE_TIME_H

#include <qxcore/result.h>
#include <time.h>

QX_BEGIN_DECLS

/** A moment in the calendar. */
typedef struct QXTimeRecord {
    uint16_t year;         /**< the full year, such as 2026 */
    uint16_t month;        /**< 1 to 12 */
    uint16_t dayOfWeek;    /**< 0 for Sunday to 6 */
    uint16_t day;          /**< 1 to 31 */
    uint16_t hour;         /**< 0 to 23 */
    uint16_t minute;       /**< 0 to 59 */
    uint16_t second;       /**< 0 to 59 */
    uint16_t milliseconds; /**< 0 to 999 */
} QXTimeRecord;

/** A time zone, as it is now. */
typedef struct QXTimeZoneRecord {
    int32_t biasSeconds; /**< to be added to local time for universal time, the season's included */
    int16_t isDaylight;  /**< 1 while daylight saving time is in force, otherwise 0 */
    wchar standardName[32]; /**< the name of standard time, at most 31 units */
    wchar daylightName[32]; /**< the name of daylight saving time, at most 31 units */
} QXTimeZoneRecord;

/** Time since the start of 1970, universal time. */
typedef struct QXTimeSpec {
    int64_t seconds;
    int64_t nanoseconds; /**< 0 to 999999999 */
} QXTimeSpec;

/**
 * Gives the local time.
 *
 * @param out  receives it.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeGetLocal(QXTimeRecord* out);

/**
 * Gives the universal time.
 *
 * @param out  receives it.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeGetSystem(QXTimeRecord* out);

/**
 * Gives the time in nanoseconds since the start of 1970, universal time, in steps of 100.
 *
 * @param out  receives it; 1 if the clock stands at the start of 1970 or before.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeGetPreciseTimestamp(uint64_t* out);

/**
 * Gives the value of QXTimeGetPreciseTimestamp in seconds and nanoseconds.
 *
 * @param out  receives it.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeGetTimeOfDay(QXTimeSpec* out);

/**
 * Gives the time zone of the process.
 *
 * The names are in the user's language where the system knows them, and otherwise the
 * abbreviations by which it does. They are cut to 31 units. A zone that knows no daylight saving
 * time may have a name for it all the same.
 *
 * @param out  receives the zone; all zero on failure.
 * @return QX_S_OK; on failure what QXResultFromNative makes of the system's error.
 */
QX_API QXResult QXTimeGetZone(QXTimeZoneRecord* out);

/**
 * Makes a local time from seconds since the start of 1970.
 *
 * @param seconds  from 0 to the end of the year 3000, universal time.
 * @param out      receives the local time, with 0 milliseconds; all zero on failure.
 * @return QX_S_OK; QX_E_FAIL for seconds out of range.
 */
QX_API QXResult QXTimeFromPosix(int64_t seconds, QXTimeRecord* out);

/**
 * Makes seconds since the start of 1970 from a local time.
 *
 * Fields out of their range carry over into the next. Whether daylight saving time is in force is
 * asked for now and not for the date: a date of the other season moves by the difference.
 *
 * @param record  the local time. The day of the week and the milliseconds are not used.
 * @param out     receives the seconds; -1 on failure.
 * @return QX_S_OK; QX_E_FAIL for a time before 1970 or after the year 3000.
 */
QX_API QXResult QXTimeToPosix(const QXTimeRecord* record, int64_t* out);

/**
 * Makes a record from the C library's form. Nothing is checked: of each field the low 16 bits
 * count.
 *
 * @param source  the C library's form.
 * @param out     receives the record, with 0 milliseconds.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeFromTM(const struct tm* source, QXTimeRecord* out);

/**
 * Makes the C library's form from a record.
 *
 * @param record  the record. The milliseconds are not used.
 * @param out     receives the fields but tm_yday, and but those that only some systems have, which
 *                are left alone. tm_isdst tells whether daylight saving time is in force now,
 *                whatever the record's date; 0 if that cannot be found out.
 * @return QX_S_OK.
 */
QX_API QXResult QXTimeToTM(const QXTimeRecord* record, struct tm* out);

/**
 * Reads a counter for measuring, which never goes back.
 *
 * No system call where the system's clock can be read without one.
 *
 * @return the count in ticks; QXPerfGetFreq tells how many of them make a second. Milliseconds
 *         since the system started if the system has no such counter.
 */
QX_API int64_t QXPerfGetCount(void);

/**
 * Tells for how long the system has been running, in its steps of some milliseconds.
 *
 * @return milliseconds since its start; starts over after 2^32.
 */
QX_API uint32_t QXPerfGetCountMS(void);

/**
 * Tells how fast QXPerfGetCount counts.
 *
 * @return ticks a second, the same for the life of the process; 1000 if the system has no such
 *         counter.
 */
QX_API int64_t QXPerfGetFreq(void);

QX_END_DECLS

#endif
