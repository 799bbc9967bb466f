// A forked copy of the test that runs one function.
#ifndef TESTS_POSIX_SUPPORT_FORKED_CHILD_H
#define TESTS_POSIX_SUPPORT_FORKED_CHILD_H

#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

enum class ChildEnd {
    kAtOnce,               // nothing runs behind the function
    kThroughExitHandlers,  // as a program ends: libraries are detached
};

class ForkedChild {
  public:
    // `body` returns the exit code. What it expects by the test framework's means is lost.
    template <typename Body>
    explicit ForkedChild(Body body, ChildEnd end = ChildEnd::kAtOnce) : m_id(::fork()) {
        if (m_id == 0) {
            const int code = body();
            if (end == ChildEnd::kThroughExitHandlers) {
                std::exit(code);
            }
            std::_Exit(code);
        }
    }
    ~ForkedChild() {
        if (m_id > 0) {
            Kill();
        }
    }
    ForkedChild(ForkedChild&& other) noexcept : m_id(other.m_id) { other.m_id = -1; }
    ForkedChild& operator=(ForkedChild&&) = delete;

    // The exit code, or -1 for a child that did not come to its end.
    int Wait() {
        int status = 0;
        const bool ended = m_id > 0 && ::waitpid(m_id, &status, 0) == m_id && WIFEXITED(status);
        m_id = -1;
        return ended ? WEXITSTATUS(status) : -1;
    }

    void Kill() {
        ::kill(m_id, SIGKILL);
        Wait();
    }

  private:
    pid_t m_id;
};

// For a child of root's: mounts that nobody else sees.
inline bool MountForThisProcess(const char* place, const char* options) {
    return ::unshare(CLONE_NEWNS) == 0 &&
           ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", place, "tmpfs", 0, options) == 0;
}

// An object that this process and the children that it forks share.
template <typename Object>
class SharedWithChildren {
  public:
    SharedWithChildren()
        : m_object(::new (::mmap(nullptr, sizeof(Object), PROT_READ | PROT_WRITE,
                                 MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Object()) {}
    ~SharedWithChildren() { ::munmap(m_object, sizeof(Object)); }
    SharedWithChildren(const SharedWithChildren&) = delete;
    SharedWithChildren& operator=(const SharedWithChildren&) = delete;

    Object& operator*() const { return *m_object; }
    Object* operator->() const { return m_object; }

  private:
    Object* m_object;
};

#endif
