/*
 * Making parcels (parcel_format.h).
 */
#ifndef OSTORE_PARCEL_WRITER_H
#define OSTORE_PARCEL_WRITER_H

#include "parcel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace ostore {

/* What was to be written cannot stand in a parcel: one line says what and where. */
class parcel_error : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/*
 * Writes one parcel, token by token:
 *
 *     auto record = parcel_writer("inventory", 1, 0).group("unit").text("Name", "0/1").end_group().finish();
 *
 * `name` is the token's field name; empty: the token has none. Throws parcel_error for a name or text that holds a
 * zero byte and for groups that are not balanced.
 */
class parcel_writer
{
  public:
    /* schema: 1 to 47 bytes. */
    parcel_writer(std::string_view schema, std::int32_t major, std::int32_t minor);

    parcel_writer &int8(std::string_view name, std::int8_t value);
    parcel_writer &uint8(std::string_view name, std::uint8_t value);
    parcel_writer &int16(std::string_view name, std::int16_t value);
    parcel_writer &uint16(std::string_view name, std::uint16_t value);
    parcel_writer &int32(std::string_view name, std::int32_t value);
    parcel_writer &uint32(std::string_view name, std::uint32_t value);
    /* address: in network byte order, as a struct in_addr holds it. */
    parcel_writer &ipv4(std::string_view name, std::uint32_t address);
    parcel_writer &enumeration(std::string_view name, std::int32_t value);
    /* value: any nonzero is true. */
    parcel_writer &boolean(std::string_view name, std::uint32_t value);
    parcel_writer &text(std::string_view name, std::string_view value);
    /* A text that readers find in the token's second text pointer. */
    parcel_writer &second_text(std::string_view name, std::string_view value);
    parcel_writer &group(std::string_view name);
    parcel_writer &end_group();

    /* Any token with any bytes, well-formed or not. Groups opened or closed this way are not counted. */
    parcel_writer &raw(parcel_token_type_td type, std::string_view name, std::span<const std::byte> value);

    /* Ends the record and hands it out; the writer is empty afterwards. */
    std::vector<std::byte> finish();

  private:
    void head(parcel_token_type_td type, std::string_view name, std::size_t value_size);
    parcel_writer &number(parcel_token_type_td type, std::string_view name, std::uint32_t value);
    parcel_writer &characters(parcel_token_type_td type, std::string_view name, std::string_view value);
    void append(std::uint32_t number, std::size_t size);
    void append(std::string_view text);

    std::vector<std::byte> record_;
    std::size_t open_groups_ = 0;
};

} // namespace ostore

#endif
