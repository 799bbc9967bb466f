// Ctrl-C asks the program to stop at the next good moment. A second one ends it at once.
#ifndef EXAMPLES_INTERRUPT_H
#define EXAMPLES_INTERRUPT_H

void WatchForInterrupt();
bool IsInterrupted();

// Ends the program the way that an interrupt ends programs, so that its parent sees one.
[[noreturn]] void EndInterrupted();

#endif
