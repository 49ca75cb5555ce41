/* Blocks that one part of a request is done with, for the next part: memory touched once need not be cleared again. */
#ifndef FRAMEWORK_BLOCK_POOL_H
#define FRAMEWORK_BLOCK_POOL_H

#include "big_block.h"

#include <cstddef>

namespace framework {

/* What allocate_block() takes from the pool, and the largest block of an arena. */
inline constexpr std::size_t pooled_block_size = std::size_t{8} << 20;

/* Keeps a block of that size for this thread's next allocate_block(); frees it where some are kept already. */
void pool_block(memory_block block);

} // namespace framework

#endif
