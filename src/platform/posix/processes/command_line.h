// The arguments of a command line.
#ifndef QX_PLATFORM_POSIX_PROCESSES_COMMAND_LINE_H
#define QX_PLATFORM_POSIX_PROCESSES_COMMAND_LINE_H

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Splits what stands behind the program's name as the reference platform's C runtime does it:
//
// - blanks and tabs between double quotes belong to an argument, all others end it;
// - a pair of quotes between quotes is one quote, and the part between quotes goes on;
// - in front of a quote, two backslashes are one, and one that is left makes the quote a part of
//   the argument;
// - other backslashes are themselves.
std::vector<std::u16string> SplitCommandLine(std::u16string_view line);

}  // namespace platform

#endif
