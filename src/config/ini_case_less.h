// The order of names in an ini file's table.
#ifndef QX_CONFIG_INI_CASE_LESS_H
#define QX_CONFIG_INI_CASE_LESS_H

#include <string_view>

// Each unit is folded to lower case by itself; the first units that differ then decide, as numbers,
// and of a name and its start the start is the lesser.
struct IniCaseLess {
    using is_transparent = void;

    bool operator()(std::u16string_view first, std::u16string_view second) const noexcept;
};

#endif
