#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "posix/support/forked_child.h"
#include "process/process_support.h"
#include "support/child_role.h"
#include "support/system.h"

namespace {

using Wide = std::u16string;

const QXHandle kPipe = QX_INVALID_HANDLE;

QXResult Start(const Wide& program, const Wide& arguments, QXHandle* standardHandles,
               QXHandle* child, const wchar* const* environment = nullptr) {
    return QXProcessCreate(program.c_str(), arguments.c_str(), nullptr, environment, 0,
                           standardHandles, child);
}

std::string OutputOf(const Wide& program, const Wide& arguments,
                     const wchar* const* environment = nullptr) {
    Pipes pipes{{nullptr, kPipe, kPipe}};
    QXHandle child = nullptr;
    EXPECT_EQ(QX_S_OK, Start(program, arguments, pipes.ends, &child, environment));
    const std::string output = ReadAll(pipes.ends[1]);
    EXPECT_EQ(0u, CodeOf(child));
    return output;
}

QXHandle StartShell(const Wide& script, QXHandle* standardHandles = nullptr) {
    QXHandle child = nullptr;
    EXPECT_EQ(QX_S_OK, Start(u"/bin/sh", u"-c \"" + script + u"\"", standardHandles, &child));
    return child;
}

bool HasChildren() {
    siginfo_t any;
    return ::waitid(P_ALL, 0, &any, WEXITED | WNOHANG | WNOWAIT) == 0;
}

CHILD_ROLE(PrintArguments) {
    for (const std::string& argument : arguments) {
        std::printf("<%s>", argument.c_str());
    }
    return 0;
}

TEST(ProcessStandIn, CommandLineIsSplitByTheReferencePlatformsRules) {
    const struct {
        const char16_t* line;
        const char* arguments;
    } cases[] = {{u"", ""},
                 {u"a  b\tc ", "<a><b><c>"},
                 {u"\"a b\" \"\" c", "<a b><><c>"},
                 {u"a\"b c\"d", "<ab cd>"},
                 {u"\"", "<>"},
                 {u"a\\b \\\\c \\", "<a\\b><\\\\c><\\>"},
                 {u"a\\\"b", "<a\"b>"},
                 {u"a\\\\\"b c\"", "<a\\b c>"},
                 {u"a\\\\\\\"b", "<a\\\"b>"},
                 {u"\"a\\\\\" b", "<a\\><b>"},
                 {u"\"a\"\"b c\" d", "<a\"b c><d>"},
                 {u"\"\"\"\" e", "<\"><e>"},
                 {u"\"a\\\"\"\" b", "<a\"\" b>"},
                 {u"\u00E4\U0001F600\xDC80\xDC5C", "<\xC3\xA4\xF0\x9F\x98\x80\x80\\>"}};
    for (const auto& each : cases) {
        const Wide line = Wide(u"--child-role PrintArguments ") + each.line;
        EXPECT_EQ(each.arguments, OutputOf(ProgramPath().u16string(), line)) << each.arguments;
    }
    QXHandle child = nullptr;
    EXPECT_EQ(QX_E_FAIL, Start(u"/bin/true", u"\xD800", nullptr, &child));
    EXPECT_EQ(QX_E_FAIL, Start(u"/bin/true", Wide(300'000, u'a'), nullptr, &child));
}

TEST(ProcessStandIn, EnvironmentIsSortedWithoutRegardToCase) {
    const wchar* const some[] = {u"b=1", u"A=2", u"C=\u00E4", nullptr};
    EXPECT_EQ("A=2\nb=1\nC=\xC3\xA4\n", OutputOf(u"/usr/bin/env", u"", some));
    EXPECT_EQ("", OutputOf(u"/usr/bin/env", u"", some + 3));
    SetEnvironment("PROCESS_TEST", "yes");
    EXPECT_EQ("yes\n", OutputOf(u"/usr/bin/printenv", u"PROCESS_TEST"));
}

TEST(ProcessStandIn, SignalsAreAtTheirDefaultsInTheChild) {
    ::sigset_t all;
    ::sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before);
    for (const int signal : {SIGPIPE, SIGINT, SIGUSR1, SIGRTMAX}) {
        ::signal(signal, SIG_IGN);
    }
    ::signal(SIGUSR2, [](int) {});
    const std::string none = ":\t0000000000000000\n";
    EXPECT_EQ("SigBlk" + none + "SigIgn" + none,
              OutputOf(u"/bin/grep", u"-E Sig(Blk|Ign) /proc/self/status"));
    EXPECT_EQ(SIG_IGN, ::signal(SIGINT, SIG_DFL));
    ::sigset_t now;
    ::pthread_sigmask(SIG_SETMASK, &before, &now);
    EXPECT_EQ(1, ::sigismember(&now, SIGUSR1));
}

TEST(ProcessStandIn, CodeIsTheHostsOrTellsTheSignalOrIsLost) {
    EXPECT_EQ(137u, CodeOf(StartShell(u"kill -9 $$")));
    EXPECT_EQ(3u, CodeOf(StartShell(u"exit 259")));
    ::signal(SIGCHLD, SIG_IGN);  // throws codes away
    EXPECT_EQ(0xFFFFFFFF, CodeOf(StartShell(u"exit 4")));
    ::signal(SIGCHLD, SIG_DFL);
    const QXHandle child = StartShell(u"exit 4");
    EXPECT_LT(0, ::waitpid(-1, nullptr, 0));  // collects it
    QXHandle joined = nullptr;
    uint32_t code = 0;
    EXPECT_EQ(QX_S_OK, QXProcessJoinChild(&joined, &code));
    EXPECT_EQ(child, joined);
    EXPECT_EQ(0xFFFFFFFF, code);
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&joined, &code));
}

TEST(ProcessStandIn, CodesOfTheHostsOwnChildrenStayTheirs) {
    ForkedChild own([] { return 9; });
    EXPECT_EQ(0u, CodeOf(StartShell(u"exit 0")));
    EXPECT_EQ(9, own.Wait());
}

TEST(ProcessStandIn, DetachedChildLeavesNoZombieBehindTheNextCall) {
    QXHandle ends[3] = {kPipe, nullptr, nullptr};
    QXHandle child = nullptr;
    EXPECT_EQ(QX_S_OK, Start(u"/bin/cat", u"", ends, &child));
    EXPECT_EQ(QX_S_OK, QXProcessDetach(child));
    uint32_t code = 0;
    EXPECT_EQ(QX_E_HANDLE, QXProcessGetExitCode(child, &code));
    EXPECT_TRUE(HasChildren());
    QXFileClose(ends[0]);
    siginfo_t ended;
    EXPECT_EQ(0, ::waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT));
    EXPECT_EQ(QX_E_HANDLE, QXProcessGetExitCode(child, &code));
    EXPECT_FALSE(HasChildren());
}

