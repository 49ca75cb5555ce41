/* Memory for much data at once. */
#ifndef FRAMEWORK_BIG_BLOCK_H
#define FRAMEWORK_BIG_BLOCK_H

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace framework {

struct block_deleter {
    void operator()(std::byte *block) const { std::free(block); }
};

/* Uninitialised, aligned for any object. */
using memory_block = std::unique_ptr<std::byte[], block_deleter>;

/*
 * From two megabytes on it lies on huge pages where the system grants them: most of what a large document costs beyond
 * its own work is the system's, for the first touch of every page. Throws std::bad_alloc.
 */
memory_block allocate_block(std::size_t size);

/*
 * Blocks that one part of a request is done with, for the next part: memory touched once need not be cleared again.
 * allocate_block() takes a block of that size, the largest of an arena, from those that this thread keeps.
 */
inline constexpr std::size_t pooled_block_size = std::size_t{8} << 20;

/* Keeps a block of that size for this thread's next allocate_block(); frees it where some are kept already. */
void pool_block(memory_block block);

} // namespace framework

#endif
