#include "options.h"

#include <qxcore.h>

#include <cstdio>

const char kUsage[] =
    "Usage: count_text [OPTION]... PATH...\n"
    "Counts lines, words, characters and bytes of files, and of all files below directories.\n"
    "Links are followed to files, and on Linux not to directories.\n"
    "\n"
    "  -e, --encoding NAME     of the files; UTF-8 by default. An unknown name is ISO-8859-1\n"
    "  -j, --jobs NUMBER       worker threads, 1 to 64; one for each processor by default\n"
    "  -t, --total             print nothing but the total\n"
    "  -v, --verbose           tell what was done for it, on standard error\n"
    "  -l, --lock-report FILE  append the lock statistics to FILE; qxlockreport makes a page of "
    "it\n"
    "  -h, --help              this text\n"
    "\n"
    "The counting is done by a component that the registry names:\n"
    "      --register LIBRARY  put its library on record\n"
    "      --install           the same by ./qxregistry.ini, which moves into the registry\n"
    "      --unregister        take it off\n"
    "\n"
    "The total is checked by a child process:\n"
    "      --add               add up rows of four numbers from standard input\n"
    "\n"
    "Exit status: 0 done; 1 something could not be counted; 2 wrong use.\n";

namespace {

constexpr size_t kMostJobs = 64;

constexpr QXOptionRecord kRecords[] = {
    {"encoding", 1, 'e'}, {"jobs", 1, 'j'},        {"total", 0, 't'}, {"verbose", 0, 'v'},
    {"help", 0, 'h'},     {"lock-report", 1, 'l'}, {"add", 0, 'a'},   {"register", 1, 'r'},
    {"install", 0, 'i'},  {"unregister", 0, 'u'},  {nullptr, 0, 0},
};

bool ReadJobs(const char* text, size_t* jobs) {
    char* end;
    const int32_t number = QXStrToLA(text, &end, 10);
    *jobs = static_cast<size_t>(number);
    return end != text && *end == '\0' && number >= 1 && *jobs <= kMostJobs;
}

bool SetTask(Task task, Options* options) {
    options->task = task;
    return true;
}

// Each letter is what kRecords returns for an option.
bool TakeOption(int32_t letter, const char* argument, Options* options) {
    switch (letter) {
        case 'e':
            options->encoding = argument;
            return true;
        case 'j':
            return ReadJobs(argument, &options->jobs);
        case 't':
            return options->showsTotalAlone = true;
        case 'v':
            return options->isVerbose = true;
        case 'l':
            options->lockReport = argument;
            return true;
        case 'r':
            options->library = argument;
            return SetTask(Task::kRegister, options);
        case 'i':
            return SetTask(Task::kInstall, options);
        case 'u':
            return SetTask(Task::kUnregister, options);
        case 'a':
            return SetTask(Task::kAdd, options);
        case 'h':
            return SetTask(Task::kHelp, options);
        default:
            return false;
    }
}

bool TakeOptions(int count, char** arguments, Options* options) {
    int32_t letter;
    while ((letter = QXGetOption(count, arguments, kRecords, nullptr)) != -1) {
        if (!TakeOption(letter, QXGetOptionArgument, options)) {
            return false;
        }
    }
    options->paths.assign(arguments + QXGetOptionIndex, arguments + count);
    return (options->task == Task::kCount) != options->paths.empty();
}

}  // namespace

bool ReadOptions(int count, char** arguments, Options* options) {
    options->program = arguments[0];
    const bool isGood = TakeOptions(count, arguments, options);
    if (!isGood) {
        std::fputs("Try count_text --help\n", stderr);
    }
    return isGood;
}
