// The program but for its start: what a command line does.
#ifndef QXREG_PROGRAM_H
#define QXREG_PROGRAM_H

enum ExitStatus { kDone = 0, kRefused = 1, kWrongUse = 2 };

// The arguments are UTF-8, the first one is the program's name, and behind the last is null.
int RunProgram(int count, char** arguments);

#endif
