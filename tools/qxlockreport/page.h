// Writes a report as one page of HTML that needs nothing else.
#ifndef QXLOCKREPORT_PAGE_H
#define QXLOCKREPORT_PAGE_H

#include <ostream>
#include <string>

#include "report.h"

// `source` is what the page says that it shows.
void WritePage(const LockReport& report, const std::string& source, std::ostream& out);

#endif
