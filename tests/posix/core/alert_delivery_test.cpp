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
#include <cstdlib>
#include <string>
#include <thread>

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

std::string ReadAll(int descriptor) {
    std::string text;
    char buffer[256];
    for (ssize_t size; (size = read(descriptor, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<size_t>(size));
    }
    return text;
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
    s_logged.clear();
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

bool Says(const char* text) {
    const std::string logged = std::exchange(s_logged, "");
    return logged.find("QXCore Critical Error") != logged.npos && logged.find(text) != logged.npos;
}

TEST(CheckedMutexAlert, NamesTheCheckThatFailed) {
    QXErrorAlertSetMethod(QX_ALERT_EVENTLOG);
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE, &mutex));
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_TRUE(Says("CQXCoreMutexChecked::preRelease m_owner check failed"));
    QXMutexAcquire(mutex);
    std::thread([&] { QXMutexTryAcquire(mutex); }).join();
    EXPECT_EQ("", s_logged);  // busy, and no mistake
    for (const auto operation : {QXMutexAcquire, QXMutexTryAcquire}) {
        EXPECT_EQ(QX_E_FAIL, operation(mutex));
        EXPECT_TRUE(Says("CQXCoreMutexChecked::preAcquire m_owner check failed"));
    }
    QXMutexRelease(mutex);
    EXPECT_EQ("", s_logged);
    QXMutexDestroy(mutex);
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED, &mutex));
    for (int depth = 0; depth < 0x10000; ++depth) {
        QXMutexAcquire(mutex);
    }
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_TRUE(Says("CQXCoreMutexChecked::preRelease m_lockDepth check failed"));
    QXMutexDestroy(mutex);
}

// What a traced or untraced child writes to its standard error. Its parent is untraced, and knows
// so.
std::string TracedText(bool traced) {
    QXTrace(u"parent");
    int ends[2];
    EXPECT_EQ(0, pipe2(ends, O_CLOEXEC));
    ForkedChild child([&] {
        if (traced) {
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        }
        dup2(ends[1], STDERR_FILENO);
        QXTrace(u"text %d", 5);
        return getpid() & 0x7F;
    });
    close(ends[1]);
    std::string text = ReadAll(ends[0]);
    close(ends[0]);
    EXPECT_NE(-1, child.Wait());
    return text;
}

TEST(AlertDelivery, TraceIsSeenByADebuggerAlone) {
    EXPECT_EQ("", TracedText(false));
    const std::string text = TracedText(true);
    EXPECT_EQ("[0x", text.substr(0, 3));
    EXPECT_EQ("]text 5", text.substr(text.find(']')));
}

TEST(AlertDelivery, ADebuggerThatDoesNotReadIsNoReasonToDie) {
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    close(ends[0]);
    ForkedChild child([&] {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        dup2(ends[1], STDERR_FILENO);
        QXTrace(u"text");
        return 0;
    });
    close(ends[1]);
    EXPECT_EQ(0, child.Wait());
}

// Programs that stand for those that show dialogs.
class Dialogs : public testing::Test {
  protected:
    void Install(const std::string& name, const std::string& action) {
        const std::string path = m_directory.Path().string() + "/" + name;
        WriteFile(path, "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" >>" + m_directory.Path().string() +
                            "/calls\n" + action + "\n");
        chmod(path.c_str(), 0700);
    }
    // The child's exit code: kWentOn and the number of its traps if the alert came back.
    int Ask() {
        return ForkedChild(
                   [this] {
                       const std::string path = m_directory.Path().string() + ":/usr/bin:/bin";
                       setenv("PATH", path.c_str(), 1);
                       setenv("DISPLAY", ":0", 1);
                       setsid();
                       CountTraps();
                       QXErrorAlert(QX_ALERT_MESSAGE, nullptr, u"%ls", u"-text <b> \\n");
                       return kWentOn + s_traps;
                   },
                   ChildEnd::kThroughExitHandlers)
            .Wait();
    }
    TemporaryDirectory m_directory;
};

TEST_F(Dialogs, AnswersAreActedOn) {
    struct Case {
        const char* action;
        int code;
        const char* other = "echo Retry";
    };
    for (const auto& [action, code, other] :
         {Case{"echo Ignore; exit 1", kWentOn}, Case{"echo Abort", 3},
          Case{"echo Retry", kWentOn + 1}, Case{"exit $ZENITY_ESC", kWentOn},
          Case{"echo nothing known", kWentOn + 1}, Case{"exit 1", kWentOn + 1},
          Case{"exit 1", kWentOn, "exit 1"}}) {
        SCOPED_TRACE(action);
        Install("zenity", action);
        Install("xmessage", other);
        EXPECT_EQ(code, Ask());
    }
}

TEST_F(Dialogs, GetTitleAndTextAsTheyAre) {
    Install("zenity", "exit 1");
    Install("xmessage", "echo Ignore");
    EXPECT_EQ(kWentOn, Ask());
    const std::string calls = ReadFile(m_directory.Path() / "calls");
    EXPECT_NE(calls.npos, calls.find("--title=QXErrorAlert [Process ID "));
    EXPECT_NE(calls.npos, calls.find("--text=-text <b> \\n\n\nPress retry to debug the "
                                     "application.\n"));
    EXPECT_NE(calls.npos, calls.find("\n -text <b> \\n\n\nPress retry"));
}

TEST_F(Dialogs, AHandlerOfTheAbortSignalRunsFirst) {
    Install("zenity", "echo Abort");
    signal(SIGABRT, [](int) { _exit(77); });
    EXPECT_EQ(77, Ask());
    signal(SIGABRT, [](int) {});
    EXPECT_EQ(3, Ask());
}

// Types one answer after each question; the exit code of the program at the terminal.
int AnswerAtTerminal(const std::vector<std::string>& answers, std::string* shown) {
    int terminal = -1;
    const pid_t id = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (id == 0) {
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        CountTraps();
        QXErrorAlert(QX_ALERT_MESSAGE, u"Title", u"bell \a escape \x1B[0m \u009B");
        _exit(kWentOn + s_traps);
    }
    size_t answered = 0;
    char unit;
    while (read(terminal, &unit, 1) == 1) {
        *shown += unit;
        if (shown->ends_with("[a/r/i] ") && answered < answers.size()) {
            const std::string& line = answers[answered++];
            EXPECT_EQ(static_cast<ssize_t>(line.size()), write(terminal, line.data(), line.size()));
        }
    }
    int status = 0;
    waitpid(id, &status, 0);
    close(terminal);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(AlertAtTerminal, AsksUntilItIsAnswered) {
    struct Case {
        std::vector<std::string> answers;
        int code;
    };
    for (const Case& each :
         {Case{{"i\n"}, kWentOn}, Case{{"x\n", "\n", "aborted\n", "Retry\n"}, kWentOn + 1},
          Case{{"A\n"}, 3}, Case{{"\x04"}, kWentOn}}) {
        std::string shown;
        EXPECT_EQ(each.code, AnswerAtTerminal(each.answers, &shown));
        EXPECT_NE(shown.npos, shown.find("Title [Process ID "));
        EXPECT_NE(shown.npos, shown.find("bell ? escape ?[0m ?"));
    }
}

}  // namespace
