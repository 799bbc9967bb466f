// Trees into files and back.
#ifndef QXREG_TRANSFER_H
#define QXREG_TRANSFER_H

#include "commands.h"

void RunExport(Words words, const Options& options);
void RunImport(Words words, const Options& options);

#endif
