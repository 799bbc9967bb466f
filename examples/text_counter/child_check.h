// The total, added up a second time by a child process.
#ifndef EXAMPLES_CHILD_CHECK_H
#define EXAMPLES_CHILD_CHECK_H

#include "file_report.h"

// The parent's side: starts `program --add` with pipes, writes a row for each file, reads the sum.
bool IsTotalOfChild(const char* program, const FileReports& reports, const TextCounts& total);

// The child's side: adds up the rows of standard input. The program's exit status.
int AddRows();

#endif
