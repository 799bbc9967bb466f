// A store's file by the database's own means, as any tool may use it.
#ifndef TESTS_POSIX_CONFIG_DATABASE_H
#define TESTS_POSIX_CONFIG_DATABASE_H

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>

inline void Execute(const std::filesystem::path& store, const std::string& text,
                    int keepsSideFiles = 0) {
    sqlite3* database = nullptr;
    ASSERT_EQ(::sqlite3_open(store.c_str(), &database), SQLITE_OK);
    ::sqlite3_file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &keepsSideFiles);
    EXPECT_EQ(::sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << text << ": " << ::sqlite3_errmsg(database);
    ::sqlite3_close(database);
}

// What the file at the place has under a name, whatever this process and its children remember.
inline std::u16string TextInFile(const std::filesystem::path& store, const std::string& name) {
    sqlite3* database = nullptr;
    sqlite3_stmt* query = nullptr;
    ::sqlite3_open(store.c_str(), &database);
    const std::string text = "SELECT data FROM vals WHERE CAST(name AS TEXT)='" + name + "'";
    ::sqlite3_prepare_v2(database, text.c_str(), -1, &query, nullptr);
    const auto* const data = ::sqlite3_step(query) == SQLITE_ROW
                                 ? static_cast<const char16_t*>(::sqlite3_column_blob(query, 0))
                                 : nullptr;
    std::u16string found = data != nullptr ? data : u"<not found>";
    ::sqlite3_finalize(query);
    ::sqlite3_close(database);
    return found;
}

// Into the database, so that its side files hold nothing. The end of a process does so only if it
// has no other threads, and a sanitizer has one of its own.
inline void WriteLogBack(const std::filesystem::path& store) {
    Execute(store, "PRAGMA wal_checkpoint(TRUNCATE)", 1);
}

#endif
