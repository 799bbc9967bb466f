#include "config/ini_iterators.h"

#include "config/ini_file.h"
#include "core/exception.h"

const std::u16string& IniFileIteratorBase::Next() {
    if (!HasNext()) {
        throw EQXCoreException(QX_E_EOF);
    }
    return m_names[m_cursor++];
}

IniFileKeyIterator::IniFileKeyIterator(IniFile& file, std::u16string_view path)
    : IniFileIteratorBase(path, file.GetKeys(path)) {}

IniFileSetIterator::IniFileSetIterator(IniFile& file, std::u16string_view path)
    : IniFileIteratorBase(path, file.GetChildren(path)) {}
