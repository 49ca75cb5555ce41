/*
 * Records: the input is one, byte by byte, or says how to assemble one that is nearly right. The record is read as a
 * user of the library does and as the plug-in does, from a block of exactly its size.
 */
#include "input.h"

#include "framework/scripted_walk.h"
#include "ostore/record_reader.h"

#include "oc_chmon.h"
#include "ostore/parcel_writer.h"

#include <memory>
#include <span>
#include <vector>

namespace {

/* Tokens of the input's choice, whose lengths are those of their names and values. */
std::vector<std::byte> assemble(fuzz::input &in)
{
    const std::string_view names[] = {"inv_phy_entity_basic_info", "Name", "a", "%s%n", ""};
    ostore::parcel_writer record("s", 3, 1);
    while (!in.empty()) {
        const auto type = static_cast<parcel_token_type_td>(in.below(20));
        const std::string_view name = in.pick(names);
        const int fixed = ostore::parcel_value_size(type);
        std::string value(in.take(fixed >= 0 ? static_cast<std::size_t>(fixed) : in.below(210)));
        value.resize(fixed >= 0 ? static_cast<std::size_t>(fixed) : value.size());
        if (fixed == ostore::parcel_text_value)
            value = value.substr(0, value.find('\0')) + '\0';
        record.raw(type, name, std::as_bytes(std::span(value)));
    }
    return record.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr const char *fields[] = {"inv_phy_entity_basic_info.Name", "Name", "a.a", "a", "%s%n", "", "a..a", "."};
    fuzz::input in(data, size);
    const unsigned form = in.byte();
    const char *const field = in.pick(fields);
    const auto wanted = static_cast<parcel_token_type_td>(in.below(20));
    std::vector<std::byte> record;
    if (form % 2 == 0) {
        const auto raw = std::as_bytes(std::span(in.rest()));
        record.assign(raw.begin(), raw.end());
    } else {
        record = assemble(in);
        record.resize(record.size() - std::min(record.size(), std::size_t{form / 16 == 1 ? form % 16 : 0}));
    }
    record.resize(std::min(record.size(), record_reader::longest));
    static record_reader reader;
    reader.read(record.data(), record.size());
    /* As the plug-in reads it, into 200 bytes. */
    if (record.size() >= ostore::parcel_header_size) {
        scripted::walk walk;
        const auto output = std::make_unique<char[]>(200);
        std::memset(output.get(), '#', 200);
        const void *const placed = reader.place(record.data(), record.size());
        reader.watched([&] {
            return walk.run([&](scripted::walk &at) {
                return get_value_in_parcel(at.ctx, field, wanted, placed, static_cast<std::uint32_t>(record.size()),
                                           output.get());
            });
        });
        if (output[0] != '#' && std::memchr(output.get(), 0, 200) == nullptr)
            fuzz::report("output without end", field);
    }
    if (!reader.faultless())
        fuzz::report("a promise of the library's broken", "loop, code, or tokens and walks not given back");
    return 0;
}
