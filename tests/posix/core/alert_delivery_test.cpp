// What stands for the event log, the debugger's output and the message box: the test takes the
// place of the log, of the tracer, of the dialog programs and of the person at the terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <qxcore/debug.h>
#include <qxcore/mutex.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "posix/support/forked_child.h"
#include "support/temporary_directory.h"

namespace {

constexpr int kWentOn = 40;

std::string s_logged;
volatile sig_atomic_t s_traps = 0;

void CountTraps() {
    s_traps = 0;
    signal(SIGTRAP, [](int) { s_traps = s_traps + 1; });
}

void Log(int priority, const char* format, va_list arguments) {
    char text[2000];
    vsnprintf(text, sizeof text, format, arguments);
    s_logged += std::to_string(priority) + " " + text + "\n";
}

}  // namespace

extern "C" void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Log(priority, format, arguments);
    va_end(arguments);
}

// What a hardened build calls instead.
extern "C" void __syslog_chk(int priority, int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Log(priority, format, arguments);
    va_end(arguments);
}

namespace {

TEST(AlertDelivery, TheLogGetsTitleAndTextAsTheyAre) {
    QXErrorAlert(QX_ALERT_EVENTLOG, u"Title %s", u"100%% %hs \u00E4", "%n");
    QXErrorAlert(QX_ALERT_EVENTLOG, nullptr, u"%ls", std::u16string(600, u'x').c_str());
    EXPECT_EQ("6 Kestrane Services: Title %s: 100% %n \xC3\xA4\n6 Kestrane Services: " +
                  std::string(511, 'x') + "\n",
              s_logged);
}

TEST(AlertDelivery, AnAssertionBreaksOrDoesWhatIsSet) {
    CountTraps();
    s_logged.clear();
    QXAssert("a < b", "file.c", 7);
    EXPECT_EQ(1, s_traps);
    EXPECT_EQ("", s_logged);
    QXErrorAlertSetMethod(QX_ALERT_EVENTLOG);
    QXAssert("a < b", "file.c", 7);
    EXPECT_EQ(1, s_traps);
    EXPECT_EQ(
        "6 Kestrane Services: Kestrane Services: Kestrane Services Debug Assertion "
        "Failed!\n\nFile: file.c\nLine: 7\n\nExpression: a < b\n",
        s_logged);
}

TEST(CheckedMutexAlert, NamesTheCheckThatFailed) {
    const auto says = [](const char* text) {
        const std::string logged = std::exchange(s_logged, "");
        return logged.find("QXCore Critical Error") != logged.npos &&
               logged.find(text) != logged.npos;
    };
    QXErrorAlertSetMethod(QX_ALERT_EVENTLOG);
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE, &mutex));
    QXMutexRelease(mutex);
    EXPECT_TRUE(says("CQXCoreMutexChecked::preRelease m_owner check failed"));
    QXMutexAcquire(mutex);
    std::thread([&] { QXMutexTryAcquire(mutex); }).join();
    EXPECT_EQ("", s_logged);  // busy, and no mistake
    QXMutexTryAcquire(mutex);
    EXPECT_TRUE(says("CQXCoreMutexChecked::preAcquire m_owner check failed"));
    QXMutexRelease(mutex);
    QXMutexDestroy(mutex);
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED, &mutex));
    for (int depth = 0; depth < 0x10000; ++depth) {
        QXMutexAcquire(mutex);
    }
    QXMutexRelease(mutex);
    EXPECT_TRUE(says("CQXCoreMutexChecked::preRelease m_lockDepth check failed"));
    QXMutexDestroy(mutex);
}

// What a child that a debugger is attached to or not writes to its standard error, whose reader may
// be gone. Its parent is untraced, and knows so.
std::string TracedText(bool traced, bool isRead = true) {
    QXTrace(u"parent");
    int ends[2];
    EXPECT_EQ(0, pipe2(ends, O_CLOEXEC));
    if (!isRead) {
        close(ends[0]);
    }
    ForkedChild child([&] {
        if (traced) {
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        }
        dup2(ends[1], STDERR_FILENO);
        QXTrace(u"text %d", 5);
        return 0;
    });
    close(ends[1]);
    char text[256];
    EXPECT_EQ(0, child.Wait());
    const ssize_t size = isRead ? read(ends[0], text, sizeof text) : 0;
    return {text, static_cast<size_t>(size)};
}