TEST(ProcessStandIn, HandlesOfFilesAndPipesAreGivenTwiceAndCrosswise) {
    const TemporaryDirectory directory;
    const std::filesystem::path path = directory.Path() / "output";
    QXHandle file = nullptr;
    EXPECT_EQ(2, QXFileOpen(path.u16string().c_str(), QX_FILE_WRITE | QX_FILE_CREATE, 0666, &file));
    Pipes first{{nullptr, kPipe, kPipe}};
    const QXHandle talker = StartShell(u"echo out; echo err >&2", first.ends);
    for (const QXHandle input : {first.ends[2], first.ends[1]}) {
        QXHandle second[3] = {input, file, file};
        EXPECT_EQ(0u, CodeOf(StartShell(u"cat; echo end >&2", second)));
        EXPECT_EQ(file, second[1]);
    }
    EXPECT_EQ(0u, CodeOf(talker));
    EXPECT_EQ(QX_S_OK, QXFileClose(file));
    EXPECT_EQ("err\nend\nout\nend\n", ReadFile(path));
    QXHandle closed[3] = {nullptr, file, kPipe};
    QXHandle child = nullptr;
    EXPECT_EQ(QX_E_HANDLE, Start(u"/bin/true", u"", closed, &child));
}

TEST(ProcessStandIn, OnlyWhatIsNotCloseOnExecIsInherited) {
    QXHandle file = nullptr;
    EXPECT_EQ(QX_S_OK, QXFileOpen(u"/dev/null", QX_FILE_READ, 0, &file));
    const int marked = ::fcntl(STDIN_FILENO, F_DUPFD, 700);
    const Wide list = u"-c \"cd /proc/self/fd; echo *\"";
    const std::string all = OutputOf(u"/bin/sh", list);
    ::close(marked);
    EXPECT_NE(std::string::npos, all.find("700")) << all;
    const std::string rest = OutputOf(u"/bin/sh", list);
    EXPECT_EQ(all.size() - 4, rest.size()) << rest;
    QXFileClose(file);
}

