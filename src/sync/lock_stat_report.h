// One dump of the lock statistics, written to the end of a file.
#ifndef QX_SYNC_LOCK_STAT_REPORT_H
#define QX_SYNC_LOCK_STAT_REPORT_H

#include <string>
#include <string_view>

#include "platform/text_file.h"
#include "sync/mutex.h"

// Each operation throws QX_E_FAIL where the file fails.
class LockStatReport {
  public:
    LockStatReport(const char* title, const wchar* path);

    // The result is the one of the conversion of the time.
    QXResult WriteHead();
    void WriteRow(i32 kind, IMutex* mutex);
    // Closes the file too.
    void WriteTail();

  private:
    QXResult WriteTitleLine(std::string_view word);
    void WriteLine();

    platform::AppendedTextFile m_file;
    const std::string_view m_title;
    std::string m_line;  // its storage serves line after line
};

#endif
