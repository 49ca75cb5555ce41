/*
 * Memory of one request: texts and child arrays of its trees. Nothing is freed one by one; everything goes with the
 * arena.
 */
#ifndef FRAMEWORK_ARENA_H
#define FRAMEWORK_ARENA_H

#include "dtf.h"

#include <cstddef>
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

    std::byte *next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t used_ = 0;
    bool poison_ = false;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::vector<std::shared_ptr<const void>> kept_;
};

} // namespace framework

#endif