TEST(ProcessStandIn, ChildrenStartWhereTheStandardStreamsAreClosed) {
    ForkedChild forked([] {
        for (int stream = 0; stream < 3; ++stream) {
            ::close(stream);
        }
        Pipes pipes;
        const QXHandle child = StartShell(u"cat; echo e >&2; exit 6", pipes.ends);
        const bool takesNone =
            ::fcntl(0, F_GETFD) == -1 && ::fcntl(1, F_GETFD) == -1 && ::fcntl(2, F_GETFD) == -1;
        Write(pipes.ends[0], "text");
        pipes.CloseInput();
        const bool works = ReadAll(pipes.ends[1]) == "text" && ReadAll(pipes.ends[2]) == "e\n" &&
                           CodeOf(child) == 6 && CodeOf(StartShell(u"exit 4")) == 4;
        return takesNone && works ? 0 : 1;
    });
    EXPECT_EQ(0, forked.Wait());
}

TEST(ProcessStandIn, FileIsRunWithoutTheSuffixIfOnlyThatIsThere) {
    const TemporaryDirectory directory;
    const auto write = [&](const char* name, const char* text, mode_t mode) {
        WriteFile(directory.Path() / name, text);
        ::chmod((directory.Path() / name).c_str(), mode);
    };
    write("both", "#!/bin/sh\nexit 1\n", 0755);
    write("both.exe", "#!/bin/sh\nexit 2\n", 0755);
    write("plain", "#!/bin/sh\nexit 3\n", 0755);
    write("data.exe", "#!/bin/sh\nexit 3\n", 0644);
    write("text.exe", "no program\n", 0755);
    const auto codeOf = [&](const char16_t* name) {
        QXHandle child = nullptr;
        const QXResult result = Start(directory.Path().u16string() + name, u"", nullptr, &child);
        return QX_SUCCEEDED(result) ? static_cast<QXResult>(CodeOf(child)) : result;
    };
    EXPECT_EQ(2, codeOf(u"/both"));
    EXPECT_EQ(3, codeOf(u"\\plain"));
    EXPECT_EQ(3, codeOf(u"/plain.exe"));
    EXPECT_EQ(QX_E_ACCESSDENIED, codeOf(u"/data"));
    EXPECT_EQ(QX_E_FAIL, codeOf(u"/text"));
    EXPECT_FALSE(HasChildren());
}

// The limit is raised by one descriptor at a time until the start succeeds.
TEST(ProcessStandIn, StartWithoutDescriptorsLeavesNothing) {
    const std::size_t open = MeasureFootprint().handles;
    rlimit before;
    ::getrlimit(RLIMIT_NOFILE, &before);
    const TemporaryDirectory directory;
    QXResult result = QX_E_FAIL;
    int failures = 0;
    for (rlim_t limit = 3; QX_FAILED(result); ++limit) {
        rlimit scarce = {limit, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &scarce);
        QXHandle ends[3] = {kPipe, kPipe, kPipe};
        QXHandle child = nullptr;
        result = QXProcessCreate(u"/bin/cat", u"", directory.Path().u16string().c_str(), nullptr, 0,
                                 ends, &child);
        ::setrlimit(RLIMIT_NOFILE, &before);
        if (QX_FAILED(result)) {
            ++failures;
            EXPECT_EQ(QX_E_FAIL, result);
            EXPECT_FALSE(HasChildren());
        } else {
            for (const QXHandle end : ends) {
                EXPECT_EQ(QX_S_OK, QXFileClose(end));
            }
            EXPECT_EQ(0u, CodeOf(child));
        }
        EXPECT_EQ(open, MeasureFootprint().handles);
    }
    EXPECT_LE(8, failures);
}

TEST(ProcessStandIn, ForkedChildStartsItsOwnAndLeavesItsParentsAlone) {
    const QXHandle child = StartShell(u"exit 5");
    ForkedChild forked([child] {
        return CodeOf(child) == 0xFFFFFFFF && CodeOf(StartShell(u"exit 6")) == 6 ? 0 : 1;
    });
    EXPECT_EQ(0, forked.Wait());
    EXPECT_EQ(5u, CodeOf(child));
}

}  // namespace
