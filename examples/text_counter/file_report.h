// What is known of a file, or of a directory that could not be listed.
#ifndef EXAMPLES_FILE_REPORT_H
#define EXAMPLES_FILE_REPORT_H

#include <deque>
#include <string>

#include "text_counter.h"

struct FileReport {
    std::u16string path;
    QXResult result;
    TextCounts counts = {};
};

// In the order in which the files were found. A report stays where it is while others are added, so
// that a worker can fill it in.
using FileReports = std::deque<FileReport>;

TextCounts& operator+=(TextCounts& sum, const TextCounts& counts);
bool operator==(const TextCounts& one, const TextCounts& other);

TextCounts TotalOf(const FileReports& reports);
size_t CountFailures(const FileReports& reports);

// The four numbers of a row, as text and back.
std::string RowOf(const TextCounts& counts);
bool ReadRow(const char* text, TextCounts* counts);

#endif
