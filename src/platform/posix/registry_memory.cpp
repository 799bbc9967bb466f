#include "registry_memory.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "cancellation.h"

namespace platform {
namespace {

[[gnu::tls_model("initial-exec")]] constinit thread_local u32 t_uses[kStoreCount]{};

bool HasNoRightTo(u32 capability) noexcept {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3]{};
    return ::syscall(SYS_capget, &header, data) == 0 &&
           (data[capability / 32].permitted & (1u << capability % 32)) == 0;
}

// Then no thread of the process ever acts for another user than now.
bool KeepsItsIds() noexcept {
    uid_t user;
    uid_t effective;
    uid_t saved;
    gid_t group;
    gid_t effectiveGroup;
    gid_t savedGroup;
    return ::getresuid(&user, &effective, &saved) == 0 && user != 0 && user == effective &&
           user == saved && ::getresgid(&group, &effectiveGroup, &savedGroup) == 0 &&
           group == effectiveGroup && group == savedGroup && HasNoRightTo(CAP_SETUID) &&
           HasNoRightTo(CAP_SETGID);
}

}  // namespace

// By the processor's own clock, without a system call.
time_t StoreMemory::Second() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return now.tv_sec;
}

bool StoreMemory::RightsHold() const noexcept {
    return RightsDoNotMatter() || (m_user.load(std::memory_order_relaxed) == ::geteuid() &&
                                   m_group.load(std::memory_order_relaxed) == ::getegid());
}

bool StoreMemory::IsCurrent() const noexcept {
    const u64 number = m_number.load(std::memory_order_acquire);
    return number != 0 && number == m_word.Now() && !IsTimeToLook();
}

void StoreMemory::LearnRights(const StoreConnection& connection) noexcept {
    m_user.store(connection.Owner().m_user, std::memory_order_relaxed);
    m_group.store(connection.Owner().m_group, std::memory_order_relaxed);
    m_rightsDoNotMatter.store(KeepsItsIds(), std::memory_order_relaxed);
}

void StoreMemory::FollowFiles(const StorePaths& paths, const FileState& database) noexcept {
    if (!m_word.Follow(paths.m_database.c_str(), database.m_inode)) {
        Forget();
    }
}

void StoreMemory::Look(const StoreConnection& connection) noexcept {
    NoteLook();
    FollowFiles(connection.Paths(), connection.File());
    if (m_number.load(std::memory_order_relaxed) == m_word.Now() && connection.Index() != m_index) {
        Forget();
    }
    LearnRights(connection);
}

void StoreMemory::Detach() noexcept {
    Forget();
    m_word.Detach();
}

void StoreMemory::Release() noexcept {
    Detach();
    m_cache.Release();
}

u64 StoreMemory::BeginReading(const StoreConnection& connection) noexcept {
    const u64 number = m_word.Now();
    if (!StoreWord::IsAtRest(number) || !connection.HasIndex()) {
        return 0;
    }
    const bool goesOn = number == m_number.load(std::memory_order_relaxed) && !m_cache.IsOutlived();
    return goesOn || StartAnew(number, connection.Index()) ? number : 0;
}

bool StoreMemory::StartAnew(u64 number, const IndexState& index) noexcept {
    Forget();
    if (!m_cache.Empty()) {
        return false;
    }
    m_index = index;
    m_number.store(number, std::memory_order_release);
    return true;
}

StoreMemory::OwnWrite::OwnWrite(StoreMemory& memory, const StoreConnection& connection) noexcept
    : m_memory(memory),
      m_connection(connection),
      m_number(memory.m_number.load(std::memory_order_relaxed)) {}

// Each transaction counts the index on by one: nobody wrote without the word either.
bool StoreMemory::OwnWrite::CanFollow() noexcept {
    m_after = m_connection.Index();
    const StoreWord& word = m_memory.m_word;
    return m_number != 0 && word.Before() == m_number && word.After() != 0 &&
           m_after.Changes() == m_memory.m_index.Changes() + 1;
}

void StoreMemory::OwnWrite::Follow() noexcept {
    m_memory.m_index = m_after;
    m_memory.m_number.store(m_memory.m_word.After(), std::memory_order_release);
}

MemoryUse::MemoryUse(StoreMemory& memory, StoreNumber number) noexcept
    : m_memory(memory), m_store(number) {
    ++t_uses[static_cast<std::size_t>(number)];
    m_used = memory.Cache().BeginUse();
    m_current = m_used && memory.IsCurrent();
}

MemoryUse::~MemoryUse() {
    if (m_used) {
        m_memory.Cache().EndUse();
    }
    --t_uses[static_cast<std::size_t>(m_store)];
}

u32 MemoryUse::OfThisThread(StoreNumber number) noexcept {
    return t_uses[static_cast<std::size_t>(number)];
}

}  // namespace platform
