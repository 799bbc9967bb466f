// The start of each test program: its tests, or the role that its first arguments name; and what a
// child is on every platform.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/child_role.h"
#include "support/system.h"

namespace {

constexpr char kRoleArgument[] = "--child-role";
constexpr int kExpectationFailed = 99;

constinit const ChildRole* s_roles = nullptr;

int RunRole(const std::string& name, const std::vector<std::string>& arguments) {
    for (const ChildRole* role = s_roles; role != nullptr; role = role->m_next) {
        if (name == role->m_name) {
            const int code = role->m_function(arguments);
            const bool failed = testing::UnitTest::GetInstance()->Failed();
            return code == 0 && failed ? kExpectationFailed : code;
        }
    }
    std::fprintf(stderr, "no role %s\n", name.c_str());
    return kExpectationFailed;
}

ChildProcess::Arguments OfRole(ChildProcess::Arguments arguments, const std::string& role) {
    arguments.insert(arguments.begin(), {kRoleArgument, role});
    return arguments;
}

}  // namespace

ChildRole::ChildRole(const char* name, Function function)
    : m_name(name), m_function(function), m_next(s_roles) {
    s_roles = this;
}

ChildProcess::ChildProcess(const std::string& role, const Arguments& arguments)
    : ChildProcess(OfProgram(ProgramPath(), OfRole(arguments, role))) {}

ChildProcess ChildProcess::OfProgram(const std::filesystem::path& file,
                                     const Arguments& arguments) {
    int input[2];
    int output[2];
    std::intptr_t id;
    if (MakePipe(input) != 0 || MakePipe(output) != 0 ||
        !Start(file, arguments, input[0], output[1], &id)) {
        std::fprintf(stderr, "not started: %s\n", file.string().c_str());
        std::abort();
    }
    ::close(input[0]);
    ::close(output[1]);
    return ChildProcess(Process{id, input[1], output[0]});
}

ChildProcess::~ChildProcess() {
    if (m_process != nullptr) {
        Kill();
    }
}

void ChildProcess::WriteLine(const std::string& line) {
    const std::string whole = line + "\n";
    if (::write(m_process->input, whole.data(), static_cast<unsigned>(whole.size())) < 0) {
        std::perror("a line to a child");
    }
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (char unit; ::read(m_process->output, &unit, 1) == 1 && unit != '\n';) {
        line += unit;
    }
    return line;
}

int ChildProcess::Wait() {
    const std::unique_ptr<Process> process = std::move(m_process);
    ::close(process->input);
    char block[4096];
    while (::read(process->output, block, sizeof block) > 0) {
    }
    ::close(process->output);
    return ExitCode(process->id);
}

void ChildProcess::Kill() {
    Terminate(m_process->id);
    Wait();
}

int main(int argc, char** argv) {
    PrepareProgram();
    if (argc >= 3 && std::strcmp(argv[1], kRoleArgument) == 0) {
        return RunRole(argv[2], {argv + 3, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
