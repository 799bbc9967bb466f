// The library is opened here while memory fails: this program is not linked to it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/allocation_fault.h"

namespace {

// Loads the library with an allocation failing, forks, and unloads the library or leaves that to
// the end of the process. The exit code is 0 if the allocation failed and 1 if there is none so
// late.
[[noreturn]] void LoadAndExit(int failing, bool unloads) {
    FailAllocation(failing);
    void* const library = dlopen(QXCORE_LIBRARY, RTLD_NOW);
    const bool struck = AllocationHasFailed();
    FailAllocation(0);
    const pid_t child = fork();
    if (child == 0) {
        std::exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    const bool isWell = library != nullptr && status == 0 && (!unloads || dlclose(library) == 0);
    std::exit(isWell ? !struck : 2);
}

bool AllocationFails(int failing) {
    bool fails = false;
    for (const bool unloads : {true, false}) {
        const pid_t child = fork();
        if (child == 0) {
            LoadAndExit(failing, unloads);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2) << failing << ' ' << unloads;
        fails = !WIFEXITED(status) || WEXITSTATUS(status) != 1;
    }
    return fails;
}

// Nobody is told. The exports need not work.
TEST(FailedLoad, LeavesALibraryThatCanBeUnloaded) {
    int failing = 1;
    while (AllocationFails(failing)) {
        ++failing;
    }
    EXPECT_GT(failing, 10);
}

}  // namespace
