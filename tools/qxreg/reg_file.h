// The text files of registry editors, version 5.
//
// Beyond the published layout: a key whose name would not fit on a line of its own stands in quotes
// inside its brackets, and a comment tells which of a root's trees the keys behind it are in.
#ifndef QXREG_REG_FILE_H
#define QXREG_REG_FILE_H

#include <string>
#include <string_view>
#include <vector>

#include "key.h"
#include "value.h"

struct RegValue {
    int m_line;
    bool m_isDeletion;
    Value m_value;  // the name alone for a deletion
};

struct RegKey {
    int m_line;
    bool m_isDeletion;
    Key m_key;
    std::vector<RegValue> m_values;
};

enum class RegEncoding { kUtf16, kUtf8 };

// UTF-16 of either byte order by its mark, or UTF-8 with a mark or without. `view` is 32, 64, or 0
// for a file that tells: by our comment, or by the names that 32-bit keys have in registry editors.
// Throws Failure with the line of what is malformed.
std::vector<RegKey> ParseRegFile(std::string_view bytes, int view);

// Writes a file piece by piece.
class RegWriter {
  public:
    RegWriter();
    void AddKey(const Key& key, const std::vector<Value>& values);
    // The whole file. Throws Failure if a name cannot be told in this encoding.
    std::string Encode(RegEncoding encoding) const;

  private:
    void AddValue(const Value& value);
    void AddBytes(const Value& value);
    void AddAscii(std::string_view text);

    std::u16string m_text;
    int m_view = 0;
};

#endif
