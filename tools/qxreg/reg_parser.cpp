#include <qxcore/registry.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "failure.h"
#include "reg_file.h"
#include "text.h"

namespace {

constexpr std::string_view kFirstLine = "Windows Registry Editor Version 5.00";
constexpr std::string_view kOldFirstLine = "REGEDIT4";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t';
}

bool IsLineEnd(char16_t unit) {
    return unit == u'\n' || unit == u'\r';
}

std::optional<unsigned> HexDigit(char16_t unit) {
    constexpr std::u16string_view kDigits = u"0123456789abcdefABCDEF";
    const std::size_t digit = kDigits.find(unit);
    if (digit == kDigits.npos) {
        return std::nullopt;
    }
    return static_cast<unsigned>(digit < 16 ? digit : digit - 6);
}

void Swap(std::u16string& text) {
    for (char16_t& unit : text) {
        unit = static_cast<char16_t>(unit << 8 | unit >> 8);
    }
}

// Both forms of UTF-16 begin with U+FEFF, in the order of their bytes.
std::u16string Decode(std::string_view bytes) {
    const bool isLittle = bytes.starts_with("\xFF\xFE");
    if (isLittle || bytes.starts_with("\xFE\xFF")) {
        if (bytes.size() % 2 != 0) {
            throw Failure("cut short: UTF-16 with an odd number of bytes");
        }
        std::u16string text = TextOf(bytes.substr(2));
        if (!isLittle) {
            Swap(text);
        }
        return text;
    }
    bytes.remove_prefix(bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
    if (auto text = WideOf(bytes)) {
        return *std::move(text);
    }
    throw Failure("is neither UTF-8 nor UTF-16 with a byte-order mark");
}

struct ForeignTree {
    int32_t m_root64;
    int32_t m_root32;
    std::string_view m_prefix;    // what 32-bit keys have in front
    std::string_view m_replaced;  // and what stands for it in their own view
};

const ForeignTree kForeignTrees[] = {
    {QX_HKEY_CONFIG_64, QX_HKEY_CONFIG, "Software\\WOW6432Node", "Software"},
    {QX_HKEY_CLASSES_64, QX_HKEY_CLASSES, "WOW6432Node", ""},
};

// Where a registry editor of 64 bits shows the keys of the 32-bit view.
void FindIn32BitView(Key& key) {
    for (const ForeignTree& tree : kForeignTrees) {
        const std::size_t length = tree.m_prefix.size();
        if (key.m_root != tree.m_root64 ||
            !IsSameWord(std::u16string_view(key.m_path).substr(0, length), tree.m_prefix) ||
            (key.m_path.size() > length && key.m_path[length] != u'\\')) {
            continue;
        }
        std::u16string path(key.m_path, 0, tree.m_replaced.size());
        path += key.m_path.substr(std::min(key.m_path.size(), length + path.empty()));
        key = {tree.m_root32, path};
        return;
    }
}

class Parser {
  public:
    Parser(std::u16string text, int view)
        : m_text(std::move(text)), m_view(view != 0 ? view : 64), m_isViewGiven(view != 0) {}

    std::vector<RegKey> Parse() {
        ParseFirstLine();
        for (SkipBlanks(); !AtEnd(); SkipBlanks()) {
            ParseLine();
        }
        return std::move(m_keys);
    }

  private:
    bool AtEnd() const { return m_at >= m_text.size(); }
    bool At(char16_t unit) const { return !AtEnd() && m_text[m_at] == unit; }
    bool AtLineEnd() const { return AtEnd() || IsLineEnd(m_text[m_at]); }

    [[noreturn]] void Refuse(const std::string& why) const {
        throw Failure("line " + std::to_string(m_line) + ": " + why);
    }

    bool Skip(char16_t unit) {
        const bool found = At(unit);
        m_at += found ? 1 : 0;
        return found;
    }

    bool Skip(std::string_view word) {
        const bool found = IsSameWord(std::u16string_view(m_text).substr(m_at, word.size()), word);
        m_at += found ? word.size() : 0;
        return found;
    }

    void SkipBlanks() {
        while (!AtEnd() && IsBlank(m_text[m_at])) {
            ++m_at;
        }
    }

    void CountLineEnd(char16_t unit) {
        m_line += unit == u'\n' || (unit == u'\r' && !At(u'\n')) ? 1 : 0;
    }

    void SkipLineEnd() {
        while (!AtEnd() && IsLineEnd(m_text[m_at])) {
            const char16_t unit = m_text[m_at++];
            CountLineEnd(unit);
            if (unit == u'\n') {
                return;
            }
        }
    }

    std::u16string_view TakeLine() {
        const std::size_t start = m_at;
        m_at = std::min(m_text.find_first_of(u"\r\n", m_at), m_text.size());
        return std::u16string_view(m_text).substr(start, m_at - start);
    }

    void ParseFirstLine() {
        std::u16string_view line = TakeLine();
        while (!line.empty() && IsBlank(line.back())) {
            line.remove_suffix(1);
        }
        if (IsSameWord(line, kOldFirstLine)) {
            Refuse("version 4 of the format, which is in some code page: export as version 5");
        }
        if (!IsSameWord(line, kFirstLine)) {
            Refuse("the first line is not \"" + std::string(kFirstLine) + "\"");
        }
        SkipLineEnd();
    }

    void ParseLine() {
        if (AtLineEnd()) {
            SkipLineEnd();
        } else if (At(u';')) {
            ParseComment();
        } else if (At(u'[')) {
            ParseKeyLine();
        } else if (At(u'@') || At(u'"')) {
            ParseValueLine();
        } else {
            Refuse("neither a key in brackets nor a value, whose name is @ or in quotes");
        }
    }

    // Only a comment, or nothing, may follow.
    void EndLine() {
        SkipBlanks();
        if (!AtLineEnd() && !At(u';')) {
            Refuse("something behind the end");
        }
        TakeLine();
        SkipLineEnd();
    }

    void ParseComment() {
        const std::u16string_view line = TakeLine();
        for (const int view : {32, 64}) {
            if (IsSameWord(line, "; qxreg: " + std::to_string(view) + "-bit view")) {
                m_view = view;
                m_isViewGiven = true;
            }
        }
        SkipLineEnd();
    }

    void ParseKeyLine() {
        RegKey key{m_line, false, {}, {}};
        ++m_at;
        key.m_isDeletion = Skip(u'-');
        if (At(u'"')) {
            key.m_key = KeyNamed(ParseQuoted());
            if (!Skip(u']')) {
                Refuse("a key's name does not end with \"]\"");
            }
        } else {
            key.m_key = KeyNamed(TakeKeyName());
        }
        EndLine();
        if (key.m_isDeletion && key.m_key.m_path.empty()) {
            throw Failure("line " + std::to_string(key.m_line) + ": a root cannot be deleted");
        }
        m_keys.push_back(std::move(key));
    }

    // Up to the last bracket of the line, since a name may have some in it.
    std::u16string TakeKeyName() {
        const std::size_t start = m_at;
        const std::u16string_view line = TakeLine();
        const std::size_t end = line.rfind(u']');
        if (end == line.npos) {
            Refuse("a key's name does not end with \"]\"");
        }
        m_at = start + end + 1;
        return std::u16string(line.substr(0, end));
    }

    Key KeyNamed(std::u16string_view name) const {
        const std::size_t separator = std::min(name.find(u'\\'), name.size());
        const std::u16string_view rootName = name.substr(0, separator);
        for (const Root& root : kRoots) {
            if ((root.m_view == 0 || root.m_view == m_view) &&
                IsSameWord(rootName, root.m_editorName)) {
                return Placed(root, name.substr(separator));
            }
        }
        Refuse("the root \"" + Shown(rootName, false) +
               "\" is none of HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE and HKEY_CLASSES_ROOT");
    }

    Key Placed(const Root& root, std::u16string_view path) const {
        if (path.find(u'\0') != path.npos) {
            Refuse("a zero in a name");
        }
        Key key{root.m_number, TidyPath(path)};
        if (!m_isViewGiven) {
            FindIn32BitView(key);
        }
        return key;
    }

    // Line ends inside quotes belong to the text.
    std::u16string ParseQuoted() {
        const int start = m_line;
        std::u16string text;
        for (++m_at; !Skip(u'"');) {
            if (AtEnd()) {
                throw Failure("line " + std::to_string(start) + ": quotes are not closed");
            }
            const char16_t unit = m_text[m_at++];
            CountLineEnd(unit);
            text += unit == u'\\' ? ParseEscaped() : unit;
            if (unit == 0) {
                Refuse("a zero in quotes");
            }
        }
        return text;
    }

    char16_t ParseEscaped() {
        if (!At(u'\\') && !At(u'"')) {
            Refuse("in quotes a backslash is written twice");
        }
        return m_text[m_at++];
    }

    void ParseValueLine() {
        if (m_keys.empty() || m_keys.back().m_isDeletion) {
            Refuse("a value that is in no key");
        }
        RegValue value{m_line, false, {}};
        if (!Skip(u'@')) {
            value.m_value.m_name = ParseQuoted();
        }
        SkipBlanks();
        if (!Skip(u'=')) {
            Refuse("a value's name without \"=\" behind it");
        }
        SkipBlanks();
        value.m_isDeletion = Skip(u'-');
        if (!value.m_isDeletion) {
            ParseData(value.m_value);
        }
        EndLine();
        m_keys.back().m_values.push_back(std::move(value));
    }

    void ParseData(Value& value) {
        if (At(u'"')) {
            value.m_type = kNativeString;
            value.m_bytes = BytesOf(ParseQuoted() + u'\0');
        } else if (Skip("dword:")) {
            value.m_type = kNativeDword;
            const uint32_t number = ParseNumber();
            value.m_bytes.assign(reinterpret_cast<const char*>(&number), sizeof number);
        } else if (Skip("hex:")) {
            value.m_type = kNativeBinary;
            ParseBytes(value.m_bytes);
        } else if (Skip("hex(")) {
            value.m_type = ParseNumber();
            if (!Skip("):")) {
                Refuse("\"hex(\" without \"):\" behind the number of the type");
            }
            ParseBytes(value.m_bytes);
        } else {
            Refuse("data that begin with none of: a quote, \"dword:\", \"hex:\", \"hex(\", \"-\"");
        }
    }

    uint32_t ParseNumber() {
        SkipBlanks();
        uint32_t number = 0;
        int digits = 0;
        for (; !AtEnd() && HexDigit(m_text[m_at]); ++digits) {
            number = number << 4 | *HexDigit(m_text[m_at++]);
        }
        if (digits == 0 || digits > 8) {
            Refuse("a number is of one to eight hexadecimal digits");
        }
        return number;
    }

    // A backslash ahead of the line's end: the bytes go on in the next line.
    void SkipContinuation() {
        SkipBlanks();
        while (Skip(u'\\')) {
            EndLine();
            SkipBlanks();
        }
    }

    void ParseBytes(std::string& bytes) {
        SkipContinuation();
        while (!AtLineEnd() && !At(u';')) {
            const uint32_t byte = ParseNumber();
            if (byte > 0xFF) {
                Refuse("a byte is of one or two hexadecimal digits");
            }
            bytes += static_cast<char>(byte);
            SkipContinuation();
            if (!Skip(u',')) {
                return;
            }
            SkipContinuation();
        }
    }

    const std::u16string m_text;
    std::size_t m_at = 0;
    int m_line = 1;
    int m_view;
    bool m_isViewGiven;
    std::vector<RegKey> m_keys;
};

}  // namespace

std::vector<RegKey> ParseRegFile(std::string_view bytes, int view) {
    return Parser(Decode(bytes), view).Parse();
}
