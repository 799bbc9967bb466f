// A file of the registry, open: one connection for each file and process, with its prepared
// statements, behind a lock. It is closed completely before a fork and opened again on either side
// when it is next needed, because a child must neither use nor even close what it inherits.
#ifndef QX_PLATFORM_POSIX_REGISTRY_STORE_H
#define QX_PLATFORM_POSIX_REGISTRY_STORE_H

#include <sqlite3.h>
#include <sys/types.h>

#include <array>
#include <new>

#include "cancellation.h"
#include "platform/errors.h"
#include "platform/sync.h"
#include "registry_failure.h"
#include "registry_location.h"

namespace platform {

enum class Statement : u8 {
    kBegin,
    kCommit,
    kRollback,
    kFindKey,
    kKeyPath,
    kAddKey,
    kFirstChild,
    kNextChild,
    kDeleteKey,
    kDeleteKeyValues,
    kReadValue,
    kWriteValue,
    kNextValue,
    kDeleteValue,
};
inline constexpr std::size_t kStatementCount = 14;

class RegistryStore {
  public:
    constexpr explicit RegistryStore(StoreNumber number) noexcept : m_number(number) {}
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    // The members below are called with the lock held, and throw StoreFailure or std::bad_alloc.

    enum class Purpose { kRead, kWrite };

    // Makes sure of a connection to the file that is at the store's place now. False if there is no
    // store; nothing is made. An operation begins with this, and looks at the place if it is to
    // write or if nobody has for a second.
    bool Open(Purpose purpose);

    // Makes sure of a connection that can write, and makes the store if there is none. Follows
    // Open.
    void OpenForWriting();

    // Tries once more if this user could not write when the connection was made.
    bool CanWrite();

    // Changes when another file has taken the store's place: numbers of keys mean nothing there.
    u32 Incarnation() const noexcept { return m_incarnation; }

    sqlite3_stmt* Prepared(Statement which);
    sqlite3* Database() const noexcept { return m_database; }

    void Enter() noexcept { EnterCriticalSection(&m_lock); }
    void Leave() noexcept { LeaveCriticalSection(&m_lock); }

    // Closing for a while leaves the log for the next connection.
    enum class Closing { kForAWhile, kForGood };
    void Close(Closing how) noexcept;

  private:
    struct FileIdentity {
        dev_t m_device;
        ino_t m_inode;
        bool operator==(const FileIdentity&) const = default;
    };

    bool Connect(Purpose purpose);
    bool IsReadOnly() const noexcept { return ::sqlite3_db_readonly(m_database, "main") == 1; }
    bool IsTimeToLook(Purpose purpose) noexcept;
    FileIdentity FileAtPlace();
    const StoreLocation& Location();

    CRITICAL_SECTION m_lock{};
    StoreLocation* m_location = nullptr;
    sqlite3* m_database = nullptr;
    std::array<sqlite3_stmt*, kStatementCount> m_prepared{};
    u32 m_incarnation = 0;
    FileIdentity m_connectedFile{};
    time_t m_lastLook = 0;
    StoreNumber m_number;
};

RegistryStore& StoreOf(StoreNumber number) noexcept;

// How long an operation waits for other processes.
class Patience {
  public:
    // Waits a little. False once that has gone on for long enough.
    bool Wait() noexcept;

  private:
    i64 m_waitingSince = 0;  // milliseconds; 0 before the first wait
    u32 m_waits = 0;
};

// One attempt under the store's lock. `failure` tells why there is no number.
template <typename Operation>
bool TryOnStore(RegistryStore& store, Operation& operation, u32& number, StoreFailure& failure) {
    struct Holder {
        explicit Holder(RegistryStore& held) noexcept : m_store(held) { m_store.Enter(); }
        ~Holder() { m_store.Leave(); }
        RegistryStore& m_store;
    } const holder(store);
    try {
        number = operation(store);
        return true;
    } catch (const StoreFailure& thrown) {
        failure = thrown;
    } catch (const std::bad_alloc&) {
        failure = {kErrorOutOfMemory, false};
    }
    return false;
}

// Runs an operation on a store, again and again while other processes are in its way, and turns
// what it throws into its number. The operation is such that it can start over. Nobody else has to
// wait while it waits.
template <typename Operation>
u32 RunOnStore(StoreNumber which, Operation&& operation) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    Patience patience;
    u32 number = kErrorSuccess;
    StoreFailure failure{};
    while (!TryOnStore(StoreOf(which), operation, number, failure)) {
        if (!failure.m_transient || !patience.Wait()) {
            return failure.m_number;
        }
    }
    return number;
}

}  // namespace platform

#endif
