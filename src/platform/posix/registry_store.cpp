#include "registry_store.h"

#include <memory>
#include <utility>

#include "platform/errors.h"
#include "registry_lifetime.h"
#include "registry_vfs.h"
#include "registry_word_guard.h"

namespace platform {
namespace {

constinit RegistryStore s_stores[kStoreCount]{RegistryStore(StoreNumber::kUser),
                                              RegistryStore(StoreNumber::kMachine)};

// Written under the locks of all stores. Whoever finds it set under such a lock is the thread that
// forks, in a handler of the program's own.
constinit bool s_forkUnderWay = false;

void ThrowIf(bool failed, u32 error) {
    if (failed) {
        throw StoreFailure{error, false};
    }
}

void ThrowUnlessSuccess(u32 error) {
    ThrowIf(error != kErrorSuccess, error);
}

}  // namespace

// Only a place that was found is remembered: what is missing may be so for the moment.
const StoreLocation& RegistryStore::Location() {
    if (m_location == nullptr || m_location->m_file.empty()) {
        auto found = std::make_unique<StoreLocation>(LocateStore(m_number));
        delete std::exchange(m_location, found.release());
    }
    return *m_location;
}

void RegistryStore::ForgetLocation() noexcept {
    delete std::exchange(m_location, nullptr);
}

// The user's own store is another one for another user.
void RegistryStore::DropUnlessUsable(Purpose purpose) {
    if (m_connection == nullptr) {
        return;
    }
    if (!m_memory.RightsDoNotMatter() && m_connection->BelongsToOthers()) {
        Close();
        ForgetLocation();
        return;
    }
    if (IsPastUse(purpose)) {
        CloseForFork();
        return;
    }
    const bool newSecond = m_memory.IsTimeToLook();
    if (!(newSecond ? m_connection->IsInPlace() : IsFitFor(purpose))) {
        Follow();
    } else if (newSecond) {
        m_memory.Look(*m_connection);
    }
}

bool RegistryStore::IsFitFor(Purpose purpose) const {
    return purpose == Purpose::kWrite ? m_connection->IsWhole() : m_connection->IsSafe();
}

bool RegistryStore::IsPastUse(Purpose purpose) const noexcept {
    return !m_connection->TakesLocks() && (purpose == Purpose::kWrite || m_memory.IsTimeToLook() ||
                                           !m_memory.Word().IsStill(m_readAt));
}

// The lock under which stale files are removed is no write to the store. If they cannot be removed
// the connection goes on, and its writes are marked again.
void RegistryStore::Follow() {
    struct Unmarked {
        explicit Unmarked(RegistryStore& store) noexcept : m_store(store) {
            MarkWrites(m_store.Database(), nullptr);
        }
        ~Unmarked() { MarkWrites(m_store.Database(), &m_store); }
        RegistryStore& m_store;
    };
    m_memory.LookSoon();  // if this fails, the next operation tries again
    {
        const Unmarked unmarked(*this);
        m_connection->RemoveStaleFiles();
    }
    if (!m_connection->IsToTheSameFile()) {
        NewIncarnation();
    }
    Close();
}

bool RegistryStore::IsThere() {
    StoreFile found;
    ThrowUnlessSuccess(ProbeStoreFile(Location(), &found));
    ThrowIf(found == StoreFile::kForeign, kErrorBadDatabase);
    return found == StoreFile::kPresent;
}

bool RegistryStore::Connect(Purpose purpose) {
    auto connection = std::make_unique<StoreConnection>(Location().m_file);
    m_memory.FollowFiles(connection->Paths(), connection->File());
    MarkWrites(connection->Database(), this);
    StoreContent content = connection->Identify();
    if (content == StoreContent::kNothing) {
        if (purpose == Purpose::kRead) {
            return false;
        }
        connection->Fill(m_number, Location().m_fileMode);
        content = connection->Identify();
    }
    ThrowIf(content != StoreContent::kRegistry, kErrorBadDatabase);
    connection->Settle();
    Adopt(std::move(connection));
    m_memory.Look(*m_connection);
    return true;
}

void RegistryStore::Adopt(std::unique_ptr<StoreConnection> connection) {
    if (!connection->File().IsSameFile(m_lastFile)) {
        m_memory.Forget();
        NewIncarnation();
    }
    m_lastFile = connection->File();
    m_connection = connection.release();
}

// The word is looked at first: what the connection finds in the log is what it reads from then on.
void RegistryStore::ConnectWithoutLocks() {
    const StorePaths paths = PathsOf(Location().m_file);
    m_memory.FollowFiles(paths, LookAt(paths).m_database);
    m_readAt = m_memory.Word().Now();
    ThrowIf(!StoreWord::IsAtRest(m_readAt), kErrorBusy);
    auto connection = std::make_unique<StoreConnection>(paths.m_database, StoreVfs::kUnlocked);
    ThrowIf(connection->Identify() != StoreContent::kRegistry, kErrorBadDatabase);
    connection->Settle();
    Adopt(std::move(connection));
    m_memory.NoteLook();
}

bool RegistryStore::OpenWithoutLocks() noexcept {
    if (m_purpose == Purpose::kWrite || s_forkUnderWay ||
        (m_connection != nullptr && !m_connection->TakesLocks())) {
        return false;
    }
    CloseForFork();
    try {
        ConnectWithoutLocks();
        return true;
    } catch (const StoreFailure&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool RegistryStore::Open(Purpose purpose) {
    m_purpose = purpose;
    ThrowIf(s_forkUnderWay, kErrorBusy);
    DropUnlessUsable(purpose);
    return m_connection != nullptr || (IsThere() && Connect(Purpose::kRead));
}

bool RegistryStore::CanWrite() {
    if (!m_connection->IsReadOnly()) {
        return true;
    }
    Close();
    return Connect(Purpose::kRead) && !m_connection->IsReadOnly();
}

void RegistryStore::OpenForWriting() {
    if (m_connection == nullptr) {
        ThrowUnlessSuccess(MakeStoreFile(Location()));
        Connect(Purpose::kWrite);
    }
    ThrowIf(!CanWrite(), kErrorAccessDenied);
}

bool RegistryStore::IsInPlace() noexcept {
    try {
        return m_connection == nullptr || m_connection->IsInPlace();
    } catch (const StoreFailure&) {
        return false;
    }
}

// If the files are not the store's any more, the next Open follows them or tells what is wrong.
bool RegistryStore::Begin() noexcept {
    const bool namesUnchanged = m_connection != nullptr && m_connection->AreNamesUnchanged();
    if (!namesUnchanged && !IsInPlace()) {
        m_memory.LookSoon();
        return false;
    }
    return m_memory.Word().Begin(namesUnchanged);
}

bool RegistryStore::MayHaveMoved() noexcept {
    if (m_connection == nullptr) {
        return false;
    }
    m_memory.LookSoon();
    try {
        return !m_connection->IsInPlace();
    } catch (const StoreFailure&) {
        return false;
    }
}

bool RegistryStore::GiveUpReading() noexcept {
    if (m_connection == nullptr || m_connection->TakesLocks()) {
        return false;
    }
    CloseForFork();
    return true;
}

bool RegistryStore::CanBeBelieved() noexcept {
    if (m_connection == nullptr) {
        return true;
    }
    return m_connection->TakesLocks() ? !m_connection->IsSnapshot() || !MayHaveMoved()
                                      : m_memory.Word().IsStill(m_readAt);
}

void RegistryStore::Close() noexcept {
    m_memory.Forget();
    CloseForFork();
}

void RegistryStore::CloseForFork() noexcept {
    delete std::exchange(m_connection, nullptr);
}

void RegistryStore::CloseForGood() noexcept {
    if (m_connection != nullptr && !m_connection->BelongsToOthers() && !MayHaveMoved()) {
        m_connection->WriteBack();
    }
    Close();
    m_memory.Release();
    ForgetLocation();
}

RegistryStore& StoreOf(StoreNumber number) noexcept {
    return s_stores[static_cast<std::size_t>(number)];
}

void CloseRegistryStores() noexcept {
    for (RegistryStore& store : s_stores) {
        store.CloseForGood();
    }
    ForgetStoreVfs();
    sqlite::Release();
    ReleaseGuardedPages();
}

void CloseRegistryStoresForFork() noexcept {
    const ErrnoKeeper keepErrno;
    for (RegistryStore& store : s_stores) {
        store.Enter();
        store.CloseForFork();
    }
    s_forkUnderWay = true;
}

void FreeRegistryStoresAfterFork() noexcept {
    s_forkUnderWay = false;
    for (RegistryStore& store : s_stores) {
        store.Leave();
    }
}

void ForgetInheritedRegistryUsers() noexcept {
    for (RegistryStore& store : s_stores) {
        store.Memory().Cache().ForgetUsers(MemoryUse::OfThisThread(store.Number()));
    }
}

}  // namespace platform
