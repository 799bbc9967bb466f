#include "registry_word_guard.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

#include "platform/sync.h"
#include "platform/types.h"
#include "registry_location.h"

namespace platform {
namespace {

constinit CRITICAL_SECTION s_lock{};
constinit std::atomic<std::uintptr_t> s_pages[kStoreCount]{};
constinit std::atomic<std::size_t> s_pageSize{0};
constinit struct sigaction s_previous {};
constinit bool s_installed = false;

// One system call: allowed in a handler.
bool MapZeros(void* page, int how) noexcept {
    return ::mmap(page, GuardedPageSize(), PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | how, -1, 0) != MAP_FAILED;
}

bool IsGuarded(std::uintptr_t address) noexcept {
    const std::uintptr_t page = address & ~(s_pageSize.load(std::memory_order_relaxed) - 1);
    for (const auto& guarded : s_pages) {
        if (page != 0 && guarded.load(std::memory_order_relaxed) == page) {
            return true;
        }
    }
    return false;
}

// As if we were not there. A fault comes again when the handler returns, a signal that was sent is
// sent again.
void PassOn(int signal, siginfo_t* about, void* context) noexcept {
    const bool sent = about->si_code <= 0;
    if ((s_previous.sa_flags & SA_SIGINFO) != 0) {
        s_previous.sa_sigaction(signal, about, context);
    } else if (s_previous.sa_handler != SIG_DFL && s_previous.sa_handler != SIG_IGN) {
        s_previous.sa_handler(signal);
    } else if (!sent || s_previous.sa_handler == SIG_DFL) {
        ::signal(signal, SIG_DFL);
        if (sent) {
            ::raise(signal);
        }
    }
}

void OnBusError(int signal, siginfo_t* about, void* context) {
    const int error = errno;
    const auto address = reinterpret_cast<std::uintptr_t>(about->si_addr);
    if (about->si_code <= 0 || !IsGuarded(address) ||
        !MapZeros(reinterpret_cast<void*>(address & ~(GuardedPageSize() - 1)), MAP_FIXED)) {
        PassOn(signal, about, context);
    }
    errno = error;
}

bool InstallHandler() noexcept {
    if (s_installed) {
        return true;
    }
    struct sigaction ours {};
    ours.sa_sigaction = OnBusError;
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
    ::sigemptyset(&ours.sa_mask);
    // First the one that ours passes on to.
    s_installed =
        ::sigaction(SIGBUS, nullptr, &s_previous) == 0 && ::sigaction(SIGBUS, &ours, nullptr) == 0;
    return s_installed;
}

void GiveBackHandler() noexcept {
    struct sigaction now {};
    if (s_installed && ::sigaction(SIGBUS, nullptr, &now) == 0 &&
        (now.sa_flags & SA_SIGINFO) != 0 && now.sa_sigaction == OnBusError) {
        ::sigaction(SIGBUS, &s_previous, nullptr);
    }
    s_installed = false;
}

void* Remember(void* page) noexcept {
    for (auto& guarded : s_pages) {
        if (guarded.load(std::memory_order_relaxed) == 0) {
            guarded.store(reinterpret_cast<std::uintptr_t>(page), std::memory_order_relaxed);
            return page;
        }
    }
    ::munmap(page, GuardedPageSize());
    return nullptr;
}

}  // namespace

std::size_t GuardedPageSize() noexcept {
    return s_pageSize.load(std::memory_order_relaxed);
}

void* MakeGuardedPage() noexcept {
    EnterCriticalSection(&s_lock);
    s_pageSize.store(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)), std::memory_order_relaxed);
    void* page = MAP_FAILED;
    if (InstallHandler()) {
        page = ::mmap(nullptr, GuardedPageSize(), PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    void* const made = page != MAP_FAILED ? Remember(page) : nullptr;
    LeaveCriticalSection(&s_lock);
    return made;
}

bool ClearGuardedPage(void* page) noexcept {
    return MapZeros(page, MAP_FIXED);
}

void ReleaseGuardedPages() noexcept {
    GiveBackHandler();
    for (auto& guarded : s_pages) {
        if (const std::uintptr_t page = guarded.exchange(0)) {
            ::munmap(reinterpret_cast<void*>(page), GuardedPageSize());
        }
    }
}

}  // namespace platform
