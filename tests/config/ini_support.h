// What an ini file holds, on disk and in the table.
#ifndef TESTS_CONFIG_INI_SUPPORT_H
#define TESTS_CONFIG_INI_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "config/ini_file.h"

// As bytes.
inline void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// With the platform's line ends as line feeds.
inline std::string ReadTextFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::u16string ValueOf(IniFile& file, const char16_t* section, const char16_t* key) {
    char16_t value[1024];
    return file.GetString(section, key, value) == QX_S_OK ? value : u"<none>";
}

// "[section]key=value;key=value;[section]..."
inline std::u16string TableOf(IniFile& file) {
    std::u16string table;
    for (const std::u16string& section : file.GetSections()) {
        table += u'[' + section + u']';
        for (const std::u16string& key : file.GetKeys(section)) {
            table += key + u'=' + ValueOf(file, section.c_str(), key.c_str()) + u';';
        }
    }
    return table;
}

#endif
