// The reader/writer lock: two mutexes and a gate.
//
// WHO WRITES WHAT. m_readers changes under m_arrayLock alone. m_pendingWriter is written by the
// holder of m_lock, before it takes m_arrayLock to look for readers, and read under m_arrayLock: a
// reader that leaves either does so before that look, or sees who is waiting for it. m_count is
// changed by arithmetic in the read paths, where only m_arrayLock is held, and written in the write
// paths, where m_lock is held and no reader is in. m_writerActive and m_savedCount are written by
// the writer, and read without a lock by a thread that releases a read hold: if there is a writer,
// that is the writer itself. So the two mutexes do all the ordering, and the order of every atomic
// is relaxed.
#ifndef QX_SYNC_RW_LOCK_H
#define QX_SYNC_RW_LOCK_H

#include <atomic>
#include <string>
#include <vector>

#include "sync/owned_gate.h"
#include "sync/owned_mutex.h"

// The threads that hold read locks, unordered.
class ReaderArray {
  public:
    struct Entry {
        u32 threadId;
        u32 holds;  // 1 or more
    };

    ReaderArray() { m_entries.reserve(8); }

    Entry* Find(u32 threadId);
    void Append(u32 threadId) { m_entries.push_back({threadId, 1}); }
    // The tail moves down.
    void Remove(Entry* entry);
    bool HoldsNobodyBut(u32 threadId) const {
        return m_entries.empty() || (m_entries.size() == 1 && m_entries[0].threadId == threadId);
    }

  private:
    std::vector<Entry> m_entries;
};

// Mutexes are taken and released by plain calls: a failure between the two leaves a mutex held.
// The order of the mutexes is m_lock before m_arrayLock.
class CQXRWLockImpl {
  public:
    CQXRWLockImpl(const char* name, u32 flags);
    CQXRWLockImpl(const CQXRWLockImpl&) = delete;
    CQXRWLockImpl& operator=(const CQXRWLockImpl&) = delete;

    void AcquireRead();
    void AcquireWrite();
    // The others are false if the lock is busy, or nothing is there to be released.
    bool TryAcquireRead();
    bool TryAcquireWrite();
    bool ReleaseRead();
    bool ReleaseWrite();

  private:
    bool EnterAgain(u32 threadId);
    void AddReader(u32 threadId);
    void LeaveArray(ReaderArray::Entry* entry);
    void EndWriting();
    bool WriterMayPass() const;
    bool TryPassReaders();
    void PassReaders();
    void BecomeWriter();

    // In the order of construction; the reverse is that of destruction.
    OwnedGate m_writerGate;            // closed while readers are in
    std::atomic<u32> m_count{0};       // read holds; or the depth of the write hold
    std::atomic<u32> m_savedCount{0};  // read holds that are parked behind a write hold
    ReaderArray m_readers;
    std::atomic<u32> m_pendingWriter{0};  // who holds m_lock and is not yet the writer
    std::atomic<bool> m_writerActive{false};
    const std::string m_name;
    const u32 m_flags;
    OwnedMutex m_lock;       // held once for each write hold; new readers pass it
    OwnedMutex m_arrayLock;  // guards m_readers
};

#endif
