/*
 * Memory of one request: texts and child arrays of its trees. Nothing is freed one by one; everything goes with the
 * arena.
 */
#ifndef FRAMEWORK_ARENA_H
#define FRAMEWORK_ARENA_H

#include "dtf.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace framework {

class arena
{
  public:
    arena() = default;
    arena(const arena &) = delete;
    arena &operator=(const arena &) = delete;
    arena(arena &&other) noexcept;
    arena &operator=(arena &&other) noexcept;
    ~arena() = default;

    /* `size` bytes, aligned for any object, uninitialised; they stay until the arena goes. */
    void *allocate(std::size_t size);

    /* A NUL-terminated copy of `text`. */
    const char *copy(std::string_view text);

    /* Takes over a buffer that trees point into (a parsed document, say). */
    void keep(std::shared_ptr<const void> buffer);

    /* Bytes handed out so far, alignment included. */
    std::size_t used() const { return used_; }

    /*
     * Test aid: every addition to a tree then moves the child array and overwrites the old one, so that whoever holds
     * a node over an addition reads garbage (and is caught by the address sanitizer).
     */
    void set_poison(bool on) { poison_ = on; }
    bool poison() const { return poison_; }

  private:
    std::byte *take(std::size_t size);
    std::byte *open_block(std::size_t size);

    static constexpr std::size_t alignment = alignof(std::max_align_t);

    std::byte *next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t used_ = 0;
    bool poison_ = false;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::vector<std::shared_ptr<const void>> kept_;
};

/* The next three run once per node and text: inline, so that a tree costs no calls as long as a block lasts. */

inline std::byte *arena::take(std::size_t size)
{
    used_ += size;
    if (size > left_)
        return open_block(size);
    left_ -= size;
    std::byte *const taken = next_;
    next_ += size;
    return taken;
}

inline void *arena::allocate(std::size_t size)
{
    /* Texts leave the next byte anywhere, so objects align it first. Blocks themselves come aligned. */
    const std::size_t padding = -reinterpret_cast<std::uintptr_t>(next_) % alignment;
    if (size + padding <= left_)
        return take(size + padding) + padding;
    used_ += size;
    return open_block(size);
}

inline const char *arena::copy(std::string_view text)
{
    std::byte *const bytes = take(text.size() + 1);
    if (!text.empty())
        std::memcpy(bytes, text.data(), text.size());
    bytes[text.size()] = std::byte{0};
    return reinterpret_cast<const char *>(bytes);
}

} // namespace framework

#endif
