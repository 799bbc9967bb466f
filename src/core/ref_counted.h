// The base of objects that are shared by reference, and their owning pointer.
#ifndef QX_CORE_REF_COUNTED_H
#define QX_CORE_REF_COUNTED_H

#include <atomic>
#include <utility>

#include "platform/types.h"

// A fresh object has a count of 0: nobody owns it until the first owner adds a reference.
class CQXCoreRefCounted {
  public:
    CQXCoreRefCounted() noexcept = default;
    virtual ~CQXCoreRefCounted() = default;
    CQXCoreRefCounted(const CQXCoreRefCounted&) = delete;
    CQXCoreRefCounted& operator=(const CQXCoreRefCounted&) = delete;

    std::atomic<u32> m_refCount{0};
};

inline void AddReference(CQXCoreRefCounted* object) noexcept {
    object->m_refCount.fetch_add(1, std::memory_order_relaxed);
}

// Destroys the object with its last reference. Returns the count that remains.
inline u32 DropReference(CQXCoreRefCounted* object) {
    const u32 before = object->m_refCount.fetch_sub(1, std::memory_order_acq_rel);
    if (before == 1) {
        delete object;
    }
    return before - 1;
}

template <typename Object>
class CQXRefPtr {
  public:
    CQXRefPtr() noexcept = default;
    explicit CQXRefPtr(Object* object) noexcept : m_object(object) { Attach(); }
    CQXRefPtr(const CQXRefPtr& other) noexcept : m_object(other.m_object) { Attach(); }
    CQXRefPtr(CQXRefPtr&& other) noexcept : m_object(other.MoveOut()) {}
    ~CQXRefPtr() { Detach(); }

    // The new object is attached, with the argument, before the old one is detached: they may be
    // the same.
    CQXRefPtr& operator=(CQXRefPtr other) noexcept {
        Swap(other);
        return *this;
    }

    // Passes the reference on to the caller.
    Object* MoveOut() noexcept { return std::exchange(m_object, nullptr); }

    Object* Get() const noexcept { return m_object; }
    Object* operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

  private:
    void Swap(CQXRefPtr& other) noexcept { std::swap(m_object, other.m_object); }

    void Attach() noexcept {
        if (m_object != nullptr) {
            AddReference(m_object);
        }
    }

    void Detach() {
        if (m_object != nullptr) {
            DropReference(m_object);
        }
    }

    Object* m_object = nullptr;
};

#endif
