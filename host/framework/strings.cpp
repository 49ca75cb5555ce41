/* Bounded text operations and named allocations: the C operations that need no context. */
#include "dtf.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace framework {

namespace {

/*
 * Writes at most `limit` characters of `source` to a destination of `size` bytes. Nonzero when some of them did not
 * fit. Source and destination may overlap. Reads the source no further than `limit` and its terminator ask for.
 */
int copy_bounded(char *destination, std::size_t size, const char *source, std::size_t limit)
{
    if (destination == nullptr || size == 0)
        return 1;
    const std::size_t wanted = source == nullptr ? 0 : strnlen(source, std::min(limit, size));
    const std::size_t copied = std::min(wanted, size - 1);
    if (copied != 0)
        std::memmove(destination, source, copied);
    destination[copied] = '\0';
    return copied < wanted ? 1 : 0;
}

} // namespace

} // namespace framework

extern "C" {

/* There is no context to report through, so the caller's name goes unused: the result tells the caller all. */
int dtf_strcpy_s(const char *, char *destination, size_t size, const char *source)
{
    return framework::copy_bounded(destination, size, source, SIZE_MAX);
}

int dtf_strncpy_s(const char *, char *destination, size_t size, const char *source, size_t count)
{
    return framework::copy_bounded(destination, size, source, count);
}

int dtf_strcat_s(const char *, char *destination, size_t size, const char *source)
{
    if (destination == nullptr || size == 0)
        return 1;
    /* A destination without a terminator within its size counts as full, and gets one. */
    const size_t length = std::min(strnlen(destination, size), size - 1);
    return framework::copy_bounded(destination + length, size - length, source, SIZE_MAX);
}

char *dtf_strdup(const char *text, const char *)
{
    if (text == nullptr)
        return nullptr;
    return strdup(text);
}

void plat_named_free(void *allocation) { std::free(allocation); }
}
