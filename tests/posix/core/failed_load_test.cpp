// The library is opened here while memory fails: this program is not linked to it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "posix/support/forked_child.h"
#include "support/allocation_fault.h"

namespace {

// Loads the library with an allocation failing, forks, and unloads the library or leaves that to
// the end of the process. The exit code is 0 if the allocation failed and 1 if there is none so
// late.
int Load(int failing, bool unloads) {
    FailAllocation(failing);
    void* const library = dlopen(QXCORE_LIBRARY, RTLD_NOW);
    const bool struck = AllocationHasFailed();
    FailAllocation(0);
    const int child = ForkedChild([] { return 0; }, ChildEnd::kThroughExitHandlers).Wait();
    const bool isWell = library != nullptr && child == 0 && (!unloads || dlclose(library) == 0);
    return isWell ? !struck : 2;
}

// Nobody is told. The exports need not work.
TEST(FailedLoad, LeavesALibraryThatCanBeUnloaded) {
    for (const bool unloads : {true, false}) {
        int failing = 0;
        int code = 0;
        while (code == 0) {
            ++failing;
            code =
                ForkedChild([&] { return Load(failing, unloads); }, ChildEnd::kThroughExitHandlers)
                    .Wait();
        }
        EXPECT_EQ(code, 1) << failing << ' ' << unloads;
        EXPECT_GT(failing, 10);
    }
}

}  // namespace
