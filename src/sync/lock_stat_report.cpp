#include "sync/lock_stat_report.h"

#include <qxcore/lockstats.h>
#include <qxcore/time.h>

#include <charconv>
#include <ctime>
#include <initializer_list>

#include "core/exception.h"
#include "sync/lock_stat_manager.h"

namespace {

std::string_view Label(i32 kind) {
    switch (kind) {
        case kLiveMutex:
            return "QX_MUTEX";
        case kRetiredMutex:
            return "QX_DEL_MUTEX";
        default:
            return "UNKNOWN";
    }
}

void AppendAddress(std::string& line, const void* address) {
    constexpr int kDigits = 16;
    auto rest = reinterpret_cast<std::uintptr_t>(address);
    char digits[kDigits];
    for (int place = kDigits - 1; place >= 0; --place) {
        digits[place] = "0123456789ABCDEF"[rest % 16];
        rest /= 16;
    }
    line.append(digits, kDigits);
}

void AppendFigure(std::string& line, i64 figure) {
    char digits[20];
    const auto end = std::to_chars(digits, digits + sizeof digits, figure).ptr;
    line += ',';
    line.append(digits, end);
}

// Numbers only: no locale changes the text.
QXResult AppendLocalTime(std::string& line) {
    QXTimeRecord now;
    QXTimeGetLocal(&now);
    std::tm broken{};
    const QXResult result = QXTimeToTM(&now, &broken);
    char text[80];
    line.append(text, std::strftime(text, sizeof text, "%m/%d/%Y %H:%M:%S", &broken));
    return result;
}

void RequireFile(bool succeeded) {
    if (!succeeded) {
        throw EQXCoreException(QX_E_FAIL);
    }
}

}  // namespace

LockStatReport::LockStatReport(const char* title, const wchar* path)
    : m_file(path), m_title(title) {
    RequireFile(m_file.IsOpen());
}

QXResult LockStatReport::WriteHead() {
    const QXResult result = WriteTitleLine("BeginLockStatistics: ");
    m_line = "CPU Frequency,1000000";
    WriteLine();
    m_line =
        "Name/Handle,Held Count,Total Held Time,Max Held Time,"
        "Acquire Count,Total Acquire Time,Max Acquire Time,Contention Count";
    WriteLine();
    return result;
}

// The columns are in another order than the record.
void LockStatReport::WriteRow(i32 kind, IMutex* mutex) {
    QXLockStats stats;
    mutex->GetStats(&stats);
    m_line = Label(kind);
    m_line += ":0x";
    AppendAddress(m_line, mutex);
    m_line += '(';
    m_line += mutex->GetName();
    m_line += ')';
    for (const i64 figure :
         {stats.heldCount, stats.totalHeldTime, stats.maxHeldTime, stats.acquireCount,
          stats.totalAcquireTime, stats.maxAcquireTime, stats.contentionCount}) {
        AppendFigure(m_line, figure);
    }
    WriteLine();
}

void LockStatReport::WriteTail() {
    WriteTitleLine("EndLockStatistics: ");
    for (int empty = 0; empty < 2; ++empty) {
        m_line.clear();
        WriteLine();
    }
    RequireFile(m_file.Close());
}

QXResult LockStatReport::WriteTitleLine(std::string_view word) {
    m_line = word;
    m_line += m_title;
    m_line += " - ";
    const QXResult result = AppendLocalTime(m_line);
    WriteLine();
    return result;
}

void LockStatReport::WriteLine() {
    m_line += '\n';
    RequireFile(m_file.Write(m_line));
}
