// Text on its way between the registry, which keeps 16-bit units, and people.
#ifndef QXREG_TEXT_H
#define QXREG_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// Nothing if the text is not UTF-8.
std::optional<std::u16string> WideOf(std::string_view utf8);

// Nothing if the text has half a surrogate pair.
std::optional<std::string> Utf8Of(std::u16string_view wide);

// UTF-8 on one line. What would move a terminal's cursor is written \t, \n, \r, \0 or \uXXXX, and
// so is half a surrogate pair; a backslash is doubled if `isExact`, so that nothing is ambiguous.
std::string Shown(std::u16string_view wide, bool isExact);

// Compares ASCII letters without case.
bool IsSameWord(std::string_view a, std::string_view b);
bool IsSameWord(std::u16string_view a, std::string_view b);

#endif
