// A thread's handle is its number; the platform's handle stays on record.
#include <qxcore/semaphore.h>
#include <qxcore/thread.h>

#include <memory>

#include "core/client_data.h"
#include "core/entry_guard.h"
#include "core/global_data.h"
#include "platform/handles.h"
#include "process/thread_manager.h"

namespace {

// What the creator hands over to the new thread, which frees it.
struct ThreadStartRecord {
    QXThreadRoutine m_routine;
    void* m_argument;
    QXHandle m_started = nullptr;  // a semaphore: the thread is on record
};

CQXThreadManager& Manager() {
    return CQXGlobalData::m_clientData->m_threadManager;
}

u32 IdOf(QXHandle thread) {
    return static_cast<u32>(reinterpret_cast<std::uintptr_t>(thread));
}

QXHandle HandleOf(u32 id) {
    return reinterpret_cast<QXHandle>(static_cast<std::uintptr_t>(id));
}

// A routine that ends its thread in another way than by returning never gets to the last mark.
platform::ThreadResult QX_THREAD_CALL RunThread(void* argument) {
    auto* const record = static_cast<ThreadStartRecord*>(argument);
    const QXThreadRoutine routine = record->m_routine;
    void* const routineArgument = record->m_argument;
    // Without the wait a short routine could end before its thread is on record.
    ThrowIfFailed(QXSemaphoreWait(record->m_started));
    QXSemaphoreDestroy(record->m_started);
    delete record;
    void* const result = routine(routineArgument);
    Manager().MarkFinished(platform::GetCurrentThreadId());
    return IdOf(result);
}

QXResult StartThread(std::unique_ptr<ThreadStartRecord> record, u32 stackSize, QXHandle* out,
                     u32* id) {
    auto entry = CQXThreadManager::NewEntry();
    ThrowIfFailed(QXSemaphoreCreate(0, nullptr, 0, &record->m_started));
    const QXHandle started = record->m_started;
    const auto thread = reinterpret_cast<platform::HANDLE>(
        platform::_beginthreadex(nullptr, stackSize, RunThread, record.get(), 0, id));
    if (thread == nullptr) {
        const QXResult result = ResultOf(false);
        QXSemaphoreDestroy(started);
        return result;
    }
    static_cast<void>(record.release());
    const u32 newId = *id;
    Manager().AddThread(std::move(entry), newId, thread);
    ThrowIfFailed(QXSemaphorePost(started));
    *out = HandleOf(newId);
    return QX_S_OK;
}

QXResult WaitAndClose(platform::HANDLE thread, u64* exitValue, bool* waited) {
    *waited = platform::WaitForSingleObject(thread, platform::kInfinite) != platform::kWaitFailed;
    if (!*waited) {
        return ResultOf(false);
    }
    if (exitValue != nullptr) {
        u32 code = 0;
        platform::GetExitCodeThread(thread, &code);
        *exitValue = code;
    }
    return ResultOf(platform::CloseHandle(thread));
}

QXResult SetAffinity(u64 mask, u64* previous) {
    *previous = platform::SetThreadAffinityMask(platform::GetCurrentThread(), mask);
    return ResultOf(*previous != 0);
}

}  // namespace

QXResult QXThreadCreate(QXThreadRoutine routine, void* argument, void*, uint32_t stackSize,
                        QXHandle* out, uint32_t* id) {
    *out = QX_INVALID_HANDLE;
    *id = 0;
    return RunGuarded([&] {
        // Keeps the caller's own record alive meanwhile.
        const auto caller = Manager().FindThread(platform::GetCurrentThreadId());
        return StartThread(
            std::unique_ptr<ThreadStartRecord>(new ThreadStartRecord{routine, argument}), stackSize,
            out, id);
    });
}

QXResult QXThreadDetach(QXHandle thread) {
    return RunGuarded([&] {
        const u32 id = IdOf(thread);
        const platform::HANDLE native = Manager().FindThread(id)->m_hThread;
        const QXResult result = ResultOf(platform::CloseHandle(native));
        Manager().MarkDetached(id);
        return result;
    });
}

QXResult QXThreadJoin(QXHandle thread, uint64_t* exitValue) {
    if (exitValue != nullptr) {
        *exitValue = 0;
    }
    return RunGuarded([&] {
        const u32 id = IdOf(thread);
        const CQXRefPtr<CQXThreadData> record = Manager().FindThread(id);
        if (!record) {
            return QX_E_HANDLE;
        }
        bool waited;
        const QXResult result = WaitAndClose(record->m_hThread, exitValue, &waited);
        if (waited) {
            Manager().MarkDetached(id);
        }
        return result;
    });
}

int16_t QXThreadIsFinished(QXHandle thread) {
    bool finished = false;
    RunGuarded([&] {
        const CQXRefPtr<CQXThreadData> record = Manager().FindThread(IdOf(thread));
        finished = !record || (record->m_bDetached && record->m_bFinished);
        return QX_S_OK;
    });
    return finished;
}

QXHandle QXThreadGetHandle(void) {
    return platform::GetCurrentThread();
}

uint32_t QXThreadGetID(void) {
    return platform::GetCurrentThreadId();
}

QXResult QXThreadYield(void) {
    platform::SwitchToThread();
    return QX_S_OK;
}

void QXSleep(uint32_t ms) {
    platform::Sleep(ms);
}

QXResult QXSetCpuAffinity(const uint64_t* mask) {
    u64 previous;
    return SetAffinity(*mask, &previous);
}

QXResult QXGetSetCpuAffinity(uint64_t* previous, const uint64_t* mask) {
    return SetAffinity(*mask, previous);
}
