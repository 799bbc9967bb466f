// The command line.
#ifndef EXAMPLES_OPTIONS_H
#define EXAMPLES_OPTIONS_H

#include <string>
#include <vector>

enum class Task { kCount, kRegister, kInstall, kUnregister, kAdd, kHelp };

struct Options {
    Task task = Task::kCount;
    std::string program;
    std::string library;
    std::string encoding = "UTF-8";
    std::string lockReport;
    size_t jobs = 0;
    bool showsTotalAlone = false;
    bool isVerbose = false;
    std::vector<const char*> paths;
};

extern const char kUsage[];

// False, after a complaint, for a line that makes no sense.
bool ReadOptions(int count, char** arguments, Options* options);

#endif
