#include "first_touch.h"

#include <cstdint>
#include <sys/mman.h>

namespace framework {

void touch_ahead(void *memory, std::size_t size)
{
    constexpr std::uintptr_t page = 4096;
    const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + size) / page * page;
    if (begin < end)
        (void)::madvise(reinterpret_cast<void *>(begin), end - begin, MADV_POPULATE_WRITE);
}

} // namespace framework
