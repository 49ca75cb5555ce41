/*
 * Counters of this library's paired C operations, process-wide: what a test compares to prove that nothing was left
 * open. They only ever grow.
 */
#ifndef OSTORE_USAGE_H
#define OSTORE_USAGE_H

#include <cstdint>

namespace ostore {

struct usage_counts {
    std::uint64_t tokens_decoded;  /* tokens that parcel_generic_token() handed out */
    std::uint64_t tokens_released; /* calls of parcel_generic_free_token_allocations() */
    std::uint64_t walks_started;   /* successful parcel_generic_init() */
    std::uint64_t walks_ended;     /* calls of parcel_generic_destroy() */
    std::uint64_t bound;           /* handles that _ostore_bind() handed out */
    std::uint64_t unbound;         /* handles that _ostore_unbind() released */
    std::uint64_t items_read;      /* blocks that ostore_item_get() handed out */
};

/* The counters as they stand. */
usage_counts usage() noexcept;

/* Adds one to a counter: count(&usage_counts::bound). For this library's operations. */
void count(std::uint64_t usage_counts::*counter) noexcept;

} // namespace ostore

#endif
