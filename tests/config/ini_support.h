// What an ini file holds, on disk and in the table.
#ifndef TESTS_CONFIG_INI_SUPPORT_H
#define TESTS_CONFIG_INI_SUPPORT_H

#include <string>

#include "config/ini_file.h"
#include "support/temporary_directory.h"

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
