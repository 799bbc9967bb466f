#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

#include "descriptors.h"
#include "question.h"

namespace platform {
namespace {

using Arguments = std::vector<std::string>;

// What a dialog that was closed makes its program exit with, asked for where it can be chosen.
constexpr int kClosedStatus = 77;
constexpr char kClosedSetting[] = "ZENITY_ESC=77";

// A text that begins with a dash is no option.
std::string NoOption(const std::string& text) {
    return text.starts_with('-') ? ' ' + text : text;
}

Arguments ZenityArguments(const Question& question) {
    Arguments arguments = {"zenity",
                           "--question",
                           "--no-markup",
                           "--switch",
                           "--title=" + question.m_title,
                           "--text=" + question.m_text};
    for (const auto& [name, answer] : kAnswerNames) {
        arguments.push_back(std::string("--extra-button=") + name);
    }
    return arguments;
}

Arguments XmessageArguments(const Question& question) {
    return {"xmessage",
            "-center",
            "-print",
            "-buttons",
            "Abort:3,Retry:4,Ignore:5",
            "-title",
            question.m_title,
            NoOption(question.m_text)};
}

// All print the label of the button that was pressed.
using DialogProgram = Arguments (*)(const Question&);
constexpr DialogProgram kPrograms[] = {ZenityArguments, XmessageArguments};

// Programs that run with other rights than their user's believe nothing that he says.
bool HasGraphicalSession() noexcept {
    for (const char* const variable : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        const char* const value = ::secure_getenv(variable);
        if (value != nullptr && *value != '\0') {
            return true;
        }
    }
    return false;
}

std::vector<char*> Pointers(Arguments& arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<char*> EnvironmentOfDialog() {
    std::vector<char*> environment = {const_cast<char*>(kClosedSetting)};
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        environment.push_back(*entry);
    }
    environment.push_back(nullptr);
    return environment;
}

// A started program and the pipe on which it answers.
struct Running {
    pid_t m_id = -1;
    int m_output = -1;
};

// Nothing of this process but its environment: no descriptors, no signals held back or ignored.
int Spawn(pid_t* id, int output, char* const* arguments, char* const* environment) noexcept {
    ::posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    ::posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::sigset_t signals;
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    const int error = ::posix_spawnp(id, arguments[0], &files, &attributes, arguments, environment);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    return error;
}

bool Start(Arguments arguments, Running* running) {
    const std::vector<char*> environment = EnvironmentOfDialog();
    const std::vector<char*> pointers = Pointers(arguments);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    running->m_output = AboveStandardStreams(ends[0]);
    const int input = AboveStandardStreams(ends[1]);
    const int error = Spawn(&running->m_id, input, pointers.data(), environment.data());
    ::close(input);
    if (error != 0) {
        ::close(running->m_output);
    }
    return error == 0;
}

// The first line, in a buffer that holds every label.
std::string_view ReadLabel(int output, char (&buffer)[64]) noexcept {
    std::size_t size = 0;
    for (;;) {
        const ssize_t more = ::read(output, buffer + size, sizeof buffer - size);
        if (more < 0 && errno == EINTR) {
            continue;
        }
        if (more <= 0) {
            const std::string_view text(buffer, size);
            return text.substr(0, text.find('\n'));
        }
        size += static_cast<std::size_t>(more);
    }
}

// -1 if the program's process collects its children somewhere else.
int ExitStatus(pid_t id) noexcept {
    int status;
    pid_t ended;
    do {
        ended = ::waitpid(id, &status, 0);
    } while (ended < 0 && errno == EINTR);
    return ended == id && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::optional<Answer> AskBy(DialogProgram program, const Question& question) {
    Running running;
    if (!Start(program(question), &running)) {
        return std::nullopt;
    }
    char buffer[64];
    const std::string_view label = ReadLabel(running.m_output, buffer);
    ::close(running.m_output);
    const int status = ExitStatus(running.m_id);
    for (const auto& [name, answer] : kAnswerNames) {
        if (label == name) {
            return answer;
        }
    }
    return status == kClosedStatus ? std::optional(kAnswerNone) : std::nullopt;
}

}  // namespace

std::optional<Answer> AskByDialog(const Question& question) {
    if (!HasGraphicalSession()) {
        return std::nullopt;
    }
    for (const DialogProgram program : kPrograms) {
        if (const std::optional<Answer> answer = AskBy(program, question)) {
            return answer;
        }
    }
    return std::nullopt;
}

}  // namespace platform
