// The reader/writer lock: two mutexes and a gate.
//
// WHO WRITES WHAT. m_readers and, in the read paths, m_count belong to the holder of m_arrayLock.
// While m_noReaders is set, nobody is in for reading and the last who was is through with all of
// this: then they belong to the holder of m_lock, who needs no m_arrayLock. A reader sets
// m_noReaders last of all (release); whoever holds m_lock and finds it set (acquire) sees all that
// was done before. A thread that finds it set knows that it reads not itself, without any lock,
// since its own entry is made and removed by itself. A search under m_arrayLock may meet the first
// entry as it is made under m_lock: the size is stored behind the entry (release).
//
// The gate is m_gateOpen, which belongs to whom m_readers belongs. m_writerGate is only what a
// writer waits at: he closes it under m_arrayLock when he has found the gate closed, and whoever
// opens the gate while a writer is pending opens it too.
//
// m_pendingWriter is written by the holder of m_lock, before it takes m_arrayLock to look for
// readers, and read under m_arrayLock: a reader that leaves either does so before that look, or
// sees who waits for it. In the write paths m_count, m_savedCount and m_writerActive belong to the
// writer; the last two are read without a lock by a thread that releases a read hold, and if there
// is a writer, that is the writer itself. All else is ordered by the mutexes, so these are relaxed,
// and since nobody writes one of them at the same time as somebody else, adding is a load and a
// store.
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

    ReaderArray() : m_entries(8) {}

    u32 Size() const { return m_size.load(std::memory_order_acquire); }
    bool HoldsNobodyBut(u32 threadId) const {
        return Size() == 0 || (Size() == 1 && m_entries[0].threadId == threadId);
    }
    Entry* Find(u32 threadId);
    void Append(u32 threadId);
    // The tail moves down.
    void Remove(Entry* entry);

  private:
    std::vector<Entry> m_entries;  // with room behind the last
    std::atomic<u32> m_size{0};
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
    template <bool (*take)(QXHandle)>
    bool AcquireReadBy();
    template <bool (*take)(QXHandle)>
    bool Enter(u32 threadId);
    bool EnterAgain(u32 threadId);
    void AddReader(u32 threadId);
    void LeaveArray(ReaderArray::Entry* entry);
    void EndWriting();
    void GiveBack(u32 parked);
    bool WriterMayPass() const;
    void OpenGate();
    bool TryPassReaders();
    void PassReaders();
    void BecomeWriter();

    // In the order of construction; the reverse is that of destruction.
    OwnedGate m_writerGate;            // where a writer waits for readers to leave
    bool m_gateOpen = true;            // closed while readers are in
    std::atomic<u32> m_count{0};       // read holds; or the depth of the write hold
    std::atomic<u32> m_savedCount{0};  // read holds that are parked behind a write hold
    ReaderArray m_readers;
    std::atomic<u32> m_pendingWriter{0};  // who holds m_lock and is not yet the writer
    std::atomic<bool> m_writerActive{false};
    std::atomic<bool> m_noReaders{true};
    const std::string m_name;
    [[maybe_unused]] const u32 m_flags;
    OwnedMutex m_lock;       // held once for each write hold; new readers pass it
    OwnedMutex m_arrayLock;  // guards m_readers
};

#endif
