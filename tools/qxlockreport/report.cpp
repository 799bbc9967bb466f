#include "report.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view kBegin = "BeginLockStatistics: ";
constexpr std::string_view kEnd = "EndLockStatistics: ";
constexpr std::string_view kFrequency = "CPU Frequency,";
constexpr std::string_view kColumns = "Name/Handle,";
constexpr std::string_view kLive = "QX_MUTEX:0x";
constexpr std::string_view kRetired = "QX_DEL_MUTEX:0x";
constexpr std::string_view kUnknown = "UNKNOWN:0x";
constexpr std::size_t kAddressDigits = 16;

// Moves behind a word that the text begins with.
bool Skip(std::string_view& text, std::string_view word) {
    const bool found = text.starts_with(word);
    text.remove_prefix(found ? word.size() : 0);
    return found;
}

bool BeginsRow(std::string_view line) {
    return line.starts_with(kLive) || line.starts_with(kRetired) || line.starts_with(kUnknown);
}

bool BeginsAnything(std::string_view line) {
    return BeginsRow(line) || line.starts_with(kBegin) || line.starts_with(kEnd);
}

// Takes the last figure of a row off its end.
bool TakeFigure(std::string_view& text, std::int64_t& figure) {
    const std::size_t comma = text.rfind(',');
    if (comma == text.npos) {
        return false;
    }
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data() + comma + 1, end, figure);
    text = text.substr(0, comma);
    return read.ec == std::errc() && read.ptr == end;
}

// The figures are taken from the end, since the name may hold commas and brackets.
std::optional<LockRow> ParseRow(std::string_view line) {
    LockRow row{};
    row.m_isRetired = Skip(line, kRetired);
    if (!row.m_isRetired && !Skip(line, kLive) && !Skip(line, kUnknown)) {
        return std::nullopt;
    }
    for (int figure = kFigureCount - 1; figure >= 0; --figure) {
        if (!TakeFigure(line, row.m_figures[static_cast<std::size_t>(figure)])) {
            return std::nullopt;
        }
    }
    if (line.size() < kAddressDigits + 2 || line[kAddressDigits] != '(' || line.back() != ')') {
        return std::nullopt;
    }
    row.m_address = line.substr(0, kAddressDigits);
    row.m_name = line.substr(kAddressDigits + 1, line.size() - kAddressDigits - 2);
    return row;
}

// "TITLE - TIME"; a title may have the separator in it.
void ParseTitle(std::string_view text, LockDump& dump) {
    const std::size_t separator = text.rfind(" - ");
    dump.m_title = text.substr(0, separator);
    dump.m_time = separator != text.npos ? text.substr(separator + 3) : "";
}

class Reader {
  public:
    explicit Reader(std::istream& in) : m_in(in) {}

    LockReport Read() {
        while (NextLine()) {
            TakeLine();
        }
        return std::move(m_report);
    }

  private:
    bool NextLine() {
        if (m_isAhead) {
            m_isAhead = false;
            return true;
        }
        if (!std::getline(m_in, m_line)) {
            return false;
        }
        if (m_line.ends_with('\r')) {
            m_line.pop_back();
        }
        return true;
    }

    void TakeLine() {
        std::string_view line = m_line;
        if (Skip(line, kBegin)) {
            ParseTitle(line, m_report.m_dumps.emplace_back());
        } else if (line.starts_with(kEnd) && !m_report.m_dumps.empty()) {
            m_report.m_dumps.back().m_isWhole = true;
        } else if (BeginsRow(line) && !m_report.m_dumps.empty()) {
            TakeRow();
        } else if (!line.empty() && !line.starts_with(kFrequency) && !line.starts_with(kColumns)) {
            ++m_report.m_strangeLines;
        }
    }

    // A row that is not whole goes on in the next line, if its name has a line feed in it.
    void TakeRow() {
        std::string text = m_line;
        std::optional<LockRow> row = ParseRow(text);
        while (!row && NextLine()) {
            if (BeginsAnything(m_line)) {
                m_isAhead = true;
                break;
            }
            text += '\n' + m_line;
            row = ParseRow(text);
        }
        if (row) {
            m_report.m_dumps.back().m_rows.push_back(*std::move(row));
        } else {
            ++m_report.m_strangeLines;
        }
    }

    std::istream& m_in;
    std::string m_line;
    bool m_isAhead = false;  // the line is still to be taken
    LockReport m_report;
};

}  // namespace

LockReport ReadLockReport(std::istream& in) {
    return Reader(in).Read();
}
