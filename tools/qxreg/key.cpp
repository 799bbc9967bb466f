#include "key.h"

#include <qxcore/registry.h>

#include <algorithm>

#include "failure.h"
#include "text.h"

const std::array<Root, 5> kRoots{{
    {QX_HKEY_USER, "user", "QX_HKEY_USER", "HKEY_CURRENT_USER", 0, "your own configuration"},
    {QX_HKEY_CONFIG, "config", "QX_HKEY_CONFIG", "HKEY_LOCAL_MACHINE", 32,
     "the machine's configuration, 32-bit view"},
    {QX_HKEY_CONFIG_64, "config64", "QX_HKEY_CONFIG_64", "HKEY_LOCAL_MACHINE", 64,
     "the machine's configuration, 64-bit view"},
    {QX_HKEY_CLASSES, "classes", "QX_HKEY_CLASSES", "HKEY_CLASSES_ROOT", 32,
     "classes of components, 32-bit view"},
    {QX_HKEY_CLASSES_64, "classes64", "QX_HKEY_CLASSES_64", "HKEY_CLASSES_ROOT", 64,
     "classes of components, 64-bit view"},
}};

std::u16string TidyPath(std::u16string_view path) {
    std::u16string tidy;
    for (const char16_t unit : path) {
        if (unit != u'\\' || (!tidy.empty() && tidy.back() != u'\\')) {
            tidy += unit;
        }
    }
    if (tidy.ends_with(u'\\')) {
        tidy.pop_back();
    }
    return tidy;
}

const Root& RootOf(int32_t number) {
    return *std::find_if(kRoots.begin(), kRoots.end(),
                         [&](const Root& root) { return root.m_number == number; });
}

Key ParseKey(std::string_view text) {
    const std::size_t separator = std::min(text.find('\\'), text.size());
    const std::string_view name = text.substr(0, separator);
    const auto root = std::find_if(kRoots.begin(), kRoots.end(), [&](const Root& each) {
        return IsSameWord(name, each.m_name) || IsSameWord(name, each.m_publicName);
    });
    const auto path = WideOf(text.substr(separator));
    if (root == kRoots.end() || !path) {
        throw WrongUse("'" + std::string(text) +
                       "' is no key: it begins with user, config, config64, classes or classes64, "
                       "and goes on with a backslash and a path of UTF-8");
    }
    return {root->m_number, TidyPath(*path)};
}

std::string NameOf(const Key& key, bool isExact) {
    const std::string root = RootOf(key.m_root).m_name;
    return key.m_path.empty() ? root
                              : root + (isExact ? "\\\\" : "\\") + Shown(key.m_path, isExact);
}

Key Beneath(const Key& key, std::u16string_view name) {
    Key below{key.m_root, key.m_path};
    if (!below.m_path.empty()) {
        below.m_path += u'\\';
    }
    below.m_path += name;
    return below;
}
