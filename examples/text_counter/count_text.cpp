// Counts the text of files and of directory trees, with worker threads that each have a component
// do it, and a child process that checks the total.
//
//   options       the command line, by QXGetOption
//   walker        finds the files (QXDirOpen, QXDirRead), and puts them in the
//   work_queue    (QXMutex, QXSemaphore), from which each
//   worker        (QXThreadCreate, QXFileRead) takes them; the counting is done by the
//   component     that the registry names (QXRegistry, QXComCreateObjectByProgID): text_counter.cpp
//   progress      shows meanwhile how far they are (QXEventTimedWait)
//   child_check   adds up the rows again, in another process (QXProcessCreate)
//   lock_report   tells how the locks were used (QXGetLockStats, QXDumpLockStats)
#include <algorithm>
#include <cstdio>
#include <deque>
#include <new>

#include "child_check.h"
#include "component.h"
#include "interrupt.h"
#include "lock_report.h"
#include "options.h"
#include "terminal.h"
#include "walker.h"
#include "worker.h"

namespace {

enum ExitStatus { kDone = 0, kFailed = 1, kWrongUse = 2 };

size_t CountProcessors() {
    QXSystemInfoRecord system = {};
    QXGetSystemInfo(&system, sizeof system);
    return std::max<size_t>(system.numberOfProcessors, 1);
}

void PrintRow(const TextCounts& counts, const std::string& what) {
    std::printf("%s %s\n", RowOf(counts).c_str(), what.c_str());
}

void PrintReport(const FileReport& report, const Options& options) {
    if (QX_FAILED(report.result)) {
        Complain(Narrow(report.path), report.result);
    } else if (!options.showsTotalAlone) {
        PrintRow(report.counts, Narrow(report.path));
    }
}

void PrintReports(const FileReports& reports, const TextCounts& total, const Options& options) {
    for (const FileReport& report : reports) {
        PrintReport(report, options);
    }
    if (reports.size() > 1 || options.showsTotalAlone) {
        PrintRow(total, "total");
    }
    std::fflush(stdout);
}

// Behind its end the workers have come to theirs, and all reports are complete.
void CountPaths(const Options& options, size_t jobs, WorkQueue* queue, Progress* progress,
                FileReports* reports) {
    std::deque<Worker> workers;
    while (workers.size() < jobs) {
        workers.emplace_back(CreateCounter(), Wide(options.encoding.c_str()), queue, progress);
    }
    Walker walker(queue, reports);
    for (const char* const path : options.paths) {
        try {
            walker.Walk(Wide(path));
        } catch (const Failure& failure) {
            walker.AddFailure(WideForPeople(path), failure.result);
        }
    }
}

double MillisecondsSince(int64_t begin) {
    return 1e3 * static_cast<double>(QXPerfGetCount() - begin) /
           static_cast<double>(QXPerfGetFreq());
}

void ReportLocks(const Options& options, const WorkQueue& queue, const Progress& progress) {
    if (options.isVerbose) {
        DescribeLock("WorkQueue", queue.Lock());
        DescribeLock("Progress", progress.Lock());
    }
    if (!options.lockReport.empty()) {
        AppendLockReport(options.lockReport);
    }
}

FileReports CountFiles(const Options& options) {
    const size_t jobs = options.jobs != 0 ? options.jobs : CountProcessors();
    const int64_t begin = QXPerfGetCount();
    FileReports reports;
    WorkQueue queue;
    Progress progress(HasTerminal());
    CountPaths(options, jobs, &queue, &progress, &reports);
    progress.Hide();
    if (IsInterrupted()) {
        EndInterrupted();
    }
    if (options.isVerbose) {
        std::fprintf(stderr, "%zu files, %zu workers, %.1f ms\n", reports.size(), jobs,
                     MillisecondsSince(begin));
    }
    ReportLocks(options, queue, progress);
    return reports;
}

bool CheckTotal(const Options& options, const FileReports& reports, const TextCounts& total) {
    const bool isSame = IsTotalOfChild(options.program.c_str(), reports, total);
    if (!isSame) {
        std::fputs("count_text: the child process adds up to another total\n", stderr);
    } else if (options.isVerbose) {
        std::fputs("A child process adds up to the same total\n", stderr);
    }
    return isSame;
}

bool FailedNowhere(const FileReports& reports) {
    const size_t failures = CountFailures(reports);
    if (failures != 0) {
        std::fprintf(stderr, "count_text: %zu of %zu could not be counted\n", failures,
                     reports.size());
    }
    return failures == 0;
}

int Count(const Options& options) {
    WatchForInterrupt();
    const FileReports reports = CountFiles(options);
    const TextCounts total = TotalOf(reports);
    PrintReports(reports, total, options);
    const bool isGood = CheckTotal(options, reports, total) & FailedNowhere(reports);
    if (std::ferror(stdout) != 0) {
        Complain("standard output", QX_E_FAIL);
        return kFailed;
    }
    return isGood ? kDone : kFailed;
}

int Run(const Options& options) {
    switch (options.task) {
        case Task::kRegister:
            RegisterTextCounter(options.library.c_str());
            return kDone;
        case Task::kInstall:
            InstallTextCounter();
            return kDone;
        case Task::kUnregister:
            UnregisterTextCounter();
            return kDone;
        case Task::kAdd:
            return AddRows();
        case Task::kHelp:
            return std::fputs(kUsage, stdout) >= 0 ? kDone : kFailed;
        default:
            return Count(options);
    }
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    if (!ReadOptions(count, arguments, &options)) {
        return kWrongUse;
    }
    try {
        return Run(options);
    } catch (const Failure& failure) {
        Complain(failure.what, failure.result);
    } catch (const std::bad_alloc&) {
        Complain("count_text", QX_E_OUTOFMEMORY);
    }
    return kFailed;
}
