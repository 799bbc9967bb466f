#include "config/ini_key_table.h"

#include <algorithm>
#include <new>

#include "config/ini_case_less.h"

void IniKeyTable::Append(std::u16string_view key, std::u16string_view value) {
    m_rows.push_back(Store(key, value));
}

void IniKeyTable::Sort() {
    const auto less = [this](const Row& first, const Row& second) {
        return IniCaseLess()(Text(first.key), Text(second.key));
    };
    if (!std::is_sorted(m_rows.begin(), m_rows.end(), less)) {
        std::stable_sort(m_rows.begin(), m_rows.end(), less);
    }
    std::size_t kept = 0;
    for (std::size_t next = 1; next < m_rows.size(); ++next) {
        if (less(m_rows[kept], m_rows[next])) {
            m_rows[++kept] = m_rows[next];
        } else {
            m_rows[kept].value = m_rows[next].value;
        }
    }
    m_rows.resize(std::min(m_rows.size(), kept + 1));
}

void IniKeyTable::Clear() noexcept {
    m_rows.clear();
    m_texts.clear();
}

void IniKeyTable::Set(std::u16string_view key, std::u16string_view value) {
    const std::size_t place = Place(key);
    if (IsAt(place, key)) {
        Replace(m_rows[place].value, value);
        return;
    }
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(place), Store(key, value));
}

std::optional<std::u16string_view> IniKeyTable::Find(std::u16string_view key) const {
    const std::size_t place = Place(key);
    return IsAt(place, key) ? std::optional(Value(place)) : std::nullopt;
}

std::size_t IniKeyTable::Place(std::u16string_view key) const noexcept {
    const auto place = std::lower_bound(m_rows.begin(), m_rows.end(), key,
                                        [this](const Row& row, std::u16string_view wanted) {
                                            return IniCaseLess()(Text(row.key), wanted);
                                        });
    return static_cast<std::size_t>(place - m_rows.begin());
}

bool IniKeyTable::IsAt(std::size_t place, std::u16string_view key) const noexcept {
    return place < m_rows.size() && !IniCaseLess()(key, Key(place));
}

IniKeyTable::Row IniKeyTable::Store(std::u16string_view key, std::u16string_view value) {
    RequireRoom(key.size() + value.size());
    const auto start = static_cast<u32>(m_texts.size());
    const auto keyLength = static_cast<u32>(key.size());
    m_texts.append(key).append(value);
    return {{start, keyLength}, {start + keyLength, static_cast<u32>(value.size())}};
}

// The texts behind the old value move; an empty one of the same place may.
void IniKeyTable::Replace(Piece& old, std::u16string_view value) {
    RequireRoom(value.size());
    m_texts.replace(old.start, old.length, value);
    const Piece before = old;
    const u32 growth = static_cast<u32>(value.size()) - before.length;
    for (Row& row : m_rows) {
        for (Piece* const piece : {&row.key, &row.value}) {
            piece->start += piece->start >= before.start + before.length ? growth : 0;
        }
    }
    old = {before.start, before.length + growth};
}

void IniKeyTable::RequireRoom(std::size_t units) const {
    if (units > UINT32_MAX - m_texts.size()) {
        throw std::bad_alloc();
    }
}
