// Functions of a test program that a child process runs in place of its tests:
//
//     CHILD_ROLE(Holder) {
//         return QX_SUCCEEDED(Hold(arguments[0])) ? 0 : 1;
//     }
//     ...
//     ChildProcess holder("Holder", {"name"});
//     EXPECT_EQ(0, holder.Wait());
//
// A role gets `arguments` and returns the exit code. The process then ends as a program does. An
// expectation of the test framework that fails in a role makes a code of 0 one of 99.
#ifndef TESTS_SUPPORT_CHILD_ROLE_H
#define TESTS_SUPPORT_CHILD_ROLE_H

#include <string>
#include <vector>

#include "support/system.h"

struct ChildRole {
    using Function = int (*)(const std::vector<std::string>& arguments);

    ChildRole(const char* name, Function function);

    const char* const m_name;
    const Function m_function;
    const ChildRole* const m_next;
};

#define CHILD_ROLE(Name)                                   \
    static int Name(const std::vector<std::string>&);      \
    static const ChildRole s_childRole##Name(#Name, Name); \
    static int Name([[maybe_unused]] const std::vector<std::string>& arguments)

#endif