TEST(AlertDelivery, TraceIsSeenByADebuggerAloneAndNoReasonToDie) {
    EXPECT_EQ("", TracedText(false));
    const std::string text = TracedText(true);
    EXPECT_TRUE(text.starts_with("[0x") && text.ends_with("]text 5")) << text;
    TracedText(true, false);
}

// The exit code of a child: kWentOn and the number of its traps if the alert came back.
int CodeOfAlert(const wchar* title, const wchar* text) {
    CountTraps();
    QXErrorAlert(QX_ALERT_MESSAGE, title, u"%ls", text);
    return kWentOn + s_traps;
}

// Asks by scripts that stand for the programs that show dialogs; gives what they were called with.
int AnswerByDialog(const std::string& zenity, const std::string& xmessage,
                   std::string* calls = nullptr) {
    const TemporaryDirectory directory;
    const std::string folder = directory.Path().string();
    for (const auto& [name, action] : {std::pair("/zenity", zenity), {"/xmessage", xmessage}}) {
        WriteFile(folder + name, "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" >>" + folder +
                                     "/calls\n" + action + "\n");
        chmod((folder + name).c_str(), 0700);
    }
    ForkedChild child(
        [&] {
            setenv("PATH", (folder + ":/usr/bin:/bin").c_str(), 1);
            setenv("DISPLAY", ":0", 1);
            setsid();
            return CodeOfAlert(nullptr, u"-text <b> \\n");
        },
        ChildEnd::kThroughExitHandlers);
    const int code = child.Wait();
    if (calls != nullptr) {
        *calls = ReadFile(folder + "/calls");
    }
    return code;
}

TEST(AlertDialog, AnswersAreActedOn) {
    EXPECT_EQ(kWentOn, AnswerByDialog("echo Ignore; exit 1", ""));
    EXPECT_EQ(3, AnswerByDialog("echo Abort", ""));
    EXPECT_EQ(kWentOn + 1, AnswerByDialog("echo Retry", ""));
    EXPECT_EQ(kWentOn, AnswerByDialog("exit $ZENITY_ESC", "echo Retry"));
    EXPECT_EQ(kWentOn + 1, AnswerByDialog("echo nothing known", "echo Retry"));
    EXPECT_EQ(kWentOn, AnswerByDialog("exit 1", "exit 1"));
    std::string calls;
    AnswerByDialog("exit 1", "echo Ignore", &calls);
    for (const char* argument : {"--title=QXErrorAlert [Process ID ",
                                 "--text=-text <b> \\n\n\nPress retry to debug the application.\n",
                                 "\n -text <b> \\n\n\nPress retry"}) {
        EXPECT_NE(calls.npos, calls.find(argument)) << calls;
    }
}

TEST(AlertDialog, AHandlerOfTheAbortSignalRunsFirst) {
    signal(SIGABRT, [](int) { _exit(77); });
    EXPECT_EQ(77, AnswerByDialog("echo Abort", ""));
    signal(SIGABRT, [](int) {});
    EXPECT_EQ(3, AnswerByDialog("echo Abort", ""));
}

// Types one answer after each question; the exit code of the program at the terminal.
int AnswerAtTerminal(std::vector<std::string> answers) {
    int terminal = -1;
    const pid_t id = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (id == 0) {
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        _exit(CodeOfAlert(u"Title", u"bell \a escape \x1B[0m \u009B"));
    }
    std::string shown;
    char unit;
    while (read(terminal, &unit, 1) == 1) {
        shown += unit;
        if (shown.ends_with("[a/r/i] ") && !answers.empty()) {
            EXPECT_LT(0, write(terminal, answers[0].data(), answers[0].size()));
            answers.erase(answers.begin());
        }
    }
    int status = 0;
    waitpid(id, &status, 0);
    close(terminal);
    EXPECT_NE(shown.npos, shown.find("Title [Process ID "));
    EXPECT_NE(shown.npos, shown.find("bell ? escape ?[0m ?"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(AlertAtTerminal, AsksUntilItIsAnswered) {
    EXPECT_EQ(kWentOn, AnswerAtTerminal({"i\n"}));
    EXPECT_EQ(kWentOn + 1, AnswerAtTerminal({"x\n", "\n", "aborted\n", "Retry\n"}));
    EXPECT_EQ(3, AnswerAtTerminal({"A\n"}));
    EXPECT_EQ(kWentOn, AnswerAtTerminal({"\x04"}));
}

}  // namespace
