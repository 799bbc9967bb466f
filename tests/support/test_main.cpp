// The start of each test program: its tests, or the role that its first arguments name.
#include <gtest/gtest.h>

#include <cstdio>
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

ChildProcess::Arguments ArgumentsOfRole(const std::string& role,
                                        const ChildProcess::Arguments& arguments) {
    ChildProcess::Arguments all = {kRoleArgument, role};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

}  // namespace

ChildRole::ChildRole(const char* name, Function function)
    : m_name(name), m_function(function), m_next(s_roles) {
    s_roles = this;
}

ChildProcess::ChildProcess(const std::string& role, const Arguments& arguments)
    : ChildProcess(OfProgram(ProgramPath(), ArgumentsOfRole(role, arguments))) {}

int main(int argc, char** argv) {
    PrepareProgram();
    if (argc >= 3 && std::strcmp(argv[1], kRoleArgument) == 0) {
        return RunRole(argv[2], {argv + 3, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
