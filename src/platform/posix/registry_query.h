// Statements and transactions on an open store.
#ifndef QX_PLATFORM_POSIX_REGISTRY_QUERY_H
#define QX_PLATFORM_POSIX_REGISTRY_QUERY_H

#include <string_view>

#include "registry_store.h"

namespace platform {

// One run of a prepared statement. What Blob gives lives until the object goes.
class Query {
  public:
    Query(RegistryStore& store, Statement which)
        : m_database(store.Database()), m_statement(store.Prepared(which)) {}
    ~Query() { sqlite::reset(m_statement); }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    // Parameters count from 1. Bytes are not copied: they outlive the object.
    Query& Bind(int parameter, i64 number);
    Query& Bind(int parameter, std::string_view bytes);

    // True for a row, false at the end.
    bool Step();

    // Columns count from 0.
    i64 Integer(int column) noexcept { return sqlite::column_int64(m_statement, column); }
    std::string_view Blob(int column) noexcept;

  private:
    sqlite3* m_database;
    sqlite3_stmt* m_statement;
};

// Runs a statement that gives no rows.
void Run(RegistryStore& store, Statement which);

// A transaction that writes. Undone unless it was committed.
class WriteTransaction {
  public:
    explicit WriteTransaction(RegistryStore& store);
    ~WriteTransaction();
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;

    void Commit() { Run(m_store, Statement::kCommit); }

  private:
    RegistryStore& m_store;
};

}  // namespace platform

#endif
