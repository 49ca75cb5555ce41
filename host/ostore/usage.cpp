#include "ostore/usage.h"

#include <atomic>

namespace ostore {

namespace {

usage_counts counts{};

} // namespace

usage_counts usage() noexcept
{
    const auto read = [](std::uint64_t &counter) {
        return std::atomic_ref<std::uint64_t>(counter).load(std::memory_order_relaxed);
    };
    return {read(counts.tokens_decoded), read(counts.tokens_released), read(counts.walks_started),
            read(counts.walks_ended),    read(counts.bound),           read(counts.unbound),
            read(counts.items_read)};
}

void count(std::uint64_t usage_counts::*counter) noexcept
{
    std::atomic_ref<std::uint64_t>(counts.*counter).fetch_add(1, std::memory_order_relaxed);
}

} // namespace ostore
