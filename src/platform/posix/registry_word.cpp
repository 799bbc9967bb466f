#include "registry_word.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "descriptors.h"
#include "registry_sqlite.h"
#include "registry_word_guard.h"

namespace platform {
namespace {

constexpr char kMagic[16] = "QXCORE6 WORD 1\n";
constexpr off_t kFileSize = 4096;
constexpr mode_t kModeBits = 0777;

// The word has a cache line of its own.
struct WordFile {
    char m_magic[16];
    u64 m_inode;
    i64 m_born;
    char m_padding[32];
    u64 m_word;
    char m_rest[kFileSize - 72];
};
static_assert(offsetof(WordFile, m_word) == 64 && sizeof(WordFile) == kFileSize);
static_assert(std::atomic<u64>::is_always_lock_free && sizeof(std::atomic<u64>) == sizeof(u64));

// In nanoseconds; 0 where it cannot be told.
i64 TimeOfBirth(const char* path, ino_t inode) noexcept {
    struct statx about;
    const bool told =
        ::statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &about) == 0 &&
        (about.stx_mask & STATX_BTIME) != 0 && about.stx_ino == inode;
    return told ? 1'000'000'000 * i64{about.stx_btime.tv_sec} + about.stx_btime.tv_nsec : 0;
}

// Nobody but the database's users can write it, and whoever can read that one can read it.
bool IsMadeFor(const DatabaseIdentity& database, const struct stat& status) noexcept {
    return S_ISREG(status.st_mode) && status.st_size == kFileSize &&
           status.st_uid == database.m_user && status.st_gid == database.m_group &&
           (status.st_mode & kModeBits) == database.m_mode;
}

// Not every process may be able to tell the time of birth.
bool NamesIt(const DatabaseIdentity& database, const WordFile& content) noexcept {
    return std::memcmp(content.m_magic, kMagic, sizeof kMagic) == 0 &&
           content.m_inode == database.m_inode &&
           (content.m_born == database.m_born || content.m_born == 0 || database.m_born == 0);
}

bool Read(int file, WordFile& content) noexcept {
    return ::pread(file, &content, sizeof content, 0) == sizeof content;
}

// All of it is there: a touch of the mapping needs no room on the disk.
bool WriteWhole(int file, const WordFile& content) noexcept {
    return ::posix_fallocate(file, 0, kFileSize) == 0 &&
           ::pwrite(file, &content, sizeof content, 0) == sizeof content;
}

bool GiveTo(const DatabaseIdentity& database, int file) noexcept {
    struct stat status;
    if (::fstat(file, &status) != 0) {
        return false;
    }
    const bool foreign = status.st_uid != database.m_user || status.st_gid != database.m_group;
    return (!foreign || ::fchown(file, database.m_user, database.m_group) == 0) &&
           ::fchmod(file, database.m_mode) == 0 && ::fstat(file, &status) == 0 &&
           IsMadeFor(database, status);
}

}  // namespace

