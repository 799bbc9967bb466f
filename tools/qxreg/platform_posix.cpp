#include <fcntl.h>
#include <unistd.h>

#include "platform.h"

std::vector<std::string> PrepareProgram(int count, char** arguments) {
    return {arguments, arguments + count};
}

bool IsErrorTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

bool FlushToDisk(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isDone = file >= 0 && ::fsync(file) == 0;
    if (file >= 0) {
        ::close(file);
    }
    return isDone;
}
