// What mutexes allow and refuse, above all those that verify their use.
#include <gtest/gtest.h>
#include <qxcore/mutex.h>

#include <map>
#include <thread>

namespace {

constexpr uint32_t kSingle = QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE;

class Mutex {
  public:
    explicit Mutex(uint32_t flags = 0) {
        EXPECT_EQ(QX_S_OK, QXMutexCreate("test", flags, &m_handle)) << flags;
    }
    ~Mutex() { EXPECT_EQ(0, QXMutexDestroy(m_handle)); }
    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle = nullptr;
};

QXResult Elsewhere(QXResult (*operation)(QXHandle), QXHandle mutex) {
    QXResult result = QX_E_NOTIMPL;
    std::thread([&] { result = operation(mutex); }).join();
    return result;
}

QXResult TryAndRelease(QXHandle mutex) {
    const QXResult result = QXMutexTryAcquire(mutex);
    return QX_SUCCEEDED(result) ? QXMutexRelease(mutex) : result;
}

// Small letters are steps of another thread.
QXResult Do(char step, QXHandle mutex) {
    static const std::map<char, QXResult (*)(QXHandle)> kSteps = {
        {'A', QXMutexAcquire},
        {'T', QXMutexTryAcquire},
        {'R', QXMutexRelease},
        {'t', [](QXHandle handle) { return Elsewhere(TryAndRelease, handle); }},
        {'r', [](QXHandle handle) { return Elsewhere(QXMutexRelease, handle); }}};
    return kSteps.at(step)(mutex);
}

// With `!` behind it a step fails.
TEST(CheckedMutex, RefusesWhatItsFlagsForbid) {
    struct Row {
        uint32_t flags;
        const char* steps;
    };
    for (const Row& row : {Row{0, "RtArt"},  // a stranger's release is not even reported
                           {QX_MUTEX_STATS, "Art"},
                           {QX_MUTEX_NONRECURSIVE | QX_MUTEX_STATS, "AARR"},
                           {QX_MUTEX_CHECKED, "R!tAr!t!RtR!"},
                           {QX_MUTEX_CHECKED | QX_MUTEX_STATS, "ATARRt!RtR!"},
                           {kSingle, "AA!T!RtTA!R"}}) {
        const Mutex mutex(row.flags);
        for (const char* step = row.steps; *step != '\0'; ++step) {
            const bool fails = step[1] == '!';
            EXPECT_EQ(fails ? QX_E_FAIL : QX_S_OK, Do(*step, mutex))
                << row.steps << " from " << step;
            step += fails ? 1 : 0;
        }
    }
}

// As the width of the depth that is kept for the checks has it.
TEST(CheckedMutex, DepthStartsOverAfterSixteenBits) {
    const Mutex mutex(QX_MUTEX_CHECKED);
    for (int depth = 0; depth < 0x10000; ++depth) {
        ASSERT_EQ(QX_S_OK, Do('A', mutex));
    }
    EXPECT_EQ(QX_E_FAIL, Do('R', mutex));
    EXPECT_EQ(QX_S_OK, Do('A', mutex));
    EXPECT_EQ(QX_S_OK, Do('R', mutex));
    EXPECT_EQ(QX_E_FAIL, Do('R', mutex));
}

TEST(CheckedMutex, AssertionHandsBackWhatTheHolderWanted) {
    const Mutex mutex(QX_MUTEX_CHECKED);
    for (const int16_t wanted : {0, 1, -2}) {
        EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted));
        QXMutexAcquire(mutex);
        EXPECT_EQ(wanted, QXMutexAssertOwnership(mutex, wanted));
        std::thread([&] { EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted)); }).join();
        QXMutexRelease(mutex);
    }
}

}  // namespace
