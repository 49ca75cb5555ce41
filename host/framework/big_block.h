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

} // namespace framework

#endif
