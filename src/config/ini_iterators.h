// Names in an ini file as they stood when the iterator was made. An iterator belongs to one thread.
#ifndef QX_CONFIG_INI_ITERATORS_H
#define QX_CONFIG_INI_ITERATORS_H

#include <string>
#include <vector>

class IniFile;

class IniFileIteratorBase {
  public:
    virtual ~IniFileIteratorBase() = default;

    // The section path that the iterator was made for.
    const std::u16string& GetName() const noexcept { return m_name; }
    bool HasNext() const noexcept { return m_cursor < m_names.size(); }
    // Valid as long as the iterator. Throws QX_E_EOF behind the last.
    const std::u16string& Next();

  protected:
    IniFileIteratorBase(std::u16string_view name, std::vector<std::u16string> names)
        : m_name(name), m_names(std::move(names)) {}

  private:
    std::u16string m_name;
    std::vector<std::u16string> m_names;
    std::size_t m_cursor = 0;
};

// The keys of a section. Throws QX_E_NOTFOUND if neither it nor anything below it is there.
class IniFileKeyIterator final : public IniFileIteratorBase {
  public:
    IniFileKeyIterator(IniFile& file, std::u16string_view path);
};

// The children of a section path; none for a path that is not there.
class IniFileSetIterator final : public IniFileIteratorBase {
  public:
    IniFileSetIterator(IniFile& file, std::u16string_view path);
};

#endif
