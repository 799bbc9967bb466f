// A registry of a test's own, and short forms of the exports.
#ifndef TESTS_CONFIG_REGISTRY_SUPPORT_H
#define TESTS_CONFIG_REGISTRY_SUPPORT_H

#include <gtest/gtest.h>
#include <qxcore/registry.h>
#include <qxcore/result.h>

#include <string>
#include <vector>

#include "support/system.h"

class Registry : public testing::Test {
  protected:
    std::filesystem::path File(const char* name) const { return m_registry.Folder() / name; }

    OwnRegistry m_registry;
};

inline QXResult SetText(const char16_t* path, const char16_t* name, const std::u16string& text,
                        int32_t root = QX_HKEY_USER, uint32_t type = QX_REG_STRING) {
    return QXRegistrySetValue(root, path, name, type, text.c_str(),
                              static_cast<uint32_t>(2 * text.size() + 2));
}

// What a read of text gives; the result as a text of its own if it fails.
inline std::u16string Text(const char16_t* path, const char16_t* name,
                           int32_t root = QX_HKEY_USER) {
    char16_t text[300] = {};
    uint32_t length = sizeof text;
    uint32_t type = 99;
    const QXResult result = QXRegistryGetValue(root, path, name, &type, text, &length);
    return result == 0 ? text : result == QX_E_NOTFOUND ? u"<not found>" : u"<failed>";
}

inline QXResult Exists(int32_t root, const char16_t* path, const char16_t* name) {
    return QXRegistryGetValue(root, path, name, nullptr, nullptr, nullptr);
}

// The names that the rest of an enumeration gives.
inline std::vector<std::u16string> Names(QXHandle keys) {
    std::vector<std::u16string> names;
    char16_t name[256];
    uint32_t length = 256;
    while (QXRegistryEnumNextKey(keys, name, &length) == 0) {
        names.emplace_back(name, length);
        length = 256;
    }
    return names;
}

inline std::vector<std::u16string> SubkeysOf(const char16_t* path, int32_t root = QX_HKEY_USER) {
    QXHandle keys;
    if (QXRegistryOpenKeyEnum(root, path, &keys) != 0) {
        return {u"<failed>"};
    }
    std::vector<std::u16string> names = Names(keys);
    QXRegistryCloseEnum(keys);
    return names;
}

#endif
