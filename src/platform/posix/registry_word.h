// The word by which the processes that use a store know whether what they remember of it is
// current.
//
// It stands in a small file of its own beside the database, mapped by all of them. A number that is
// even means: every transaction that ever began to change the store has ended. An odd one means
// that one is under way, or that its process died in it. Only who holds the store's write lock
// (SQLite's, between processes) changes the word, and a number never comes again:
//
//   Begin  once the lock is held and before anything is changed: even n -> n+1; odd n (a writer
//          died) -> n+2. From here on nobody who looks takes what he remembers for current.
//   End    after the transaction's end, commit or rollback, before the lock goes: n -> n+1. If that
//          fails somebody else has begun, whom the lock should have kept out (its file was removed
//          in use); then his own end covers ours.
//
// A writer that dies between the two leaves the word odd, and everybody slow but right, until the
// next writer ends.
//
// A reader keeps what he reads only if the word was the same even number n before and after. Then
// no transaction had begun and not ended before, and none began until after, so what he read is the
// state at n; what he remembers under n is current for as long as the word is n. A write that was
// acknowledged has ended: whoever learns of it by any means that orders memory (a pipe, a lock, a
// signal) loads the word behind End and finds another number.
//
// Orders. Begin and End are locked instructions, sequentially consistent: what the writer changes
// in the store (by system calls, and by stores to the log's index behind SQLite's barriers) is seen
// by nobody who does not see Begin, and whoever sees End sees all of it. A reader's first look is
// an acquire, so nothing that he reads of the store comes from before it. Between his reading and
// his second look stands a fence, so that the look is not taken early: had he read anything newer,
// Begin was before that, and the look finds it. A look at something remembered is an acquire alone:
// the memory is the process's own, and handed over by the cache's own orders.
//
// The file. Made by a writer alone, under the write lock, so that there is one maker: written whole
// under another name and then renamed to its place. It names the database that it belongs to, by
// its inode and time of birth, and has the database's owner and mode, or it is none: nobody looks
// at it, and the next writer replaces it. A writer that cannot mark a word that others may believe
// in does not write. Before each transaction he looks that the file at its place is the one that he
// has mapped, under the lock; the one that he leaves becomes odd for ever. The first number of a
// file is random, so that no number of another file is taken for one of this.
//
// Whoever may write the file can cut it, and a look at a page that is gone would end the process:
// registry_word_guard.h. He then finds 0 or 1, which are no numbers.
#ifndef QX_PLATFORM_POSIX_REGISTRY_WORD_H
#define QX_PLATFORM_POSIX_REGISTRY_WORD_H

#include <sys/types.h>

#include <atomic>
#include <cstddef>

#include "platform/types.h"
#include "registry_files.h"
#include "registry_vfs.h"

namespace platform {

// A database by what no other one has, and who may use it.
struct DatabaseIdentity {
    u64 m_inode = 0;
    i64 m_born = 0;  // 0 where it cannot be told
    uid_t m_user = 0;
    gid_t m_group = 0;
    mode_t m_mode = 0;

    // False if there is none, or it cannot be told.
    bool Find(const char* path) noexcept;
    bool IsSameFile(const DatabaseIdentity& other) const noexcept {
        return m_inode == other.m_inode && m_born == other.m_born;
    }
};

// The operations but Now are called with the store's lock held.
class StoreWord final : public WriteMarks {
  public:
    constexpr StoreWord() noexcept = default;
    StoreWord(const StoreWord&) = delete;
    StoreWord& operator=(const StoreWord&) = delete;

    static constexpr bool IsAtRest(u64 number) noexcept {
        return number >= kFirstNumber && number % 2 == 0;
    }

    // No number if there is no word.
    u64 Now() const noexcept {
        const std::atomic<u64>* const word = m_word.load(std::memory_order_acquire);
        return word != nullptr ? word->load(std::memory_order_acquire) : 0;
    }
    bool IsStill(u64 number) const noexcept {
        std::atomic_thread_fence(std::memory_order_seq_cst);
        return Now() == number;
    }

    // Names the database. False if another one was named before, or the word's file is no longer
    // the one that is mapped: what is remembered is worth nothing then.
    bool Follow(const char* database, ino_t inode) noexcept;
    void Detach() noexcept;

    // A writer's marks. Begin: false if others may believe in a word that cannot be marked. Whoever
    // knows that the file at its place is still the one that he has mapped may say so.
    bool Begin() noexcept override { return Begin(false); }
    bool Begin(bool isAtItsPlace) noexcept;
    void End() noexcept override;

    // The number before the last Begin, and the one that its End gave; 0 if there is none.
    u64 Before() const noexcept { return m_before; }
    u64 After() const noexcept { return m_after; }

  private:
    static constexpr u64 kFirstNumber = 4;
    static constexpr u64 kOddForEver = ~u64{0};
    static constexpr std::size_t kMostPath = kMaxDatabasePath + sizeof "-word-new";

    enum class Attached { kYes, kNoWord, kNoAccess };

    bool HasDatabase() const noexcept { return m_identity.m_inode != 0; }
    void SetPlaces(const char* database) noexcept;
    bool IsAtItsPlace() const noexcept;
    Attached Attach(const DatabaseIdentity& database, int access) noexcept;
    bool Map(int file, bool writable) noexcept;
    bool Prepare() noexcept;
    bool Make(const DatabaseIdentity& database) noexcept;
    bool Renew() noexcept;
    bool Mark() noexcept;
    void Unmap() noexcept;
    void GiveUp() noexcept;
    void RetireFileInPlace() noexcept;

    std::atomic<std::atomic<u64>*> m_word{nullptr};
    std::byte* m_page = nullptr;  // stays for good: somebody may look at it at any time
    char m_database[kMostPath]{};
    char m_place[kMostPath]{};
    char m_newPlace[kMostPath]{};  // of a file that is not whole yet
    DatabaseIdentity m_identity;
    dev_t m_device = 0;
    ino_t m_inode = 0;  // of the mapped file; 0 if there is none
    bool m_writable = false;
    u64 m_mine = 0;
    u64 m_before = 0;
    u64 m_after = 0;
};

}  // namespace platform

#endif
