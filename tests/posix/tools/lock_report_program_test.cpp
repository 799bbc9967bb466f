// qxlockreport as it is called: what it writes where, and its exit status.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "support/temporary_directory.h"

namespace {

TEST(LockReportProgram, ExitStatusTellsWhatHappened) {
    const TemporaryDirectory directory;
    const std::filesystem::path report = directory.Path() / "report.csv";
    ASSERT_EQ(QX_S_OK, QXDumpLockStats("from the library", report.u16string().c_str()));
    WriteFile(directory.Path() / "other", "no report\n");
    struct Row {
        const char* arguments;
        int status;
        const char* written;  // a page, or null
    };
    constexpr Row kRows[] = {
        {"report.csv", 0, "report.csv.html"},
        {"-o page report.csv", 0, "page"},
        {"--output=- - < report.csv > stdout", 0, "stdout"},
        {"--help > help", 0, nullptr},
        {"missing", 1, nullptr},
        {"other", 1, nullptr},
        {"-o /dev/full report.csv", 1, nullptr},
        {"", 2, nullptr},
        {"--unknown report.csv", 2, nullptr},
    };
    for (const Row& row : kRows) {
        const std::string command = "cd '" + directory.Path().string() + "' && " QXLOCKREPORT " " +
                                    row.arguments + " 2> errors";
        const int status = std::system(command.c_str());
        EXPECT_EQ(row.status, WEXITSTATUS(status)) << row.arguments;
        EXPECT_EQ(row.status == 0, std::filesystem::is_empty(directory.Path() / "errors"))
            << row.arguments;
        if (row.written != nullptr) {
            const std::string text = ReadFile(directory.Path() / row.written);
            EXPECT_NE(text.npos, text.find("\"from the library\"")) << row.arguments;
        }
    }
}

}  // namespace
