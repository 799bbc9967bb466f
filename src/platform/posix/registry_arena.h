// Memory that is only ever added to and goes all at once.
#ifndef QX_PLATFORM_POSIX_REGISTRY_ARENA_H
#define QX_PLATFORM_POSIX_REGISTRY_ARENA_H

#include <cstddef>

namespace platform {

// Pieces of the system's own, from 64 KiB, each twice as large as the one before it.
class RegistryArena {
  public:
    constexpr RegistryArena() noexcept = default;
    RegistryArena(const RegistryArena&) = delete;
    RegistryArena& operator=(const RegistryArena&) = delete;

    // Aligned for any pointer or number. Null if there is no memory, or no more than `kMost`.
    void* Take(std::size_t size) noexcept;

    // Takes everything back and keeps the first piece for what comes next.
    void Empty() noexcept;
    void Release() noexcept;

    static constexpr std::size_t kMost = std::size_t{8} * 1024 * 1024;

  private:
    struct Piece {
        Piece* m_older;
        std::size_t m_size;
    };

    bool Grow(std::size_t size) noexcept;
    void ReleaseNewestPiece() noexcept;

    Piece* m_newest = nullptr;
    std::byte* m_next = nullptr;
    std::byte* m_end = nullptr;
    std::size_t m_taken = 0;  // from the system
};

}  // namespace platform

#endif
