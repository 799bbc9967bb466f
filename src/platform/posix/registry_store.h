// A store of the registry: where its file is, and one connection to it for the process, behind a
// lock. The connection is closed completely before a fork and opened again on either side when it
// is next needed, because a child must neither use nor even close what it inherits.
#ifndef QX_PLATFORM_POSIX_REGISTRY_STORE_H
#define QX_PLATFORM_POSIX_REGISTRY_STORE_H

#include <atomic>
#include <memory>

#include "platform/sync.h"
#include "registry_connection.h"
#include "registry_failure.h"
#include "registry_location.h"
#include "registry_memory.h"

namespace platform {

class RegistryStore final : private WriteMarks {
  public:
    constexpr explicit RegistryStore(StoreNumber number) noexcept : m_number(number) {}
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    // The members below are called with the lock held. Those that are not noexcept throw
    // StoreFailure or std::bad_alloc.

    enum class Purpose { kRead, kWrite };

    // Makes sure of a connection to the file that is at the store's place now, with the rights that
    // the thread has now. False if there is no store; nothing is made. An operation begins with
    // this, and looks at the place if nobody has for a second. A write looks again under its lock.
    bool Open(Purpose purpose);

    // Makes sure of a connection that can write, and makes the store if there is none. Follows
    // Open.
    void OpenForWriting();

    // Tries once more if this user could not write when the connection was made.
    bool CanWrite();

    // For a read that others' locks were in the way of: goes on to a connection that takes none,
    // if nobody writes. It is given up once somebody has written, or after a second.
    bool OpenWithoutLocks() noexcept;

    // Gives up a connection without locks, whose failures mean nothing. False if there is none.
    bool GiveUpReading() noexcept;

    // Whether an operation that failed may have met a file that is no longer the store's. The next
    // Open looks.
    bool MayHaveMoved() noexcept;

    // Whether what an operation read is the store's: not if it read without locks or without side
    // files, and somebody came meanwhile.
    bool CanBeBelieved() noexcept;

    // Changes when another file has taken the store's place: numbers of keys mean nothing there.
    // May be asked for without the lock.
    u32 Incarnation() const noexcept { return m_incarnation.load(std::memory_order_relaxed); }

    // What the process remembers of the store, which in parts is used without the lock.
    StoreMemory& Memory() noexcept { return m_memory; }
    StoreNumber Number() const noexcept { return m_number; }
    StoreConnection& Connection() const noexcept { return *m_connection; }

    sqlite3_stmt* Prepared(Statement which) { return m_connection->Prepared(which); }
    sqlite3* Database() const noexcept { return m_connection->Database(); }

    void Enter() noexcept { EnterCriticalSection(&m_lock); }
    void Leave() noexcept { LeaveCriticalSection(&m_lock); }

    // Leaves the log for the next connection.
    void Close() noexcept;
    // The same where the store is to be used on as it is.
    void CloseForFork() noexcept;
    // Writes the log back, if it may, and forgets the place.
    void CloseForGood() noexcept;

  private:
    bool Begin() noexcept override;
    void End() noexcept override { m_memory.Word().End(); }
    bool IsInPlace() noexcept;
    bool Connect(Purpose purpose);
    void ConnectWithoutLocks();
    void Adopt(std::unique_ptr<StoreConnection> connection);
    bool IsFitFor(Purpose purpose) const;
    bool IsPastUse(Purpose purpose) const noexcept;
    void DropUnlessUsable(Purpose purpose);
    void Follow();
    void NewIncarnation() noexcept { m_incarnation.fetch_add(1, std::memory_order_relaxed); }
    bool IsThere();
    const StoreLocation& Location();
    void ForgetLocation() noexcept;

    CRITICAL_SECTION m_lock{};
    StoreLocation* m_location = nullptr;
    StoreConnection* m_connection = nullptr;
    FileState m_lastFile{};  // what the last connection was to
    std::atomic<u32> m_incarnation{0};
    StoreMemory m_memory;
    Purpose m_purpose = Purpose::kRead;  // of the last Open
    u64 m_readAt = 0;  // the word's number for which a connection without locks was made
    StoreNumber m_number;
};

RegistryStore& StoreOf(StoreNumber number) noexcept;

}  // namespace platform

#endif
