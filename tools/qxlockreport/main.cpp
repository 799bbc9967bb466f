// qxlockreport: makes a page to look at from a report of lock statistics.
#include <qxcore/option.h>

#include <fstream>
#include <iostream>
#include <string>

#include "page.h"
#include "report.h"

namespace {

enum ExitStatus { kDone = 0, kFailed = 1, kWrongUse = 2 };

constexpr char kUsage[] =
    "Usage: qxlockreport [-o PAGE] REPORT\n"
    "Makes a page of HTML from a report of lock statistics, such as qxlockstats.csv.\n"
    "\n"
    "  -o, --output PAGE  where to write; REPORT with \".html\" behind it by default\n"
    "      --help         this text\n"
    "\n"
    "A dash stands for standard input and standard output.\n"
    "Exit status: 0 done; 1 a file cannot be read or written, or has no report in it;\n"
    "2 wrong use.\n";

struct Options {
    bool m_wantsHelp = false;
    std::string m_report;
    std::string m_page;
};

constexpr QXOptionRecord kOptions[] = {{"help", 0, 'h'}, {"output", 1, 'o'}, {nullptr, 0, 0}};

bool ParseOptions(int count, char** arguments, Options& options) {
    int32_t found;
    while ((found = QXGetOption(count, arguments, kOptions, nullptr)) != -1) {
        if (found == 'h') {
            options.m_wantsHelp = true;
        } else if (found == 'o') {
            options.m_page = QXGetOptionArgument;
        } else {
            return false;
        }
    }
    const bool isComplete = QXGetOptionIndex == count - 1;
    if (isComplete) {
        options.m_report = arguments[QXGetOptionIndex];
    }
    if (options.m_page.empty()) {
        options.m_page = options.m_report == "-" ? "-" : options.m_report + ".html";
    }
    return isComplete || options.m_wantsHelp;
}

int Fail(const std::string& file, const char* what) {
    std::cerr << "qxlockreport: " << file << ": " << what << '\n';
    return kFailed;
}

bool ReadReport(const std::string& path, LockReport& report) {
    if (path == "-") {
        report = ReadLockReport(std::cin);
        return !std::cin.bad();
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    report = ReadLockReport(in);
    return !in.bad();
}

bool WriteReport(const LockReport& report, const Options& options) {
    if (options.m_page == "-") {
        WritePage(report, options.m_report, std::cout);
        return static_cast<bool>(std::cout.flush());
    }
    std::ofstream out(options.m_page, std::ios::binary);
    WritePage(report, options.m_report, out);
    out.close();
    return static_cast<bool>(out);
}

int Run(const Options& options) {
    LockReport report;
    if (!ReadReport(options.m_report, report)) {
        return Fail(options.m_report, "cannot be read");
    }
    if (report.m_dumps.empty()) {
        return Fail(options.m_report, "has no report of lock statistics in it");
    }
    if (report.m_strangeLines != 0) {
        std::cerr << "qxlockreport: " << options.m_report << ": " << report.m_strangeLines
                  << " lines are damaged and left out\n";
    }
    return WriteReport(report, options) ? kDone : Fail(options.m_page, "cannot be written");
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    if (!ParseOptions(count, arguments, options)) {
        std::cerr << kUsage;
        return kWrongUse;
    }
    if (options.m_wantsHelp) {
        std::cout << kUsage;
        return kDone;
    }
    return Run(options);
}
