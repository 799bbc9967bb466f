// A number that the holder of a lock writes and others read, or set to 0, without the lock.
#ifndef QX_SYNC_LOCK_FIGURE_H
#define QX_SYNC_LOCK_FIGURE_H

#include <atomic>

// Loads and stores, and no step that is both: a reset that meets an addition may be lost, which the
// figures accept for the price of an ordinary addition.
template <typename Number>
class LockFigure {
  public:
    Number Get() const noexcept { return m_value.load(std::memory_order_relaxed); }
    void Set(Number value) noexcept { m_value.store(value, std::memory_order_relaxed); }

    // Wraps.
    void Add(Number value) noexcept { Set(static_cast<Number>(Get() + value)); }

    void RaiseTo(Number value) noexcept {
        if (value > Get()) {
            Set(value);
        }
    }

  private:
    std::atomic<Number> m_value{0};
};

#endif
