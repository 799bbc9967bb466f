#include "checked_handles.h"

#include <sys/single_threaded.h>

#include "cancellation.h"
#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/sync.h"
#include "platform/threads.h"

namespace platform {
namespace {

// Of a handle: 1, the number of the place, its generation.
constexpr int kPlaceBits = 20;
constexpr int kGenerationShift = 1 + kPlaceBits;
constexpr int kGenerationBits = 42;
// Of a state: the references, whether the handle is open, the generation.
constexpr u64 kOpen = u64{1} << 21;
constexpr u64 kReferences = kOpen - 1;
constexpr int kStateShift = 64 - kGenerationBits;

constexpr u64 kChunkSize = 256;
constexpr u64 kChunks = (u64{1} << kPlaceBits) / kChunkSize;

constinit HandlePlace s_firstChunk[kChunkSize] = {};
constinit std::atomic<HandlePlace*> s_chunks[kChunks] = {};

// Guards what follows, and the adding of chunks.
constinit CRITICAL_SECTION s_lock;
constinit HandlePlace* s_free = nullptr;
constinit u64 s_places = 0;
constinit u64 s_objects = 0;

class TableHolder {
  public:
    TableHolder() noexcept { LockCheckedHandles(); }
    ~TableHolder() { UnlockCheckedHandles(); }
    TableHolder(const TableHolder&) = delete;
    TableHolder& operator=(const TableHolder&) = delete;
};

bool IsPseudoHandle(const void* handle) noexcept {
    return reinterpret_cast<std::intptr_t>(handle) < 0;
}

u64 KeyOf(const void* handle) noexcept {
    return reinterpret_cast<std::uintptr_t>(handle);
}

void PushFree(HandlePlace* place) noexcept {
    place->m_nextFree = s_free;
    s_free = place;
}

bool AddChunk() noexcept {
    const u64 number = s_places / kChunkSize;
    if (number == kChunks) {
        return false;
    }
    auto* const chunk = number == 0 ? s_firstChunk : new (std::nothrow) HandlePlace[kChunkSize]{};
    if (chunk == nullptr) {
        return false;
    }
    for (u64 i = kChunkSize; i-- > 0;) {
        chunk[i].m_number = s_places + i;
        PushFree(&chunk[i]);
    }
    s_chunks[number].store(chunk, std::memory_order_release);
    s_places += kChunkSize;
    return true;
}

bool ReservePlace() noexcept {
    const TableHolder hold;
    const bool isThere = s_objects < s_places || AddChunk();
    s_objects += isThere ? 1 : 0;
    return isThere;
}

void GiveUpPlace() noexcept {
    const TableHolder hold;
    --s_objects;
}

// Null for what can be no handle.
HandlePlace* PlaceOf(u64 handle) noexcept {
    const u64 number = (handle >> 1) % (kChunks * kChunkSize);
    HandlePlace* const chunk = s_chunks[number / kChunkSize].load(std::memory_order_acquire);
    const bool mayBe = chunk != nullptr && (handle & 1) != 0;
    return mayBe ? &chunk[number % kChunkSize] : nullptr;
}

// While the C library knows of one thread only, no locked instruction is needed, as in a critical
// section.
bool Replace(std::atomic<u64>& state, u64& old, u64 next) noexcept {
    if (__libc_single_threaded) {
        state.store(next, std::memory_order_relaxed);
        return true;
    }
    return state.compare_exchange_weak(old, next, std::memory_order_acquire,
                                       std::memory_order_relaxed);
}

u64 TakeReference(std::atomic<u64>& state) noexcept {
    if (__libc_single_threaded) {
        const u64 before = state.load(std::memory_order_relaxed);
        state.store(before - 1, std::memory_order_relaxed);
        return before;
    }
    return state.fetch_sub(1, std::memory_order_acq_rel);
}

// Brings the state of a handle's place from open to what `next` makes of it. Null if it is not
// open.
template <typename Next>
HandlePlace* Change(u64 handle, Next next) noexcept {
    HandlePlace* const place = PlaceOf(handle);
    if (place == nullptr) {
        return nullptr;
    }
    u64 state = place->m_state.load(std::memory_order_relaxed);
    do {
        if ((state & kOpen) == 0 || state >> kStateShift != handle >> kGenerationShift) {
            return nullptr;
        }
    } while (!Replace(place->m_state, state, next(state)));
    return place;
}

HandlePlace* Pin(const void* handle) noexcept {
    return Change(KeyOf(handle), [](u64 state) { return state + 1; });
}

// The object goes last: its place is free before its reservation is given up.
[[gnu::cold]] void Retire(HandlePlace* place) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    const CheckedObject* const object = place->m_object;
    {
        const TableHolder hold;
        const u64 generation = place->m_state.load(std::memory_order_relaxed) >> kStateShift;
        place->m_state.store((generation + 1) << kStateShift, std::memory_order_relaxed);
        PushFree(place);
    }
    delete object;
}

void Drop(HandlePlace* place) noexcept {
    if ((TakeReference(place->m_state) & kReferences) == 1) {
        Retire(place);
    }
}

}  // namespace

void LockCheckedHandles() noexcept {
    EnterCriticalSection(&s_lock);
}

void UnlockCheckedHandles() noexcept {
    LeaveCriticalSection(&s_lock);
}

void FreeCheckedHandles() noexcept {
    for (u64 number = 1; number < s_places / kChunkSize; ++number) {
        delete[] s_chunks[number].load(std::memory_order_relaxed);
    }
}

void* CheckedObject::operator new(std::size_t size, const std::nothrow_t& nothrow) noexcept {
    if (!ReservePlace()) {
        return nullptr;
    }
    void* const object = ::operator new(size, nothrow);
    if (object == nullptr) {
        GiveUpPlace();
    }
    return object;
}

void* CheckedObject::operator new(std::size_t size) {
    void* const object = operator new(size, std::nothrow);
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return object;
}

void CheckedObject::operator delete(void* object) noexcept {
    ::operator delete(object);
    GiveUpPlace();
}

void* NewCheckedHandle(CheckedObject* object) noexcept {
    const TableHolder hold;
    HandlePlace* const place = s_free;
    s_free = place->m_nextFree;
    place->m_object = object;
    const u64 generation = place->m_state.load(std::memory_order_relaxed) >> kStateShift;
    place->m_state.store(generation << kStateShift | kOpen | 1, std::memory_order_release);
    const u64 handle = generation << kGenerationShift | place->m_number << 1 | 1;
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle));
}

CheckedReference::CheckedReference(const void* handle) noexcept : m_place(Pin(handle)) {}

CheckedReference::~CheckedReference() {
    if (m_place != nullptr) {
        Drop(m_place);
    }
}

bool CloseCheckedHandle(const void* handle) noexcept {
    if (IsPseudoHandle(handle)) {
        return true;
    }
    HandlePlace* const place = Change(KeyOf(handle), [](u64 state) { return state & ~kOpen; });
    if (place == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return false;
    }
    Drop(place);
    return true;
}

u32 WaitForCheckedHandle(const void* handle, u32 milliseconds) noexcept {
    if (handle == kCurrentThread) {
        Sleep(milliseconds);
        return kWaitTimeout;
    }
    const CheckedReference object(handle);
    if (object.Get() == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }
    return object.Get()->Wait(milliseconds);
}

}  // namespace platform
