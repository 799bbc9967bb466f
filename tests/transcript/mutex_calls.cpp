#include <qxcore/mutex.h>

#include "transcript/call_lists.h"

namespace {

struct Mutex {
    QXHandle handle = nullptr;
    int depth = 0;
};

// Mutexes of one thread, each used as its rules allow.
class Mutexes {
  public:
    Mutexes() = default;
    ~Mutexes() {
        for (Mutex& mutex : m_mutexes) {
            Empty(&mutex);
        }
    }
    Mutexes(const Mutexes&) = delete;
    Mutexes& operator=(const Mutexes&) = delete;

    void Create(Random& random, Line& line) {
        constexpr uint32_t kFlags[] = {0,
                                       0,
                                       QX_MUTEX_SPIN,
                                       QX_MUTEX_NOSTATS,
                                       QX_MUTEX_NOSTATS | QX_MUTEX_STATS,
                                       QX_MUTEX_NONRECURSIVE,
                                       0x0F00000F};
        constexpr const char* kNames[] = {nullptr, "", "transcript"};
        Mutex* const mutex = Any(random, line);
        Empty(mutex);
        const uint32_t flags = random.Of(kFlags);
        line.Hex("flags", flags).Result(QXMutexCreate(random.Of(kNames), flags, &mutex->handle));
        line.Handle("handle", mutex->handle);
    }

    void Acquire(Random& random, Line& line) { Take(random, line, QXMutexAcquire); }
    void TryAcquire(Random& random, Line& line) { Take(random, line, QXMutexTryAcquire); }

    void Release(Random& random, Line& line) {
        Mutex* const mutex = Any(random, line);
        if (mutex->depth > 0) {
            line.Result(QXMutexRelease(mutex->handle));
            --mutex->depth;
        }
    }

    void AssertOwnership(Random& random, Line& line) {
        const Mutex* const mutex = Any(random, line);
        if (mutex->handle != nullptr) {
            const auto wanted = static_cast<int16_t>(random.Below(3));
            line.Add("wanted", wanted);
            line.Add("->", QXMutexAssertOwnership(mutex->handle, wanted));
        }
    }

    void GetOSMutex(Random& random, Line& line) {
        const Mutex* const mutex = Any(random, line);
        if (mutex->handle != nullptr) {
            line.Handle("->", QXMutexGetOSMutex(mutex->handle));
        }
    }

    void Destroy(Random& random, Line& line) {
        Mutex* const mutex = Any(random, line);
        if (mutex->handle != nullptr) {
            line.Result(Empty(mutex));
        }
    }

  private:
    Mutex* Any(Random& random, Line& line) {
        const uint32_t index = random.Below(std::size(m_mutexes));
        line.Add("mutex", index).Add("depth", m_mutexes[index].depth);
        return &m_mutexes[index];
    }

    void Take(Random& random, Line& line, QXResult (*take)(QXHandle)) {
        Mutex* const mutex = Any(random, line);
        if (mutex->handle != nullptr) {
            line.Result(take(mutex->handle));
            ++mutex->depth;
        }
    }

    static QXResult Empty(Mutex* mutex) {
        for (; mutex->depth > 0; --mutex->depth) {
            QXMutexRelease(mutex->handle);
        }
        const QXResult result = mutex->handle != nullptr ? QXMutexDestroy(mutex->handle) : QX_S_OK;
        mutex->handle = nullptr;
        return result;
    }

    Mutex m_mutexes[2];
};

}  // namespace

std::vector<Call> MutexCalls() {
    const auto mutexes = std::make_shared<Mutexes>();
    return {
        {"QXMutexCreate", Member(mutexes, &Mutexes::Create)},
        {"QXMutexAcquire", Member(mutexes, &Mutexes::Acquire), 2},
        {"QXMutexTryAcquire", Member(mutexes, &Mutexes::TryAcquire)},
        {"QXMutexRelease", Member(mutexes, &Mutexes::Release)},
        {"QXMutexAssertOwnership", Member(mutexes, &Mutexes::AssertOwnership)},
        {"QXMutexGetOSMutex", Member(mutexes, &Mutexes::GetOSMutex)},
        {"QXMutexDestroy", Member(mutexes, &Mutexes::Destroy)},
    };
}
