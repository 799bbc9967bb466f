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

    void Enter() noexcept;
    void Leave() noexcept { LeaveCriticalSection(&m_lock); }

    // Waits a little for other processes. False once the operation has waited for long enough.
    bool WaitForOthers() noexcept;

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
    i64 m_waitingSince = 0;  // milliseconds; 0 while the operation has not waited
    u32 m_waits = 0;
    u32 m_incarnation = 0;
    FileIdentity m_connectedFile{};
    time_t m_lastLook = 0;
    StoreNumber m_number;
};

RegistryStore& StoreOf(StoreNumber number) noexcept;

// Runs an operation on a store under its lock, again and again while others are in its way, and
// turns what it throws into its number. The operation is such that it can start over.
template <typename Operation>
u32 RunOnStore(StoreNumber number, Operation&& operation) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    struct Holder {
        explicit Holder(RegistryStore& store) noexcept : m_store(store) { m_store.Enter(); }
        ~Holder() { m_store.Leave(); }
        RegistryStore& m_store;
    } const holder(StoreOf(number));
    for (;;) {
        try {
            return operation(holder.m_store);
        } catch (const StoreFailure& failure) {
            if (!failure.m_transient || !holder.m_store.WaitForOthers()) {
                return failure.m_number;
            }
        } catch (const std::bad_alloc&) {
            return kErrorOutOfMemory;
        }
    }
}

}  // namespace platform

#endif
