// A configuration file as a table of sections and keys, which processes share.
#ifndef QX_CONFIG_INI_FILE_H
#define QX_CONFIG_INI_FILE_H

#include <qxcore/base.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "config/ini_case_less.h"
#include "config/ini_key_table.h"

// Each operation waits for the semaphore that all processes share, reloads the file if it has
// changed by the second since the last look, does its work, and writes the whole file if it changed
// anything. All throw EQXCoreException if the semaphore fails, and std::bad_alloc.
//
// The file: sections "[name]" with lines "key=value", ended by an empty line. The loader takes what
// it understands, in its own ways: see Load in the source. A name or value with spaces at its ends,
// a name with "=", and a line of more than 510 bytes do not survive the way through the file.
class IniFile {
  public:
    // Null is the empty path. A relative path counts from the current directory of each access.
    explicit IniFile(const wchar* path);
    virtual ~IniFile();
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    // -1 for a key that exists if it may not be overwritten, otherwise 0, also if the file cannot
    // be written.
    i32 SetString(const wchar* section, const wchar* key, const wchar* value, bool overwrite);
    // QX_S_OK or QX_E_NOTFOUND. The buffer must have room for the value and its terminator.
    QXResult GetString(const wchar* section, const wchar* key, wchar* buffer);

    // All names, in the order of the table.
    std::vector<std::u16string> GetSections();
    // The names of a section's keys, in their order. None for a path that only has sections below
    // it, in exact spelling; throws QX_E_NOTFOUND if there are none of those either.
    std::vector<std::u16string> GetKeys(std::u16string_view path);
    // The next components of the sections below a path, in exact spelling, each once and in the
    // order of their units.
    std::vector<std::u16string> GetChildren(std::u16string_view path);

  private:
    class Hold;
    using Sections = std::map<std::u16string, IniKeyTable, IniCaseLess>;

    std::string NarrowPath() const;
    void Load();
    void Save();
    void RefreshIfStale();
    bool HasKey(std::u16string_view section, std::u16string_view key) const;
    bool HasSubsections(std::u16string_view path) const;
    template <typename Action>
    void ForEachBelow(std::u16string_view path, Action action) const;

    QXHandle m_semaphore;
    std::u16string m_path;
    Sections m_sections;
    i64 m_modified = 0;  // seconds; the first operation behind the construction loads again
};

#endif
