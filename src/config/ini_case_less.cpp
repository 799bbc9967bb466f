#include "config/ini_case_less.h"

#include <qxcore/string.h>

#include <algorithm>

bool IniCaseLess::operator()(std::u16string_view first, std::u16string_view second) const noexcept {
    const std::size_t common = std::min(first.size(), second.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (first[i] == second[i]) {
            continue;
        }
        const auto firstFolded = QXToLowerW(first[i]);
        const auto secondFolded = QXToLowerW(second[i]);
        if (firstFolded != secondFolded) {
            return firstFolded < secondFolded;
        }
    }
    return first.size() < second.size();
}
