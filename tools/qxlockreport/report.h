// Reads a report of lock statistics: the text that QXDumpLockStats appends to a file.
#ifndef QXLOCKREPORT_REPORT_H
#define QXLOCKREPORT_REPORT_H

#include <array>
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

// In the order of the report's columns. Times are in microseconds.
enum LockFigure {
    kHeldCount,
    kTotalHeldTime,
    kMaxHeldTime,
    kAcquireCount,
    kTotalAcquireTime,
    kMaxAcquireTime,
    kContentionCount,
    kFigureCount,
};

struct LockRow {
    bool m_isRetired;
    std::string m_address;  // 16 hexadecimal digits
    std::string m_name;
    std::array<std::int64_t, kFigureCount> m_figures;
};

struct LockDump {
    std::string m_title;
    std::string m_time;
    bool m_isWhole = false;  // its last line is there
    std::vector<LockRow> m_rows;
};

struct LockReport {
    std::vector<LockDump> m_dumps;
    int m_strangeLines = 0;  // lines that are none of a report's
};

// Takes both kinds of line ends. A name may hold anything, line feeds too.
LockReport ReadLockReport(std::istream& in);

#endif
