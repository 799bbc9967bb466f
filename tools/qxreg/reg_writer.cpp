#include <cstdio>
#include <cstring>

#include "failure.h"
#include "reg_file.h"
#include "text.h"

namespace {

constexpr std::size_t kLineWidth = 76;  // from here on bytes go on in the next line

bool HasLineEnd(std::u16string_view text) {
    return text.find_first_of(u"\r\n") != text.npos;
}

std::u16string Quoted(std::u16string_view text) {
    std::u16string quoted = u"\"";
    for (const char16_t unit : text) {
        if (unit == u'"' || unit == u'\\') {
            quoted += u'\\';
        }
        quoted += unit;
    }
    return quoted + u'"';
}

// Text that ends with its one terminator, and that every form of Unicode and every reader of lines
// carries.
bool FitsInQuotes(const Value& value) {
    const std::u16string text = TextOf(value.m_bytes);
    return value.m_type == kNativeString && value.m_bytes.size() % 2 == 0 && !text.empty() &&
           text.find(u'\0') == text.size() - 1 && !HasLineEnd(text) && Utf8Of(text);
}

std::string DwordText(std::string_view bytes) {
    uint32_t number = 0;
    std::memcpy(&number, bytes.data(), sizeof number);
    char text[16];
    std::snprintf(text, sizeof text, "dword:%08x", static_cast<unsigned>(number));
    return text;
}

}  // namespace

RegWriter::RegWriter() {
    AddAscii("Windows Registry Editor Version 5.00\r\n");
}

void RegWriter::AddAscii(std::string_view text) {
    m_text.append(text.begin(), text.end());
}

void RegWriter::AddKey(const Key& key, const std::vector<Value>& values) {
    const Root& root = RootOf(key.m_root);
    AddAscii("\r\n");
    if (root.m_view != 0 && root.m_view != m_view) {
        m_view = root.m_view;
        AddAscii("; qxreg: " + std::to_string(m_view) + "-bit view\r\n");
    }
    std::u16string name(root.m_editorName, root.m_editorName + std::strlen(root.m_editorName));
    name += (key.m_path.empty() ? u"" : u"\\") + key.m_path;
    m_text += u'[' + (HasLineEnd(name) ? Quoted(name) : name) + u"]\r\n";
    for (const Value& value : values) {
        AddValue(value);
    }
}

void RegWriter::AddValue(const Value& value) {
    m_text += (value.m_name.empty() ? u"@" : Quoted(value.m_name)) + u'=';
    if (FitsInQuotes(value)) {
        m_text += Quoted(TextOf(value.m_bytes.substr(0, value.m_bytes.size() - 2)));
    } else if (value.m_type == kNativeDword && value.m_bytes.size() == 4) {
        AddAscii(DwordText(value.m_bytes));
    } else {
        AddBytes(value);
    }
    AddAscii("\r\n");
}

void RegWriter::AddBytes(const Value& value) {
    const std::size_t line = m_text.rfind(u'\n') + 1;
    char text[16];
    std::snprintf(text, sizeof text, "hex(%x):", static_cast<unsigned>(value.m_type));
    AddAscii(value.m_type == kNativeBinary ? "hex:" : text);
    std::size_t width = m_text.size() - line;
    bool isFirst = true;
    for (const unsigned char byte : value.m_bytes) {
        if (!isFirst) {
            m_text += u',';
        }
        if (!isFirst && width >= kLineWidth) {
            AddAscii("\\\r\n  ");
            width = 2;
        }
        std::snprintf(text, sizeof text, "%02x", static_cast<unsigned>(byte));
        AddAscii(text);
        width += 3;
        isFirst = false;
    }
}

std::string RegWriter::Encode(RegEncoding encoding) const {
    if (encoding == RegEncoding::kUtf16) {
        return BytesOf(u"\uFEFF" + m_text);
    }
    if (auto utf8 = Utf8Of(m_text)) {
        return *std::move(utf8);
    }
    throw Failure("a name has half a surrogate pair in it: leave out --utf8");
}
