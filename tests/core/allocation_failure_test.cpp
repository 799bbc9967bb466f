// Whatever allocation fails inside an export under the guard: the result says so and nothing else
// has happened.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <functional>
#include <string>

#include "support/allocation_fault.h"
#include "support/known_differences.h"
#include "support/registered_classes.h"

namespace {

constexpr char kLongName[] = "a name that is too long to be kept without an allocation";
constexpr char16_t kLongSymbol[] = u"a_symbol_that_is_too_long_to_be_kept_without_an_allocation";

TEST(GuardedExports, FailedAllocationIsAResultAndLeavesTheInvalidHandle) {
    const RegisteredClasses classes;
    const std::u16string path = classes.WitnessPath();
    QXHandle library = nullptr;
    ASSERT_EQ(QX_S_OK, QXLibOpen(path.c_str(), &library));
    struct Row {
        const char* what;
        std::function<QXResult(QXHandle*)> create;
        std::function<void(QXHandle)> destroy;
        QXHandle afterFailure = QX_INVALID_HANDLE;
        bool allocates = true;
    };
    const Row rows[] = {
        {"mutex", [](QXHandle* out) { return QXMutexCreate(kLongName, 0, out); }, QXMutexDestroy},
        {"event", [](QXHandle* out) { return QXEventCreate(kLongName, 0, out); }, QXEventDestroy},
        {"semaphore", [](QXHandle* out) { return QXSemaphoreCreate(0, kLongName, 0, out); },
         QXSemaphoreDestroy},
        {"condition", [](QXHandle* out) { return QXConditionCreate(kLongName, 0, out); },
         QXConditionDestroy},
        {"lock", [](QXHandle* out) { return QXRWLockCreate(kLongName, 0, out); }, QXRWLockDestroy},
        {"library", [&](QXHandle* out) { return QXLibOpen(path.c_str(), out); }, QXLibClose,
         QX_INVALID_HANDLE, kLoaderNeedsNarrowPath},
        {"symbol",
         [&](QXHandle* out) {
             const QXResult result = QXLibGetSymbol(library, kLongSymbol, out);
             return result == QX_E_FAIL ? QX_S_OK : result;  // there is no such symbol
         },
         [](QXHandle) {}, nullptr},
        {"token",
         [&](QXHandle* out) {
             *out = nullptr;
             return QXModuleSetInitialized(&classes, 1);
         },
         [&](QXHandle) { QXModuleSetInitialized(&classes, 0); }, nullptr},
    };
    for (const Row& row : rows) {
        const int failures = ForEachFailingAllocation([&] {
            QXHandle handle = &handle;
            const QXResult result = row.create(&handle);
            if (QX_FAILED(result)) {
                EXPECT_TRUE(result == QX_E_OUTOFMEMORY || result == QX_E_FAIL) << row.what;
                EXPECT_EQ(row.afterFailure, handle) << row.what;
            } else {
                row.destroy(handle);
            }
            return QX_SUCCEEDED(result);
        });
        EXPECT_GE(failures, row.allocates ? 1 : 0) << row.what;
    }
    QXLibClose(library);
}

}  // namespace
