// Any bytes as an ini file: never a step outside, always an end, and what is loaded comes back
// as it was once it has been written and loaded, where names and values survive the way.
#include <qxcore/result.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>

#include "config/ini_file.h"
#include "fuzz_input.h"

namespace {

using Section = std::map<std::u16string, std::u16string>;
using Table = std::map<std::u16string, Section>;

Table TableOf(IniFile& file) {
    Table table;
    for (const std::u16string& section : file.GetSections()) {
        Section& keys = table[section];
        for (const std::u16string& key : file.GetKeys(section)) {
            char16_t value[1024];
            FUZZ_REQUIRE(file.GetString(section.c_str(), key.c_str(), value) == QX_S_OK);
            keys[key] = value;
        }
        file.GetChildren(section);
    }
    return table;
}

// Bytes that the text takes in the file.
size_t BytesOf(const std::u16string& text) {
    return 3 * text.size();
}

// A line that is written must be short enough, and begin as a key does. A carriage return at its
// end would join the line's end, and the end mark is one wherever it stands.
bool Survives(const std::u16string& text) {
    return text.find_first_of(u"\r\x1A\n") == text.npos;
}

bool SurvivesAsKey(const std::u16string& key, const std::u16string& value) {
    const char16_t first = key.empty() ? u'=' : key[0];
    return Survives(key) && Survives(value) && BytesOf(key) + BytesOf(value) < 500 &&
           (first < u'\t' || first > u'\r') && first != u' ';
}

bool Survives(const Table& table) {
    return std::all_of(table.begin(), table.end(), [](const auto& section) {
        return Survives(section.first) && BytesOf(section.first) < 500 &&
               std::all_of(section.second.begin(), section.second.end(),
                           [](const auto& key) { return SurvivesAsKey(key.first, key.second); });
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const int descriptor = ::memfd_create("ini", 0);
    FUZZ_REQUIRE(::write(descriptor, bytes, size) == static_cast<ssize_t>(size));
    const std::string narrow = "/proc/self/fd/" + std::to_string(descriptor);
    const std::u16string path(narrow.begin(), narrow.end());
    IniFile file(path.c_str());
    TableOf(file);
    FUZZ_REQUIRE(file.SetString(u"added", u"key", u"value", true) == 0);
    const Table table = TableOf(file);
    if (Survives(table)) {
        IniFile again(path.c_str());
        FUZZ_REQUIRE(TableOf(again) == table);
    }
    ::close(descriptor);
    return 0;
}
