#include "interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes it");

void NoteInterrupt(int signal) {
    interrupted = true;
    std::signal(signal, SIG_DFL);
}

}  // namespace

void WatchForInterrupt() {
    std::signal(SIGINT, NoteInterrupt);
}

bool IsInterrupted() {
    return interrupted;
}

void EndInterrupted() {
    std::signal(SIGINT, SIG_DFL);
    std::raise(SIGINT);
    std::exit(1);
}
