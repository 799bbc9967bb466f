#include "registry_query.h"

namespace platform {

Query& Query::Bind(int parameter, i64 number) {
    CheckStatus(sqlite::bind_int64(m_statement, parameter, number), m_database);
    return *this;
}

Query& Query::Bind(int parameter, std::string_view bytes) {
    // A null address would bind NULL and not an empty blob.
    const char* const data = bytes.data() != nullptr ? bytes.data() : "";
    CheckStatus(sqlite::bind_blob64(m_statement, parameter, data, bytes.size(), SQLITE_STATIC),
                m_database);
    return *this;
}

bool Query::Step() {
    const int status = sqlite::step(m_statement);
    CheckStatus(status, m_database);
    return status == SQLITE_ROW;
}

std::string_view Query::Blob(int column) noexcept {
    const void* const data = sqlite::column_blob(m_statement, column);
    const int size = sqlite::column_bytes(m_statement, column);
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

void Run(RegistryStore& store, Statement which) {
    Query(store, which).Step();
}

// What ends a transaction is ready before one begins.
WriteTransaction::WriteTransaction(RegistryStore& store) : m_store(store) {
    m_store.Prepared(Statement::kCommit);
    m_store.Prepared(Statement::kRollback);
    Run(m_store, Statement::kBegin);
}

WriteTransaction::~WriteTransaction() {
    const auto isOpen = [this] { return sqlite::get_autocommit(m_store.Database()) == 0; };
    if (isOpen()) {
        sqlite::step(m_store.Prepared(Statement::kRollback));
        sqlite::reset(m_store.Prepared(Statement::kRollback));
    }
    if (isOpen()) {
        // Nothing that comes later may become part of it.
        m_store.Close();
    }
}

}  // namespace platform
