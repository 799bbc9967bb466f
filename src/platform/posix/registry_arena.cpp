#include "registry_arena.h"

#include <sys/mman.h>

#include <algorithm>

namespace platform {
namespace {

constexpr std::size_t kFirstPiece = std::size_t{64} * 1024;
constexpr std::size_t kAlignment = 8;

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) noexcept {
    return (size + unit - 1) / unit * unit;
}

}  // namespace

void* RegistryArena::Take(std::size_t size) noexcept {
    size = RoundUp(size, kAlignment);
    if (size > static_cast<std::size_t>(m_end - m_next) && !Grow(size)) {
        return nullptr;
    }
    std::byte* const taken = m_next;
    m_next += size;
    return taken;
}

bool RegistryArena::Grow(std::size_t size) noexcept {
    const std::size_t wanted =
        std::max(RoundUp(size + sizeof(Piece), kFirstPiece), std::max(kFirstPiece, m_taken));
    if (m_taken + wanted > kMost) {
        return false;
    }
    void* const memory =
        ::mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        return false;
    }
    auto* const piece = static_cast<Piece*>(memory);
    *piece = {m_newest, wanted};
    m_newest = piece;
    m_taken += wanted;
    m_next = reinterpret_cast<std::byte*>(piece + 1);
    m_end = static_cast<std::byte*>(memory) + wanted;
    return true;
}

void RegistryArena::ReleaseNewestPiece() noexcept {
    Piece* const piece = m_newest;
    m_newest = piece->m_older;
    m_taken -= piece->m_size;
    ::munmap(piece, piece->m_size);
}

void RegistryArena::Empty() noexcept {
    while (m_newest != nullptr && m_newest->m_older != nullptr) {
        ReleaseNewestPiece();
    }
    if (m_newest != nullptr) {
        m_next = reinterpret_cast<std::byte*>(m_newest + 1);
        m_end = reinterpret_cast<std::byte*>(m_newest) + m_newest->m_size;
    }
}

void RegistryArena::Release() noexcept {
    Empty();
    if (m_newest != nullptr) {
        ReleaseNewestPiece();
    }
    m_next = m_end = nullptr;
}

}  // namespace platform
