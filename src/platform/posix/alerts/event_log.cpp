// The system's log, through the process's own connection to it: neither opened nor closed here.
#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <new>
#include <string>

#include "narrow_text.h"
#include "platform/alerts.h"
#include "platform/cancellation.h"
#include "platform/errors.h"

namespace platform {
namespace {

// The C library's connection to the log takes the lowest number that is free. Those of the standard
// streams are for them, also where the process has closed one.
class StandardStreamsTaken {
  public:
    StandardStreamsTaken() noexcept {
        while (m_count < 3) {
            const int descriptor = ::open("/", O_PATH | O_CLOEXEC);
            if (descriptor < 0) {
                return;
            }
            if (descriptor > STDERR_FILENO) {
                ::close(descriptor);
                return;
            }
            m_taken[m_count++] = descriptor;
        }
    }
    ~StandardStreamsTaken() {
        while (m_count > 0) {
            ::close(m_taken[--m_count]);
        }
    }
    StandardStreamsTaken(const StandardStreamsTaken&) = delete;
    StandardStreamsTaken& operator=(const StandardStreamsTaken&) = delete;

  private:
    int m_taken[3];
    int m_count = 0;
};

std::string EntryText(const char16_t* source, const char16_t** strings, u16 count) {
    std::string text = NarrowText(source);
    for (u16 index = 0; index < count; ++index) {
        if (strings[index] != nullptr) {
            text.append(": ").append(NarrowText(strings[index]));
        }
    }
    return text;
}

}  // namespace

// The name is all that the log needs of a source.
EventSource RegisterEventSourceW(const char16_t*, const char16_t* source) noexcept {
    return const_cast<char16_t*>(source);
}

bool ReportEventW(EventSource log, u16, u16, u32, void*, u16 stringCount, u32,
                  const char16_t** strings, void*) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff cancellationOff;
    try {
        const std::string text = EntryText(static_cast<const char16_t*>(log), strings, stringCount);
        const StandardStreamsTaken standardStreamsTaken;
        ::syslog(LOG_INFO, "%s", text.c_str());
        return true;
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return false;
    }
}

bool DeregisterEventSource(EventSource) noexcept {
    return true;
}

}  // namespace platform
