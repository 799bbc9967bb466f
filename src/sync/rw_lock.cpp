#include "sync/rw_lock.h"

#include <algorithm>

#include "platform/threads.h"

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

std::string PartName(const char* name, const char* part) {
    return std::string(name) + "::CQXRWLockImpl::" + part;
}

bool TryTake(QXHandle mutex) {
    return QX_SUCCEEDED(QXMutexTryAcquire(mutex));
}

}  // namespace

ReaderArray::Entry* ReaderArray::Find(u32 threadId) {
    for (Entry& entry : m_entries) {
        if (entry.threadId == threadId) {
            return &entry;
        }
    }
    return nullptr;
}

void ReaderArray::Remove(Entry* entry) {
    m_entries.erase(m_entries.begin() + (entry - m_entries.data()));
}

CQXRWLockImpl::CQXRWLockImpl(const char* name, u32 flags)
    : m_writerGate(PartName(name, "m_writerGate").c_str()),
      m_name(name),
      m_flags(flags),
      m_lock(PartName(name, "m_lock").c_str(), 0),
      m_arrayLock(PartName(name, "m_arrayLock").c_str(), 0) {
    ThrowIfFailed(QXGateOpen(m_writerGate));
}

// A holder takes another hold, whoever waits for the lock. m_arrayLock is held.
bool CQXRWLockImpl::EnterAgain(u32 threadId) {
    ReaderArray::Entry* const entry = m_readers.Find(threadId);
    if (entry == nullptr) {
        return false;
    }
    if (m_writerActive.load(kRelaxed)) {
        m_savedCount.fetch_add(1, kRelaxed);
    } else {
        m_count.fetch_add(1, kRelaxed);
        entry->holds += 1;
    }
    return true;
}

// Both mutexes are held, so if there is a writer it is the caller.
void CQXRWLockImpl::AddReader(u32 threadId) {
    if (m_writerActive.load(kRelaxed)) {
        m_savedCount.fetch_add(1, kRelaxed);
        return;
    }
    if (m_count.fetch_add(1, kRelaxed) == 0) {
        ThrowIfFailed(QXGateClose(m_writerGate));
    }
    m_readers.Append(threadId);
}

void CQXRWLockImpl::AcquireRead() {
    const u32 self = platform::GetCurrentThreadId();
    QXMutexAcquire(m_arrayLock);
    const bool again = EnterAgain(self);
    QXMutexRelease(m_arrayLock);
    if (again) {
        return;
    }
    QXMutexAcquire(m_lock);
    QXMutexAcquire(m_arrayLock);
    AddReader(self);
    QXMutexRelease(m_arrayLock);
    QXMutexRelease(m_lock);
}

bool CQXRWLockImpl::TryAcquireRead() {
    const u32 self = platform::GetCurrentThreadId();
    if (!TryTake(m_arrayLock)) {
        return false;
    }
    const bool again = EnterAgain(self);
    QXMutexRelease(m_arrayLock);
    if (again) {
        return true;
    }
    if (!TryTake(m_lock)) {
        return false;
    }
    const bool entered = TryTake(m_arrayLock);
    if (entered) {
        AddReader(self);
        QXMutexRelease(m_arrayLock);
    }
    QXMutexRelease(m_lock);
    return entered;
}

// m_arrayLock is held.
bool CQXRWLockImpl::WriterMayPass() const {
    const u32 pending = m_pendingWriter.load(kRelaxed);
    return pending != 0 && m_readers.HoldsNobodyBut(pending);
}

void CQXRWLockImpl::PassReaders() {
    QXMutexAcquire(m_arrayLock);
    const bool free = WriterMayPass();
    QXMutexRelease(m_arrayLock);
    if (!free) {
        ThrowIfFailed(QXGateWait(m_writerGate));
    }
}

bool CQXRWLockImpl::TryPassReaders() {
    if (!TryTake(m_arrayLock)) {
        return false;
    }
    const bool free = WriterMayPass();
    QXMutexRelease(m_arrayLock);
    return free || QX_SUCCEEDED(QXGateTryWait(m_writerGate));
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
    m_count.fetch_add(1, kRelaxed);
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
    m_count.fetch_add(1, kRelaxed);
    return true;
}

bool CQXRWLockImpl::ReleaseRead() {
    if (m_writerActive.load(kRelaxed)) {
        if (static_cast<i32>(m_savedCount.load(kRelaxed)) < 1) {
            return false;
        }
        m_savedCount.fetch_sub(1, kRelaxed);
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
    if (m_count.fetch_sub(1, kRelaxed) == 1 || WriterMayPass()) {
        ThrowIfFailed(QXGateOpen(m_writerGate));
    }
}

bool CQXRWLockImpl::ReleaseWrite() {
    if (!m_writerActive.load(kRelaxed)) {
        return false;
    }
    const u32 depth = m_count.fetch_sub(1, kRelaxed);
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
    QXMutexAcquire(m_arrayLock);
    if (ReaderArray::Entry* const entry = m_readers.Find(platform::GetCurrentThreadId())) {
        entry->holds = parked;
        if (parked == 0) {
            m_readers.Remove(entry);
        }
    }
    QXMutexRelease(m_arrayLock);
    m_savedCount.store(0, kRelaxed);
    m_writerActive.store(false, kRelaxed);
    QXMutexRelease(m_lock);
}
