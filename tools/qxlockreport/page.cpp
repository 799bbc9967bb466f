#include "page.h"

#include <string_view>

extern const char* const page_html;
extern const char* const page_css;
extern const char* const page_js;

namespace {

// The length of the UTF-8 character that the text begins with; 0 if there is none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    if (byte(0) < 0x80) {
        return 1;
    }
    const std::size_t length = byte(0) < 0xC2   ? 0
                               : byte(0) < 0xE0 ? 2
                               : byte(0) < 0xF0 ? 3
                               : byte(0) < 0xF5 ? 4
                                                : 0;
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Overlong forms, surrogates, and what is no character at all.
    const bool isNone = (byte(0) == 0xE0 && byte(1) < 0xA0) ||
                        (byte(0) == 0xED && byte(1) > 0x9F) ||
                        (byte(0) == 0xF0 && byte(1) < 0x90) || (byte(0) == 0xF4 && byte(1) > 0x8F);
    return length > 1 && isNone ? 0 : length;
}

// A JSON text that may stand in a page: nothing in it opens or closes an element.
void WriteText(std::string_view text, std::ostream& out) {
    constexpr char kDigits[] = "0123456789abcdef";
    out << '"';
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        if (length == 0) {
            out << "\\ufffd";
        } else if (length > 1) {
            out << text.substr(0, length);
        } else if (first < 0x20 || first == 0x7F ||
                   std::string_view("\"\\<>&'").find(text[0]) != text.npos) {
            out << "\\u00" << kDigits[first >> 4] << kDigits[first & 0xF];
        } else {
            out << text[0];
        }
        text.remove_prefix(length != 0 ? length : 1);
    }
    out << '"';
}

void WriteRow(const LockRow& row, std::ostream& out) {
    out << '[' << (row.m_isRetired ? 1 : 0) << ',';
    WriteText(row.m_address, out);
    out << ',';
    WriteText(row.m_name, out);
    for (const std::int64_t figure : row.m_figures) {
        out << ',' << figure;
    }
    out << ']';
}

// Commas between the elements.
template <typename Elements, typename Write>
void WriteList(const Elements& elements, std::ostream& out, Write write) {
    const char* separator = "[";
    for (const auto& element : elements) {
        out << separator;
        write(element, out);
        separator = ",\n";
    }
    out << (elements.empty() ? "[]" : "]");
}

void WriteDump(const LockDump& dump, std::ostream& out) {
    out << "{\"title\":";
    WriteText(dump.m_title, out);
    out << ",\"time\":";
    WriteText(dump.m_time, out);
    out << ",\"whole\":" << (dump.m_isWhole ? "true" : "false") << ",\"rows\":";
    WriteList(dump.m_rows, out, WriteRow);
    out << '}';
}

void WriteData(const LockReport& report, const std::string& source, std::ostream& out) {
    out << "{\"source\":";
    WriteText(source, out);
    out << ",\"strangeLines\":" << report.m_strangeLines << ",\"dumps\":";
    WriteList(report.m_dumps, out, WriteDump);
    out << '}';
}

}  // namespace

// The frame names its parts as "{{css}}" and so on.
void WritePage(const LockReport& report, const std::string& source, std::ostream& out) {
    std::string_view rest = page_html;
    for (std::size_t open; (open = rest.find("{{")) != rest.npos;) {
        out << rest.substr(0, open);
        const std::size_t close = rest.find("}}", open);
        const std::string_view part = rest.substr(open + 2, close - open - 2);
        if (part == "css") {
            out << page_css;
        } else if (part == "js") {
            out << page_js;
        } else {
            WriteData(report, source, out);
        }
        rest.remove_prefix(close + 2);
    }
    out << rest;
}
