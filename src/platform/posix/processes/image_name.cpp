// The file that a process runs, whoever has started it.
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "../cancellation.h"
#include "../descriptors.h"
#include "../files/file_error.h"
#include "platform/processes.h"

namespace platform {
namespace {

class OpenedProcess final : public CheckedObject {
  public:
    OpenedProcess(OwnedDescriptor process, u32 id) noexcept
        : m_process(std::move(process)), m_id(id) {}

    u32 Id() const noexcept { return m_id; }

    // As long as it does, nobody else has its number.
    bool Runs() const noexcept {
        pollfd polled = {m_process.Get(), POLLIN, 0};
        return ::poll(&polled, 1, 0) == 0;
    }

    u32 Wait(u32) noexcept override {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }

  private:
    const OwnedDescriptor m_process;
    const u32 m_id;
};

int OpenById(u32 id) noexcept {
    return static_cast<int>(::syscall(SYS_pidfd_open, id, 0));
}

// The kernel's path, without what it says of a file that is gone; empty if it tells none.
std::string_view ReadImagePath(const OpenedProcess& process, char (&buffer)[4096]) noexcept {
    constexpr std::string_view kGone = " (deleted)";
    char link[32];
    std::snprintf(link, sizeof link, "/proc/%u/exe", process.Id());
    const ssize_t length = ::readlink(link, buffer, sizeof buffer);
    if (length < 0 || !process.Runs()) {
        return {};
    }
    const std::string_view path(buffer, static_cast<std::size_t>(length));
    return path.ends_with(kGone) ? path.substr(0, path.size() - kGone.size()) : path;
}

// What the buffer of a client holds, from a separator on.
std::string_view EndThatFits(std::string_view path, u32 size) noexcept {
    if (path.size() < size) {
        return path;
    }
    path.remove_prefix(path.size() - size + 1);
    return path.substr(std::min(path.find('/'), path.size()));
}

}  // namespace

HANDLE OpenProcess(u32, bool, u32 id) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    OwnedDescriptor process(AboveStandardStreams(OpenById(id)));
    if (!process) {
        const bool isNone = errno == ESRCH || errno == EINVAL;
        FailWith(isNone ? u32{kErrorInvalidParameter} : FileErrorFromErrno(errno));
        return nullptr;
    }
    auto* const object = new (std::nothrow) OpenedProcess(std::move(process), id);
    if (object == nullptr) {
        FailWith(kErrorOutOfMemory);
        return nullptr;
    }
    return NewCheckedHandle(object);
}

u32 GetProcessImageFileNameA(HANDLE handle, char* buffer, u32 size) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    const CheckedReference reference(handle);
    const auto* const process = dynamic_cast<OpenedProcess*>(reference.Get());
    if (process == nullptr) {
        FailWith(kErrorInvalidHandle);
        return 0;
    }
    char path[4096];
    const std::string_view name = EndThatFits(ReadImagePath(*process, path), size);
    if (name.empty()) {
        FailWith(kErrorAccessDenied);
        return 0;
    }
    std::replace_copy(name.begin(), name.end(), buffer, '/', '\\');
    buffer[name.size()] = '\0';
    return static_cast<u32>(name.size());
}

}  // namespace platform
