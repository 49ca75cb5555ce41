#include "arena.h"

#include <algorithm>
#include <utility>

namespace framework {

namespace {

/* Blocks double from the first size to the last one: a small request stays small, a large one costs few blocks. */
constexpr std::size_t first_block = std::size_t{16} << 10;
constexpr std::size_t last_block = std::size_t{2} << 20;

} // namespace

arena::arena(arena &&other) noexcept { *this = std::move(other); }

arena &arena::operator=(arena &&other) noexcept
{
    next_ = std::exchange(other.next_, nullptr);
    left_ = std::exchange(other.left_, 0);
    used_ = std::exchange(other.used_, 0);
    poison_ = other.poison_;
    blocks_ = std::move(other.blocks_);
    kept_ = std::move(other.kept_);
    return *this;
}

void arena::keep(std::shared_ptr<const void> buffer) { kept_.push_back(std::move(buffer)); }

/* A large piece gets a block of its own, so that the rest of the current block is not lost to it. */
std::byte *arena::open_block(std::size_t size)
{
    const std::size_t doubled = first_block << std::min<std::size_t>(blocks_.size(), 16);
    const std::size_t standard = std::min(doubled, last_block);
    const bool alone = size > standard / 4;
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(alone ? size : standard));
    std::byte *const begin = blocks_.back().get();
    if (!alone) {
        next_ = begin + size;
        left_ = standard - size;
    }
    return begin;
}

} // namespace framework
