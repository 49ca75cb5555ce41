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
    arena(arena &&) = default;
    arena &operator=(arena &&) = default;

    /* `size` bytes, aligned for any object, uninitialised; they stay until the arena goes. */
    void *allocate(std::size_t size);

    /* A NUL-terminated copy of `text`. */
    const char *copy(std::string_view text);

    /* Takes over a buffer that trees point into (a parsed document, say). */
    void keep(std::shared_ptr<const void> buffer);

    /* Bytes handed out so far. */
    std::size_t used() const { return used_; }

  private:
    std::byte *next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t used_ = 0;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::vector<std::shared_ptr<const void>> kept_;
};

} // namespace framework

#endif
