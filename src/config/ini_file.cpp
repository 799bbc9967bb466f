#include "config/ini_file.h"

#include <qxcore/named_semaphore.h>
#include <qxcore/semaphore.h>

#include <cstring>
#include <exception>
#include <optional>
#include <set>

#include "core/exception.h"
#include "platform/multibyte.h"
#include "platform/text_stream.h"

namespace {

constexpr char kSemaphoreName[] = "QXCore_IniFileLock";
constexpr char16_t kSeparator = u'\\';
constexpr int kLineCount = 511;  // bytes, terminator included; a longer line comes in pieces

// No unit becomes more than three bytes.
void AppendNarrow(std::string& narrow, std::u16string_view wide) {
    const std::size_t start = narrow.size();
    const auto length = static_cast<i32>(wide.size());
    narrow.resize(start + 3 * wide.size());
    const i32 written =
        platform::WideCharToMultiByte(wide.data(), length, narrow.data() + start, 3 * length);
    narrow.resize(start + static_cast<std::size_t>(written));
}

std::u16string_view Trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    return first == text.npos ? std::u16string_view()
                              : text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

// White space of the C locale: no byte beyond ASCII is.
bool StartsWithSpace(const char* line) {
    return line[0] == ' ' || (line[0] >= '\t' && line[0] <= '\r');
}

// The lines of a file, each as the loader wants it.
class Lines {
  public:
    explicit Lines(const char* path) : m_reader(path) {}

    bool Next() { return m_reader.IsOpen() && m_reader.ReadLine(m_line, kLineCount) != nullptr; }

    bool BeginsSection() const { return m_line[0] == '['; }
    bool EndsSection() const { return m_line[0] == '\0' || StartsWithSpace(m_line); }

    // The line up to a zero byte. Valid until the next one.
    std::u16string_view Wide() {
        const auto length = static_cast<i32>(std::strlen(m_line));
        const i32 units = platform::MultiByteToWideChar(m_line, length, m_wide, kLineCount);
        return {m_wide, static_cast<std::size_t>(units)};
    }

