#include "big_block.h"

#include <new>
#include <sys/mman.h>
#include <utility>
#include <vector>

namespace framework {

namespace {

thread_local std::vector<memory_block> pool;

} // namespace

void pool_block(memory_block block)
{
    /* Bounds what a thread holds between requests. */
    constexpr std::size_t most_blocks = 4;
    if (pool.size() < most_blocks)
        pool.push_back(std::move(block));
}

memory_block allocate_block(std::size_t size)
{
    if (size == pooled_block_size && !pool.empty()) {
        memory_block block = std::move(pool.back());
        pool.pop_back();
        return block;
    }
    constexpr std::size_t huge_page = std::size_t{2} << 20;
    if (size < huge_page) {
        memory_block block(static_cast<std::byte *>(std::malloc(size)));
        if (block == nullptr)
            throw std::bad_alloc();
        return block;
    }
    const std::size_t whole_pages = (size + huge_page - 1) / huge_page * huge_page;
    memory_block block(static_cast<std::byte *>(std::aligned_alloc(huge_page, whole_pages)));
    if (block == nullptr || whole_pages < size)
        throw std::bad_alloc();
    /* A wish: without it the block is as good, only slower. */
    (void)::madvise(block.get(), whole_pages, MADV_HUGEPAGE);
    return block;
}

} // namespace framework
