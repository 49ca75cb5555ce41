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
    const void *place(const void *bytes, std::size_t size) { return std::memcpy(page_.end() - size, bytes, size); }

    /* Reads what stands there, calls visit(token) for each token, and returns the code that ended it. */
    template <typename function> faultno read(const void *bytes, std::size_t size, function &&visit)
    {
        const ostore::usage_counts before = ostore::usage();
        const void *const record = place(bytes, size);
        parcel_header_td header{};
        parcel_walk_td walk{};
        parcel_token_td token{};
        faultno rc = parcel_generic_init(record, static_cast<std::uint32_t>(size), &walk);
        /* Whoever hands a block to parcel_header_info() has seen to it that a header fits. */
        odd_codes += size >= ostore::parcel_header_size && parcel_header_info(record, &header) != rc;
        const bool started = rc == 0;
        std::size_t steps = 0;
        for (bool last = !started; !last && (rc = parcel_generic_token(&walk, &token)) == 0;) {
            visit(token);
            const char *const text = token.type == PARCEL_TOKEN_TEXT ? token.value.text : nullptr;
            too_long += text != nullptr && std::strlen(text) >= size;
            last = token.type == PARCEL_TOKEN_END || ++steps > size;
            parcel_generic_free_token_allocations(&token);
        }
        if (started)
            parcel_generic_destroy(&walk);
        const ostore::usage_counts after = ostore::usage();
        ++variants;
        loops += steps > size;
        odd_codes += rc != 0 && ostore::fault_text(rc) == nullptr;
        unreleased += after.tokens_decoded - before.tokens_decoded != after.tokens_released - before.tokens_released ||
                      after.walks_started - before.walks_started != after.walks_ended - before.walks_ended;
        return rc;
    }
    faultno read(const void *bytes, std::size_t size)
    {
        return read(bytes, size, [](const parcel_token_td &) {});
    }

  private:
    guarded_page page_;
};

#endif
