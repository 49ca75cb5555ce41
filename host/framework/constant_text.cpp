#include "constant_text.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <link.h>

namespace framework {

namespace {

struct address_range {
    std::uintptr_t begin;
    std::uintptr_t end;
};

/* One of the objects, from dl_iterate_phdr(): ends the search, with 1, where the range is in a segment of it. */
extern "C" int holds_unwritable(dl_phdr_info *object, std::size_t, void *wanted)
{
    const auto &range = *static_cast<const address_range *>(wanted);
    for (std::size_t i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = object->dlpi_phdr[i];
        const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
        const bool is_inside = range.begin >= start && range.end <= start + segment.p_memsz;
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) == 0 && is_inside)
            return 1;
    }
    return 0;
}

} // namespace

bool is_constant_text(const char *text)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(text);
    address_range range = {begin, begin + std::strlen(text) + 1};
    return ::dl_iterate_phdr(holds_unwritable, &range) != 0;
}

} // namespace framework
