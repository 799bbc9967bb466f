// qxlockreport as it is called: what it writes where, and its exit status.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "support/temporary_directory.h"

namespace {

using namespace std::string_literals;

TEST(LockReportProgram, ExitStatusTellsWhatHappened) {
    const TemporaryDirectory directory;
    const std::filesystem::path report = directory.Path() / "report.csv";
    ASSERT_EQ(QX_S_OK, QXDumpLockStats("from the library", report.u16string().c_str()));
    WriteFile(directory.Path() / "other", "no report\n");
    // With the page that is written.
    const std::tuple<const char*, int, const char*> rows[] = {
        {"report.csv", 0, "report.csv.html"},
        {"-o page report.csv", 0, "page"},
        {"--output=- - < report.csv > stdout", 0, "stdout"},
        {"--help > help", 0, nullptr},
        {"missing", 1, nullptr},
        {"other", 1, nullptr},
        {"-o /dev/full report.csv", 1, nullptr},
        {"--unknown report.csv", 2, nullptr},
    };
    std::filesystem::current_path(directory.Path());
    for (const auto& [arguments, expected, page] : rows) {
        const int status = std::system((QXLOCKREPORT " "s + arguments + " 2> errors").c_str());
        EXPECT_EQ(expected, WEXITSTATUS(status)) << arguments;
        EXPECT_EQ(expected == 0, std::filesystem::is_empty("errors")) << arguments;
        const std::string text = page != nullptr ? ReadFile(page) : "";
        EXPECT_EQ(page != nullptr, text.find("\"from the library\"") != text.npos) << arguments;
    }
    std::filesystem::current_path("/");
}

}  // namespace