bool DatabaseIdentity::Find(const char* path) noexcept {
    struct stat status;
    if (::lstat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    *this = {.m_inode = status.st_ino,
             .m_born = TimeOfBirth(path, status.st_ino),
             .m_user = status.st_uid,
             .m_group = status.st_gid,
             .m_mode = status.st_mode & kModeBits};
    return true;
}

bool StoreWord::IsAtItsPlace() const noexcept {
    struct stat status;
    return m_inode != 0 && ::lstat(m_place, &status) == 0 && status.st_dev == m_device &&
           status.st_ino == m_inode && IsMadeFor(m_identity, status);
}

void StoreWord::SetPlaces(const char* database) noexcept {
    std::snprintf(m_database, sizeof m_database, "%s", database);
    std::snprintf(m_place, sizeof m_place, "%s-word", database);
    std::snprintf(m_newPlace, sizeof m_newPlace, "%s-word-new", database);
}

bool StoreWord::Follow(const char* database, ino_t inode) noexcept {
    DatabaseIdentity now;
    if (!now.Find(database) || now.m_inode != inode) {
        Detach();
        return false;
    }
    const bool same = m_identity.IsSameFile(now) && std::strcmp(m_database, database) == 0;
    m_identity = now;
    if (same && IsAtItsPlace() && Now() >= kFirstNumber) {
        return true;
    }
    Unmap();
    SetPlaces(database);
    if (Attach(now, O_RDWR) == Attached::kNoAccess) {
        Attach(now, O_RDONLY);
    }
    return false;
}

void StoreWord::Detach() noexcept {
    Unmap();
    m_identity = {};
}

// A mapping that stays for want of memory is one that nobody looks at.
void StoreWord::Unmap() noexcept {
    m_word.store(nullptr);
    if (m_inode != 0) {
        ClearGuardedPage(m_page);
    }
    m_inode = 0;
    m_writable = false;
}

StoreWord::Attached StoreWord::Attach(const DatabaseIdentity& database, int access) noexcept {
    struct stat status;
    if (::lstat(m_place, &status) == 0 && !IsMadeFor(database, status)) {
        return Attached::kNoWord;
    }
    const OwnedDescriptor file =
        OpenDescriptor(m_place, access | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!file) {
        return errno == ENOENT || errno == ELOOP ? Attached::kNoWord : Attached::kNoAccess;
    }
    WordFile content;
    if (::fstat(file.Get(), &status) != 0 || !Read(file.Get(), content)) {
        return Attached::kNoAccess;
    }
    if (!IsMadeFor(database, status) || !NamesIt(database, content) ||
        content.m_word < kFirstNumber || content.m_word == kOddForEver) {
        return Attached::kNoWord;
    }
    return Map(file.Get(), access == O_RDWR) ? Attached::kYes : Attached::kNoAccess;
}

bool StoreWord::Map(int file, bool writable) noexcept {
    if (m_page == nullptr) {
        m_page = static_cast<std::byte*>(MakeGuardedPage());
    }
    struct stat status;
    if (m_page == nullptr || ::fstat(file, &status) != 0 ||
        ::mmap(m_page, kFileSize, writable ? PROT_READ | PROT_WRITE : PROT_READ,
               MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED) {
        return false;
    }
    m_word.store(reinterpret_cast<std::atomic<u64>*>(m_page + offsetof(WordFile, m_word)),
                 std::memory_order_release);
    m_device = status.st_dev;
    m_inode = status.st_ino;
    m_writable = writable;
    return true;
}

// Nobody who still has the file that we leave finds it at rest again.
void StoreWord::GiveUp() noexcept {
    if (m_writable) {
        m_word.load()->store(kOddForEver);
    }
    Unmap();
}

// The same for a file that is about to be replaced, which others may have found good before it was
// given to somebody else.
void StoreWord::RetireFileInPlace() noexcept {
    const OwnedDescriptor file =
        OpenDescriptor(m_place, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    WordFile content;
    if (file && Read(file.Get(), content) && NamesIt(m_identity, content)) {
        [[maybe_unused]] const ssize_t written =
            ::pwrite(file.Get(), &kOddForEver, sizeof kOddForEver, offsetof(WordFile, m_word));
    }
}

bool StoreWord::Make(const DatabaseIdentity& database) noexcept {
    ::unlink(m_newPlace);
    const OwnedDescriptor file =
        OpenDescriptor(m_newPlace, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file) {
        return false;
    }
    WordFile content{};
    std::memcpy(content.m_magic, kMagic, sizeof kMagic);
    content.m_inode = database.m_inode;
    content.m_born = database.m_born;
    sqlite::randomness(sizeof content.m_word, &content.m_word);
    content.m_word = content.m_word >> 2 | kFirstNumber | 1;
    if (WriteWhole(file.Get(), content) && GiveTo(database, file.Get()) && Map(file.Get(), true) &&
        ::rename(m_newPlace, m_place) == 0) {
        m_mine = content.m_word;
        return true;
    }
    ::unlink(m_newPlace);
    GiveUp();
    return false;
}

// The database must still be ours: a new one's word is not to be replaced.
bool StoreWord::Renew() noexcept {
    DatabaseIdentity now;
    GiveUp();
    if (!now.Find(m_database) || !now.IsSameFile(m_identity)) {
        return false;
    }
    m_identity = now;
    const Attached attached = Attach(now, O_RDWR);
    if (attached == Attached::kNoWord) {
        RetireFileInPlace();
        Make(now);  // if that fails, nobody believes in what is there
    }
    return attached != Attached::kNoAccess;
}

bool StoreWord::Begin(bool isAtItsPlace) noexcept {
    m_mine = m_before = m_after = 0;
    if (!HasDatabase()) {
        return false;
    }
    if (!(m_writable && (isAtItsPlace || IsAtItsPlace())) && !Renew()) {
        return false;
    }
    return m_mine != 0 || !m_writable || Mark() || (Renew() && (m_mine != 0 || !m_writable));
}

// False if what is mapped has no number (any more).
bool StoreWord::Mark() noexcept {
    std::atomic<u64>& word = *m_word.load(std::memory_order_relaxed);
    u64 now = word.load();
    for (;;) {
        if (now < kFirstNumber || now == kOddForEver) {
            return false;
        }
        const u64 mine = now + 1 + now % 2;
        if (word.compare_exchange_strong(now, mine)) {
            m_before = now;
            m_mine = mine;
            return true;
        }
    }
}

void StoreWord::End() noexcept {
    u64 mine = std::exchange(m_mine, 0);
    if (mine != 0 &&
        m_word.load(std::memory_order_relaxed)->compare_exchange_strong(mine, mine + 1)) {
        m_after = mine + 1;
    }
}

}  // namespace platform
