#include "file_report.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <tuple>

TextCounts& operator+=(TextCounts& sum, const TextCounts& counts) {
    sum.lines += counts.lines;
    sum.words += counts.words;
    sum.codePoints += counts.codePoints;
    sum.bytes += counts.bytes;
    return sum;
}

bool operator==(const TextCounts& one, const TextCounts& other) {
    return std::tie(one.lines, one.words, one.codePoints, one.bytes) ==
           std::tie(other.lines, other.words, other.codePoints, other.bytes);
}

TextCounts TotalOf(const FileReports& reports) {
    TextCounts total = {};
    for (const FileReport& report : reports) {
        total += report.counts;
    }
    return total;
}

size_t CountFailures(const FileReports& reports) {
    return static_cast<size_t>(
        std::count_if(reports.begin(), reports.end(),
                      [](const FileReport& report) { return QX_FAILED(report.result); }));
}

std::string RowOf(const TextCounts& counts) {
    char row[100];
    std::snprintf(row, sizeof row, "%7" PRIu64 " %7" PRIu64 " %8" PRIu64 " %8" PRIu64, counts.lines,
                  counts.words, counts.codePoints, counts.bytes);
    return row;
}

bool ReadRow(const char* text, TextCounts* counts) {
    return std::sscanf(text, "%" SCNu64 " %" SCNu64 " %" SCNu64 " %" SCNu64, &counts->lines,
                       &counts->words, &counts->codePoints, &counts->bytes) == 4;
}
