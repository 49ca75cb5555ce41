#include "big_block.h"

#include <new>
#include <sys/mman.h>

namespace framework {

memory_block allocate_block(std::size_t size)
{
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