  private:
    platform::TextReader m_reader;
    char m_line[kLineCount];
    char16_t m_wide[kLineCount];
};

// What stands between the first unit and the last "]".
std::optional<std::u16string_view> SectionName(std::u16string_view line) {
    const std::size_t end = line.rfind(u']');
    return end != line.npos ? std::optional(line.substr(1, end - 1)) : std::nullopt;
}

// The last unit goes, whether it is the line's end or, for want of one, a part of the value. False
// if there is no "=".
bool AppendKey(IniKeyTable& keys, std::u16string_view line) {
    line.remove_suffix(line.empty() ? 0 : 1);
    const std::size_t equals = line.find(u'=');
    if (equals == line.npos) {
        return false;
    }
    keys.Append(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
    return true;
}

// The lines up to the section's end, which is used up. False if one of them is no key.
bool ReadKeys(IniKeyTable& keys, Lines& lines) {
    keys.Clear();
    while (lines.Next() && !lines.EndsSection()) {
        if (!AppendKey(keys, lines.Wide())) {
            return false;
        }
    }
    keys.Sort();
    return true;
}

}  // namespace

// Holds the semaphore for the length of a scope.
class IniFile::Hold {
  public:
    explicit Hold(QXHandle semaphore) : m_semaphore(semaphore) {
        ThrowIfFailed(QXSemaphoreWait(semaphore));
    }
    // Without the post nobody would ever go on.
    ~Hold() {
        if (QX_FAILED(QXSemaphorePost(m_semaphore))) {
            std::terminate();
        }
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    QXHandle m_semaphore;
};

IniFile::IniFile(const wchar* path) : m_path(path != nullptr ? path : u"") {
    ThrowIfFailed(QXNamedSemOpen(kSemaphoreName, 1, &m_semaphore));
    try {
        const Hold hold(m_semaphore);
        Load();
    } catch (...) {
        QXNamedSemClose(m_semaphore);
        throw;
    }
}

IniFile::~IniFile() {
    QXNamedSemClose(m_semaphore);
}

i32 IniFile::SetString(const wchar* section, const wchar* key, const wchar* value, bool overwrite) {
    const Hold hold(m_semaphore);
    RefreshIfStale();
    if (HasKey(section, key) && !overwrite) {
        return -1;
    }
    m_sections[section].Set(key, value);
    Save();
    return 0;
}

QXResult IniFile::GetString(const wchar* section, const wchar* key, wchar* buffer) {
    const Hold hold(m_semaphore);
    RefreshIfStale();
    const auto found = m_sections.find(std::u16string_view(section));
    const auto value = found != m_sections.end() ? found->second.Find(key) : std::nullopt;
    if (!value) {
        return QX_E_NOTFOUND;
    }
    buffer[value->copy(buffer, value->size())] = u'\0';
    return QX_S_OK;
}

std::vector<std::u16string> IniFile::GetSections() {
    const Hold hold(m_semaphore);
    RefreshIfStale();
    std::vector<std::u16string> names;
    for (const auto& [name, keys] : m_sections) {
        names.push_back(name);
    }
    return names;
}

std::vector<std::u16string> IniFile::GetKeys(std::u16string_view path) {
    const Hold hold(m_semaphore);
    RefreshIfStale();
    std::vector<std::u16string> names;
    const auto found = m_sections.find(path);
    if (found != m_sections.end()) {
        for (std::size_t i = 0; i < found->second.Size(); ++i) {
            names.emplace_back(found->second.Key(i));
        }
    } else if (!HasSubsections(path)) {
        throw EQXCoreException(QX_E_NOTFOUND);
    }
    return names;
}

std::vector<std::u16string> IniFile::GetChildren(std::u16string_view path) {
    const Hold hold(m_semaphore);
    RefreshIfStale();
    std::set<std::u16string, std::less<>> children;
    ForEachBelow(path, [&](std::u16string_view rest) {
        const std::u16string_view child = rest.substr(0, rest.find(kSeparator));
        if (!children.contains(child)) {
            children.emplace(child);
        }
    });
    return {children.begin(), children.end()};
}

std::string IniFile::NarrowPath() const {
    std::string narrow;
    AppendNarrow(narrow, m_path);
    return narrow;
}

// Comments and stray lines count for nothing between sections and end the load inside one. So does
// a head without a "]". What is ended early keeps the sections that were complete, and nobody is
// told. Of sections with equal names the last one's keys stay, under the first one's spelling.
void IniFile::Load() {
    m_sections.clear();
    Lines lines(NarrowPath().c_str());
    IniKeyTable keys;
    while (lines.Next()) {
        if (!lines.BeginsSection()) {
            continue;
        }
        const auto name = SectionName(lines.Wide());
        if (!name) {
            return;
        }
        std::u16string section(*name);
        if (!ReadKeys(keys, lines)) {
            return;
        }
        // A file that Save wrote has them in the order of the table.
        m_sections.insert_or_assign(m_sections.end(), std::move(section), keys);
    }
}

// In place. The time of change is taken while the last of the text is still to be written, so this
// object may find the file newer than its own writing, and then loads it again.
void IniFile::Save() {
    std::string text;
    for (const auto& [name, keys] : m_sections) {
        text += '[';
        AppendNarrow(text, name);
        text += "]\n";
        for (std::size_t i = 0; i < keys.Size(); ++i) {
            AppendNarrow(text, keys.Key(i));
            text += '=';
            AppendNarrow(text, keys.Value(i));
            text += '\n';
        }
        text += '\n';
    }
    platform::TextWriter file(NarrowPath().c_str());
    if (file.IsOpen()) {
        file.Write(text);
        file.Modified(&m_modified);
    }
}

// A file that was given an older time is not loaded, but its time is the one that counts from now
// on. A change within the second of the last look goes unseen.
void IniFile::RefreshIfStale() {
    i64 modified;
    if (!platform::Modified(NarrowPath().c_str(), &modified)) {
        return;
    }
    if (modified > m_modified) {
        Load();
    }
    m_modified = modified;
}

bool IniFile::HasKey(std::u16string_view section, std::u16string_view key) const {
    const auto found = m_sections.find(section);
    return found != m_sections.end() && found->second.Find(key).has_value();
}

bool IniFile::HasSubsections(std::u16string_view path) const {
    bool any = false;
    ForEachBelow(path, [&](std::u16string_view) { any = true; });
    return any;
}

// Calls the action with what stands behind the path and its separator in each name that begins with
// them, unit by unit. In the table those names stand among the ones that begin so without case,
// which follow each other.
template <typename Action>
void IniFile::ForEachBelow(std::u16string_view path, Action action) const {
    const std::u16string prefix = std::u16string(path) + kSeparator;
    for (auto at = m_sections.lower_bound(prefix); at != m_sections.end(); ++at) {
        const std::u16string_view name = at->first;
        if (IniCaseLess()(prefix, name.substr(0, prefix.size()))) {
            return;
        }
        if (name.starts_with(prefix)) {
            action(name.substr(prefix.size()));
        }
    }
}
