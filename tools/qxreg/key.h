// A key by its name: a root and a path below it.
#ifndef QXREG_KEY_H
#define QXREG_KEY_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

struct Root {
    int32_t m_number;
    const char* m_name;        // for people
    const char* m_publicName;  // as the library's header spells it
    const char* m_editorName;  // in registry editors and their files
    int m_view;                // of 32 or 64 bits; 0 if the root has one tree
    const char* m_purpose;
};

// In the order in which they are listed.
extern const std::array<Root, 5> kRoots;

const Root& RootOf(int32_t number);

struct Key {
    int32_t m_root;
    std::u16string m_path;  // empty for the root itself

    bool operator==(const Key&) const = default;
};

// "user\Product\Colors", with any of a root's names. Throws WrongUse if there is no such root, or
// if the text is not UTF-8.
Key ParseKey(std::string_view text);

// The other way round, on one line.
std::string NameOf(const Key& key, bool isExact = false);

// As the library reads a path: only a backslash separates, and what is empty between two does not
// count.
std::u16string TidyPath(std::u16string_view path);

Key Beneath(const Key& key, std::u16string_view name);

#endif
