// Text in the file is in the order of bytes of the stored names, so that any tool shows a name by
// CAST(name AS TEXT). Numbers of keys are never given twice: what holds the number of a key that
// was deleted stays without a key.
#include "registry_schema.h"

#include <array>

#include "platform/errors.h"
#include "registry_failure.h"
#include "registry_names.h"

namespace platform {
namespace {

constexpr i64 kApplicationId = 0x51585247;
constexpr i64 kVersion = 1;

// What SQLite keeps of the statement that made a table or an index is the statement itself.
struct SchemaObject {
    const char* name;
    const char* statement;  // null for what comes with a table
};
constexpr std::array<SchemaObject, 6> kObjects{{
    {"keys",
     "CREATE TABLE keys("
     " id INTEGER PRIMARY KEY AUTOINCREMENT,"
     " parent INTEGER,"
     " folded BLOB NOT NULL,"
     " name BLOB NOT NULL,"
     " path BLOB NOT NULL UNIQUE)"},
    {"keys_of_key", "CREATE UNIQUE INDEX keys_of_key ON keys(parent, folded)"},
    {"vals",
     "CREATE TABLE vals("
     " id INTEGER PRIMARY KEY,"
     " key INTEGER NOT NULL,"
     " folded BLOB NOT NULL,"
     " name BLOB NOT NULL,"
     " type INTEGER NOT NULL,"
     " data BLOB NOT NULL,"
     " UNIQUE(key, folded))"},
    {"vals_of_key", "CREATE INDEX vals_of_key ON vals(key)"},
    {"sqlite_autoindex_keys_1", nullptr},
    {"sqlite_autoindex_vals_1", nullptr},
}};

constexpr char kRest[] =
    // The numbers up to this one are for the roots.
    "INSERT INTO sqlite_sequence VALUES('keys', 15);"
    "CREATE VIEW readable AS"
    " SELECT CAST(keys.path AS TEXT) AS key, CAST(vals.name AS TEXT) AS value, type, data"
    " FROM keys JOIN vals ON vals.key = keys.id;"
    "PRAGMA application_id=1364742727;"
    "PRAGMA user_version=1;";
static_assert(kApplicationId == 1364742727 && kVersion == 1 && kLastReservedId == 15);

struct Tree {
    i64 root;
    StoreNumber store;
    std::u16string_view name;
};
constexpr std::array<Tree, 5> kTrees{{
    {kTreeClasses32, StoreNumber::kMachine, u"CLASSES-32"},
    {kTreeClasses64, StoreNumber::kMachine, u"CLASSES-64"},
    {kTreeConfig32, StoreNumber::kMachine, u"CONFIG-32"},
    {kTreeConfig64, StoreNumber::kMachine, u"CONFIG-64"},
    {kTreeUser, StoreNumber::kUser, u"USER"},
}};

// A statement that is used once.
class OneTimeQuery {
  public:
    OneTimeQuery(sqlite3* database, const char* text) : m_database(database) {
        CheckStatus(sqlite::prepare_v2(database, text, -1, &m_statement, nullptr), database);
    }
    ~OneTimeQuery() { sqlite::finalize(m_statement); }
    OneTimeQuery(const OneTimeQuery&) = delete;
    OneTimeQuery& operator=(const OneTimeQuery&) = delete;

    sqlite3_stmt* Get() const noexcept { return m_statement; }
    bool Step() {
        const int status = sqlite::step(m_statement);
        CheckStatus(status, m_database);
        return status == SQLITE_ROW;
    }
    // Empty for NULL.
    std::string_view Text(int column) noexcept {
        const auto* const text =
            reinterpret_cast<const char*>(sqlite::column_text(m_statement, column));
        return text != nullptr ? text : std::string_view();
    }

  private:
    sqlite3* m_database;
    sqlite3_stmt* m_statement = nullptr;
};

void Execute(sqlite3* database, const char* text) {
    CheckStatus(sqlite::exec(database, text, nullptr, nullptr, nullptr), database);
}

i64 NumberOf(sqlite3* database, const char* text) {
    OneTimeQuery query(database, text);
    query.Step();
    return sqlite::column_int64(query.Get(), 0);
}

void AddRoot(sqlite3* database, const Tree& tree) {
    const std::string name = StoredName(tree.name);
    OneTimeQuery query(database, "INSERT INTO keys(id, folded, name, path) VALUES(?1, ?2, ?2, ?2)");
    sqlite::bind_int64(query.Get(), 1, tree.root);
    sqlite::bind_blob64(query.Get(), 2, name.data(), name.size(), SQLITE_STATIC);
    query.Step();
}

void FillTables(sqlite3* database, StoreNumber number) {
    for (const SchemaObject& object : kObjects) {
        if (object.statement != nullptr) {
            Execute(database, object.statement);
        }
    }
    Execute(database, kRest);
    for (const Tree& tree : kTrees) {
        if (tree.store == number) {
            AddRoot(database, tree);
        }
    }
}

bool IsOurs(std::string_view name, std::string_view statement) noexcept {
    for (const SchemaObject& object : kObjects) {
        if (name == object.name) {
            return statement == (object.statement != nullptr ? object.statement : "");
        }
    }
    return false;
}

// Other tables, and views, are not used and may be there.
bool HasOurTables(sqlite3* database) {
    OneTimeQuery query(database,
                       "SELECT name, sql FROM sqlite_schema WHERE tbl_name IN('keys', 'vals')");
    std::size_t found = 0;
    while (query.Step()) {
        if (!IsOurs(query.Text(0), query.Text(1))) {
            return false;
        }
        ++found;
    }
    return found == kObjects.size();
}

bool KeepsLog(sqlite3* database, const char* question) {
    OneTimeQuery query(database, question);
    return query.Step() && query.Text(0) == "wal";
}

}  // namespace

std::u16string_view TreeName(i64 root) noexcept {
    return kTrees[static_cast<std::size_t>(root - kTreeClasses32)].name;
}

// In this order: a store that comes to be between the questions is not taken for a foreign one.
StoreContent IdentifyStore(sqlite3* database) {
    const i64 objects = NumberOf(database, "SELECT count(*) FROM sqlite_schema");
    const i64 application = NumberOf(database, "PRAGMA application_id");
    if (application == kApplicationId) {
        const bool known =
            NumberOf(database, "PRAGMA user_version") == kVersion && HasOurTables(database);
        return known ? StoreContent::kRegistry : StoreContent::kForeign;
    }
    return objects == 0 && application == 0 ? StoreContent::kNothing : StoreContent::kForeign;
}

// Killed at any point this leaves a database that the next process takes for empty.
void FillStore(sqlite3* database, StoreNumber number) {
    Execute(database, "PRAGMA encoding='UTF-16be'; PRAGMA journal_mode=WAL; BEGIN IMMEDIATE");
    if (IdentifyStore(database) == StoreContent::kNothing) {
        FillTables(database, number);
    }
    Execute(database, "COMMIT");
}

bool UseLog(sqlite3* database) {
    if (KeepsLog(database, "PRAGMA journal_mode")) {
        return true;
    }
    if (sqlite::db_readonly(database, "main") != 0 ||
        !KeepsLog(database, "PRAGMA journal_mode=WAL")) {
        return false;
    }
    IdentifyStore(database);  // makes the side files
    return true;
}

}  // namespace platform
