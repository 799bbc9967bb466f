#include "process/process_create.h"

#include <qxcore/file.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/exception.h"
#include "platform/crt_text.h"

namespace {

constexpr int kStandardHandles = 3;

// The ends of the pipes that one call makes.
class StdPipeGuard {
  public:
    StdPipeGuard() {
        std::fill_n(parentEnds, kStandardHandles, QX_INVALID_HANDLE);
        std::fill_n(childEnds, kStandardHandles, QX_INVALID_HANDLE);
    }
    ~StdPipeGuard() {
        Close(childEnds);
        if (closeParentEnds) {
            Close(parentEnds);
        }
    }
    StdPipeGuard(const StdPipeGuard&) = delete;
    StdPipeGuard& operator=(const StdPipeGuard&) = delete;

    void KeepParentEnds() { closeParentEnds = false; }

    // Makes the pipe of a standard handle and returns the child's end.
    QXHandle MakePipe(int slot) {
        platform::SECURITY_ATTRIBUTES inherited = {};
        inherited.nLength = sizeof inherited;
        inherited.bInheritHandle = 1;
        const bool childReads = slot == 0;
        QXHandle* const read = childReads ? &childEnds[slot] : &parentEnds[slot];
        QXHandle* const write = childReads ? &parentEnds[slot] : &childEnds[slot];
        if (!platform::CreatePipe(read, write, &inherited, 0) ||
            !platform::SetHandleInformation(parentEnds[slot], platform::kHandleFlagInherit, 0)) {
            ThrowLastError();
        }
        return childEnds[slot];
    }

    QXHandle ParentEnd(int slot) const { return parentEnds[slot]; }

  private:
    using Ends = QXHandle[kStandardHandles];

    static void Close(const Ends& ends) {
        for (const QXHandle end : ends) {
            if (end != QX_INVALID_HANDLE) {
                QXFileClose(end);
            }
        }
    }

    Ends parentEnds;
    Ends childEnds;
    bool closeParentEnds = true;
};

// The child's handle for a slot of the caller's, which receives the other end if it asks for a
// pipe.
QXHandle StandardHandle(QXHandle* slots, int slot, StdPipeGuard& pipes) {
    if (slots[slot] != QX_INVALID_HANDLE) {
        return slots[slot];
    }
    const QXHandle childEnd = pipes.MakePipe(slot);
    slots[slot] = pipes.ParentEnd(slot);
    return childEnd;
}

void TakeStandardHandles(QXHandle* slots, StdPipeGuard& pipes, platform::STARTUPINFOW* startup) {
    startup->dwFlags = platform::kStartfUseStdHandles;
    startup->hStdInput = StandardHandle(slots, 0, pipes);
    startup->hStdOutput = StandardHandle(slots, 1, pipes);
    startup->hStdError = StandardHandle(slots, 2, pipes);
}

// The place where the text would have to end in ".exe" wraps round for a text of three units, to
// the value that says that there is none: such a text stays as it is.
std::u16string ApplicationText(const wchar* program) {
    std::u16string text = program;
    constexpr std::u16string_view kSuffix = u".exe";
    if (text.rfind(kSuffix) != text.size() - kSuffix.size()) {
        text += kSuffix;
    }
    return text;
}

// Nothing is quoted: the platform gets the program's path on its own as well.
std::u16string CommandLine(const std::u16string& application, const wchar* arguments) {
    return arguments != nullptr ? application + u' ' + arguments : application;
}

bool SortsBefore(const std::u16string& first, const std::u16string& second) {
    return platform::_wcsicoll(first.c_str(), second.c_str()) < 0;
}

// Each text with its terminator in the order of the collation, and a zero behind them.
std::u16string EnvironmentBlock(const wchar* const* environment) {
    std::vector<std::u16string> texts;
    for (; *environment != nullptr; ++environment) {
        texts.emplace_back(*environment);
    }
    std::sort(texts.begin(), texts.end(), SortsBefore);
    std::u16string block;
    for (const std::u16string& text : texts) {
        block.append(text.c_str(), text.size() + 1);
    }
    block += u'\0';
    return block;
}

platform::HANDLE Start(const ChildRequest& request, platform::STARTUPINFOW* startup) {
    const std::u16string application = ApplicationText(request.m_program);
    std::u16string commandLine = CommandLine(application, request.m_arguments);
    std::u16string block;
    if (request.m_environment != nullptr) {
        block = EnvironmentBlock(request.m_environment);
    }
    platform::PROCESS_INFORMATION information = {};
    if (!platform::CreateProcessW(application.c_str(), commandLine.data(), nullptr, nullptr, true,
                                  platform::kCreateUnicodeEnvironment,
                                  request.m_environment != nullptr ? block.data() : nullptr,
                                  request.m_directory, startup, &information)) {
        ThrowLastError();
    }
    platform::CloseHandle(information.hThread);
    return information.hProcess;
}

}  // namespace

platform::HANDLE CreateChild(const ChildRequest& request, CQXProcessManager& manager) {
    auto entry = CQXProcessManager::NewEntry();
    platform::STARTUPINFOW startup;
    platform::GetStartupInfoW(&startup);
    StdPipeGuard pipes;
    if (request.m_standardHandles != nullptr) {
        TakeStandardHandles(request.m_standardHandles, pipes, &startup);
    }
    const platform::HANDLE child = Start(request, &startup);
    pipes.KeepParentEnds();
    manager.AddChild(std::move(entry), child);
    return child;
}
