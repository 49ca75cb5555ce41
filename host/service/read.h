/* One read of a device in OpenConfig terms. */
#ifndef SERVICE_READ_H
#define SERVICE_READ_H

#include "service/plugin.h"
#include "service/walk_options.h"

#include "framework/arena.h"

#include "ostore/transaction.h"

#include <chrono>
#include <cstdint>

namespace service {

/* Kinds of reads. */
inline constexpr std::uint32_t kind_get = 10;
inline constexpr std::uint32_t kind_get_config = 0;

/* What a read cost. */
struct read_costs {
    using duration = std::chrono::steady_clock::duration;

    duration plan{};           /* the filter becomes a native request */
    duration fetch{};          /* that is read from the store */
    duration map{};            /* and becomes OpenConfig data, one entry per monitor */
    duration filter{};         /* which is cut to the filter */
    std::uint64_t records = 0; /* records of native data that were read */
    std::uint64_t bytes = 0;   /* their size */
};

/*
 * What of a device's channel monitors a subtree filter selects, as `state` sees the device: a root without a tag, with
 * one channel-monitors container or none. `filter` is a root without a tag, and null stands for everything; it is not
 * changed. Fetches what the filter needs, and nothing else (fetch.h). Throws walk_fault, and std::runtime_error where
 * the store is damaged.
 *
 * Channels are packed (packed_entries.h). The reply's nodes are in `memory` and may use texts of the store, the plug-in
 * and the filter: all must outlive it, `state` included.
 */
dtf_datatree read(const plugin &mapper, const ostore::transaction &state, const dtf_datatree *filter,
                  std::uint32_t kind, framework::arena &memory, const walk_options &walks, read_costs *costs = nullptr);

} // namespace service

#endif
