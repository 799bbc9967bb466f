#include "sync/rw_lock.h"

#include <algorithm>

#include "platform/threads.h"

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

std::string PartName(const char* name, const char* part) {
    return std::string(name) + "::CQXRWLockImpl::" + part;
}

bool Take(QXHandle mutex) {
    QXMutexAcquire(mutex);
    return true;
}

bool TryTake(QXHandle mutex) {
    return QX_SUCCEEDED(QXMutexTryAcquire(mutex));
}

// Returns the value before.
u32 Add(std::atomic<u32>& count, i32 change) {
    const u32 before = count.load(kRelaxed);
    count.store(before + static_cast<u32>(change), kRelaxed);
    return before;
}

}  // namespace

ReaderArray::Entry* ReaderArray::Find(u32 threadId) {
    const u32 size = Size();
    for (u32 index = 0; index < size; ++index) {
        if (m_entries[index].threadId == threadId) {
            return &m_entries[index];
        }
    }
    return nullptr;
}

void ReaderArray::Append(u32 threadId) {
    const u32 size = Size();
    if (size == m_entries.size()) {
        m_entries.resize(2 * m_entries.size());
    }
    m_entries[size] = {threadId, 1};
    m_size.store(size + 1, std::memory_order_release);
}

void ReaderArray::Remove(Entry* entry) {
    Entry* const end = m_entries.data() + Size();
    std::move(entry + 1, end, entry);
    m_size.store(Size() - 1, std::memory_order_release);
}

CQXRWLockImpl::CQXRWLockImpl(const char* name, u32 flags)
    : m_writerGate(PartName(name, "m_writerGate").c_str()),
      m_name(name),
      m_flags(flags),
      m_lock(PartName(name, "m_lock").c_str(), 0),
      m_arrayLock(PartName(name, "m_arrayLock").c_str(), 0) {}

// A holder takes another hold, whoever waits for the lock. m_arrayLock is held.
bool CQXRWLockImpl::EnterAgain(u32 threadId) {
    ReaderArray::Entry* const entry = m_readers.Find(threadId);
    if (entry == nullptr) {
        return false;
    }
    if (m_writerActive.load(kRelaxed)) {
        Add(m_savedCount, 1);
    } else {
        Add(m_count, 1);
        entry->holds += 1;
    }
    return true;
}

// m_lock is held, so if there is a writer it is the caller; and m_arrayLock, unless there are no
// readers.
void CQXRWLockImpl::AddReader(u32 threadId) {
    if (m_writerActive.load(kRelaxed)) {
        Add(m_savedCount, 1);
        return;
    }
    if (Add(m_count, 1) == 0) {
        m_gateOpen = false;
    }
    m_readers.Append(threadId);
    m_noReaders.store(false, kRelaxed);
}

// Behind m_lock.
template <bool (*take)(QXHandle)>
bool CQXRWLockImpl::Enter(u32 threadId) {
    if (m_noReaders.load(std::memory_order_acquire)) {
        AddReader(threadId);
        return true;
    }
    if (!take(m_arrayLock)) {
        return false;
    }
    AddReader(threadId);
    QXMutexRelease(m_arrayLock);
    return true;
}

template <bool (*take)(QXHandle)>
bool CQXRWLockImpl::AcquireReadBy() {
    const u32 self = platform::GetCurrentThreadId();
    if (!m_noReaders.load(kRelaxed)) {
        if (!take(m_arrayLock)) {
            return false;
        }
        const bool again = EnterAgain(self);
        QXMutexRelease(m_arrayLock);
        if (again) {
            return true;
        }
    }
    if (!take(m_lock)) {
        return false;
    }
    const bool entered = Enter<take>(self);
    QXMutexRelease(m_lock);
    return entered;
}

void CQXRWLockImpl::AcquireRead() {
    AcquireReadBy<Take>();
}

bool CQXRWLockImpl::TryAcquireRead() {
    return AcquireReadBy<TryTake>();
}

// m_arrayLock is held.
bool CQXRWLockImpl::WriterMayPass() const {
    const u32 pending = m_pendingWriter.load(kRelaxed);
    return m_gateOpen || (pending != 0 && m_readers.HoldsNobodyBut(pending));
}

// m_arrayLock is held.
void CQXRWLockImpl::OpenGate() {
    m_gateOpen = true;
    if (m_pendingWriter.load(kRelaxed) != 0) {
        ThrowIfFailed(QXGateOpen(m_writerGate));
    }
}

