// The keys of one section, in the order of IniCaseLess, with their values.
#ifndef QX_CONFIG_INI_KEY_TABLE_H
#define QX_CONFIG_INI_KEY_TABLE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

// All texts of a section stand in one block, so that a table takes little more than its text. What
// fails for want of memory leaves the table as it was.
class IniKeyTable {
  public:
    // Adds a key behind the others, whatever its name. Sort makes a table of it again.
    void Append(std::u16string_view key, std::u16string_view value);
    // Of equal keys the first one's spelling and the last one's value stay.
    void Sort();
    // Keeps the memory for the next ones. A copy of a table has no more than it needs.
    void Clear() noexcept;

    // A key that exists keeps its spelling.
    void Set(std::u16string_view key, std::u16string_view value);
    // The views here and below hold until the table changes.
    std::optional<std::u16string_view> Find(std::u16string_view key) const;

    std::size_t Size() const noexcept { return m_rows.size(); }
    std::u16string_view Key(std::size_t index) const noexcept { return Text(m_rows[index].key); }
    std::u16string_view Value(std::size_t index) const noexcept {
        return Text(m_rows[index].value);
    }

  private:
    // A part of the block.
    struct Piece {
        u32 start;
        u32 length;
    };
    struct Row {
        Piece key;
        Piece value;
    };

    std::u16string_view Text(Piece piece) const noexcept {
        return std::u16string_view(m_texts).substr(piece.start, piece.length);
    }
    // The first row that is not in front of the key.
    std::size_t Place(std::u16string_view key) const noexcept;
    bool IsAt(std::size_t place, std::u16string_view key) const noexcept;
    Row Store(std::u16string_view key, std::u16string_view value);
    void Replace(Piece& old, std::u16string_view value);
    void RequireRoom(std::size_t units) const;

    std::u16string m_texts;
    std::vector<Row> m_rows;
};

#endif
