/* Reads records of any bytes as a user of the library does, from a block whose end is followed by memory that faults.
 */
#ifndef TESTS_OSTORE_RECORD_READER_H
#define TESTS_OSTORE_RECORD_READER_H

#include "framework/guarded_page.h"

#include "ostore/faults.h"
#include "ostore/parcel_format.h"
#include "ostore/usage.h"

#include <algorithm>

class record_reader
{
  public:
    static constexpr std::size_t longest = 4096;

    /* What was read, and what the library may never do: walk without end, keep what it gave, give more text than there
     * is, answer a code that has no text, or judge a header in two ways. */
    std::uint64_t variants = 0, loops = 0, unreleased = 0, too_long = 0, odd_codes = 0;
    bool faultless() const { return loops + unreleased + too_long + odd_codes == 0; }

    /* Up to `longest` bytes before the memory that faults, until the next ones are put there. */
    const void *place(const void *bytes, std::size_t size)
    {
        const auto from = static_cast<const std::byte *>(bytes);
        std::copy_n(from, size, reinterpret_cast<std::byte *>(page_.end() - size));
        return page_.end() - size;
    }

    /* Does something with what stands there, and returns the code that it ended with. */
    template <typename function> faultno watched(function &&work)
    {
        const ostore::usage_counts before = ostore::usage();
        const faultno rc = work();
        const ostore::usage_counts after = ostore::usage();
        odd_codes += rc != 0 && rc != FAULT_INVALID_ARGS && ostore::fault_text(rc) == nullptr;
        unreleased += after.tokens_decoded - before.tokens_decoded != after.tokens_released - before.tokens_released ||
                      after.walks_started - before.walks_started != after.walks_ended - before.walks_ended;
        return rc;
    }

    /* Reads a record to its end, and calls visit(token) for each token. */
    template <typename function> faultno read(const void *bytes, std::size_t size, function &&visit)
    {
        ++variants;
        return watched([&] { return read_tokens(place(bytes, size), size, visit); });
    }
    faultno read(const void *bytes, std::size_t size)
    {
        return read(bytes, size, [](const parcel_token_td &) {});
    }

  private:
    template <typename function> faultno read_tokens(const void *record, std::size_t size, function &&visit)
    {
        parcel_header_td header{};
        parcel_walk_td walk{};
        parcel_token_td token{};
        faultno rc = parcel_generic_init(record, static_cast<std::uint32_t>(size), &walk);
        /* Whoever hands a block to parcel_header_info() has seen to it that a header fits. */
        odd_codes += size >= ostore::parcel_header_size && parcel_header_info(record, &header) != rc;
        if (rc != 0)
            return rc;
        std::size_t steps = 0;
        for (bool last = false; !last && (rc = parcel_generic_token(&walk, &token)) == 0;) {
            visit(token);
            const char *const text = token.type == PARCEL_TOKEN_TEXT ? token.value.text : nullptr;
            too_long += text != nullptr && std::strlen(text) >= size;
            last = token.type == PARCEL_TOKEN_END || ++steps > size;
            parcel_generic_free_token_allocations(&token);
        }
        parcel_generic_destroy(&walk);
        loops += steps > size;
        return rc;
    }

    guarded_page page_;
};

#endif