void CQXRWLockImpl::PassReaders() {
    if (m_noReaders.load(std::memory_order_acquire)) {
        return;
    }
    QXMutexAcquire(m_arrayLock);
    const bool free = WriterMayPass();
    const QXResult closed = free ? QX_S_OK : QXGateClose(m_writerGate);
    QXMutexRelease(m_arrayLock);
    if (!free) {
        ThrowIfFailed(closed);
        ThrowIfFailed(QXGateWait(m_writerGate));
    }
}

bool CQXRWLockImpl::TryPassReaders() {
    if (m_noReaders.load(std::memory_order_acquire)) {
        return true;
    }
    if (!TryTake(m_arrayLock)) {
        return false;
    }
    const bool free = WriterMayPass();
    QXMutexRelease(m_arrayLock);
    return free;
}

void CQXRWLockImpl::BecomeWriter() {
    m_savedCount.store(m_count.load(kRelaxed), kRelaxed);
    m_count.store(0, kRelaxed);
    m_pendingWriter.store(0, kRelaxed);
    m_writerActive.store(true, kRelaxed);
}

void CQXRWLockImpl::AcquireWrite() {
    QXMutexAcquire(m_lock);
    if (!m_writerActive.load(kRelaxed)) {
        m_pendingWriter.store(platform::GetCurrentThreadId(), kRelaxed);
        PassReaders();
        BecomeWriter();
    }
    Add(m_count, 1);
}

bool CQXRWLockImpl::TryAcquireWrite() {
    if (!TryTake(m_lock)) {
        return false;
    }
    if (!m_writerActive.load(kRelaxed)) {
        m_pendingWriter.store(platform::GetCurrentThreadId(), kRelaxed);
        if (!TryPassReaders()) {
            // Before the next writer can set its own.
            m_pendingWriter.store(0, kRelaxed);
            QXMutexRelease(m_lock);
            return false;
        }
        BecomeWriter();
    }
    Add(m_count, 1);
    return true;
}

bool CQXRWLockImpl::ReleaseRead() {
    if (m_writerActive.load(kRelaxed)) {
        if (static_cast<i32>(m_savedCount.load(kRelaxed)) < 1) {
            return false;
        }
        Add(m_savedCount, -1);
        return true;
    }
    QXMutexAcquire(m_arrayLock);
    ReaderArray::Entry* const entry = m_readers.Find(platform::GetCurrentThreadId());
    if (entry != nullptr) {
        LeaveArray(entry);
    }
    QXMutexRelease(m_arrayLock);
    return entry != nullptr;
}

// Gives up one hold. The gate opens behind the last reader, and behind the last but the one that
// waits to write.
void CQXRWLockImpl::LeaveArray(ReaderArray::Entry* entry) {
    if (--entry->holds == 0) {
        m_readers.Remove(entry);
    }
    if (Add(m_count, -1) == 1 || WriterMayPass()) {
        OpenGate();
    }
    m_noReaders.store(m_readers.Size() == 0, std::memory_order_release);
}

bool CQXRWLockImpl::ReleaseWrite() {
    if (!m_writerActive.load(kRelaxed)) {
        return false;
    }
    const u32 depth = Add(m_count, -1);
    if (depth != 1) {
        const bool held = static_cast<i32>(depth - 1) >= 0;
        if (held) {
            QXMutexRelease(m_lock);
        }
        return held;
    }
    EndWriting();
    return true;
}

// The parked holds are the caller's again. A caller without an entry, who took all of them while it
// wrote, leaves them in m_count, where nobody can release them.
void CQXRWLockImpl::EndWriting() {
    const u32 parked = m_savedCount.load(kRelaxed);
    m_count.store(parked, kRelaxed);
    if (!m_noReaders.load(kRelaxed)) {
        QXMutexAcquire(m_arrayLock);
        GiveBack(parked);
        QXMutexRelease(m_arrayLock);
    }
    m_savedCount.store(0, kRelaxed);
    m_writerActive.store(false, kRelaxed);
    QXMutexRelease(m_lock);
}

void CQXRWLockImpl::GiveBack(u32 parked) {
    ReaderArray::Entry* const entry = m_readers.Find(platform::GetCurrentThreadId());
    if (entry == nullptr) {
        return;
    }
    entry->holds = parked;
    if (parked == 0) {
        m_readers.Remove(entry);
        m_noReaders.store(m_readers.Size() == 0, std::memory_order_release);
    }
}
