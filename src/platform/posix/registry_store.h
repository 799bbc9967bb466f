// A file of the registry, open: one connection for each file and process, with its prepared
// statements, behind a lock. It is closed completely before a fork and opened again on either side
// when it is next needed, because a child must neither use nor even close what it inherits.
#ifndef QX_PLATFORM_POSIX_REGISTRY_STORE_H
#define QX_PLATFORM_POSIX_REGISTRY_STORE_H

#include <sqlite3.h>

#include <array>
#include <new>

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

    // Makes sure of a connection. False if there is no store; nothing is made.
    bool OpenForReading();

    // Makes sure of a connection that can write, and makes the store if there is none.
    void OpenForWriting();

    bool IsReadOnly() const noexcept { return ::sqlite3_db_readonly(m_database, "main") == 1; }

    sqlite3_stmt* Prepared(Statement which);
    sqlite3* Database() const noexcept { return m_database; }

    void Enter() noexcept;
    void Leave() noexcept { LeaveCriticalSection(&m_lock); }

    // Waits a little for other processes. False once the operation has waited for long enough.
    bool WaitForOthers() noexcept;

    enum class Closing { kForFork, kForGood };
    void Close(Closing how) noexcept;

  private:
    bool Connect(bool forWriting);
    const StoreLocation& Location();

    CRITICAL_SECTION m_lock{};
    StoreLocation* m_location = nullptr;
    sqlite3* m_database = nullptr;
    std::array<sqlite3_stmt*, kStatementCount> m_prepared{};
    i64 m_waitingSince = 0;  // milliseconds; 0 while the operation has not waited
    u32 m_waits = 0;
    StoreNumber m_number;
};

RegistryStore& StoreOf(StoreNumber number) noexcept;

// Has every store closed round a fork. False without memory.
bool RegisterForkHandlers() noexcept;

// Runs an operation on a store under its lock, again and again while others are in its way, and
// turns what it throws into its number. The operation is such that it can start over.
template <typename Operation>
u32 RunOnStore(StoreNumber number, Operation&& operation) noexcept {
    const ErrnoKeeper keeper;
    if (!RegisterForkHandlers()) {
        return kErrorOutOfMemory;
    }
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
