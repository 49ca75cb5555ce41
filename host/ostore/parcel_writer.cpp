#include "ostore/parcel_writer.h"

#include "ostore/parcel_format.h"

#include <bit>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace ostore {

namespace {

/* Refuses a text with a zero byte: readers would see only what stands before it. */
void check_text(std::string_view text, std::string_view what)
{
    if (text.find('\0') != std::string_view::npos)
        throw parcel_error("record: " + std::string(what) + " holds a zero byte");
    if (text.size() >= std::numeric_limits<std::uint32_t>::max())
        throw parcel_error("record: " + std::string(what) + " is longer than 4 GiB");
}

} // namespace

parcel_writer::parcel_writer(std::string_view schema, std::int32_t major, std::int32_t minor)
{
    check_text(schema, "schema name");
    if (schema.empty() || schema.size() >= parcel_schema_size)
        throw parcel_error("record: schema name of " + std::to_string(schema.size()) + " bytes, 1 to " +
                           std::to_string(parcel_schema_size - 1) + " are possible");
    for (const unsigned char byte : parcel_magic)
        append(byte, 1);
    append(parcel_format_version, 4);
    append(static_cast<std::uint32_t>(major), 4);
    append(static_cast<std::uint32_t>(minor), 4);
    append(schema);
    record_.resize(parcel_header_size);
}

parcel_writer &parcel_writer::int8(std::string_view name, std::int8_t value)
{
    return number(PARCEL_TOKEN_INT8, name, static_cast<std::uint8_t>(value));
}

parcel_writer &parcel_writer::uint8(std::string_view name, std::uint8_t value)
{
    return number(PARCEL_TOKEN_UINT8, name, value);
}

parcel_writer &parcel_writer::int16(std::string_view name, std::int16_t value)
{
    return number(PARCEL_TOKEN_INT16, name, static_cast<std::uint16_t>(value));
}

parcel_writer &parcel_writer::uint16(std::string_view name, std::uint16_t value)
{
    return number(PARCEL_TOKEN_UINT16, name, value);
}

parcel_writer &parcel_writer::int32(std::string_view name, std::int32_t value)
{
    return number(PARCEL_TOKEN_INT32, name, static_cast<std::uint32_t>(value));
}

parcel_writer &parcel_writer::uint32(std::string_view name, std::uint32_t value)
{
    return number(PARCEL_TOKEN_UINT32, name, value);
}

parcel_writer &parcel_writer::ipv4(std::string_view name, std::uint32_t address)
{
    const auto bytes = std::bit_cast<std::array<std::byte, 4>>(address);
    return raw(PARCEL_TOKEN_IPV4, name, bytes);
}

parcel_writer &parcel_writer::enumeration(std::string_view name, std::int32_t value)
{
    return number(PARCEL_TOKEN_ENUM, name, static_cast<std::uint32_t>(value));
}

parcel_writer &parcel_writer::boolean(std::string_view name, std::uint32_t value)
{
    return number(PARCEL_TOKEN_BOOLEAN, name, value);
}

parcel_writer &parcel_writer::text(std::string_view name, std::string_view value)
{
    return characters(PARCEL_TOKEN_TEXT, name, value);
}

parcel_writer &parcel_writer::second_text(std::string_view name, std::string_view value)
{
    return characters(PARCEL_TOKEN_SECOND_TEXT, name, value);
}

parcel_writer &parcel_writer::group(std::string_view name)
{
    head(PARCEL_TOKEN_GROUP, name, 0);
    ++open_groups_;
    return *this;
}

parcel_writer &parcel_writer::end_group()
{
    if (open_groups_ == 0)
        throw parcel_error("record: a group is closed that was not opened");
    head(PARCEL_TOKEN_GROUP_END, {}, 0);
    --open_groups_;
    return *this;
}

parcel_writer &parcel_writer::raw(parcel_token_type_td type, std::string_view name, std::span<const std::byte> value)
{
    head(type, name, value.size());
    record_.insert(record_.end(), value.begin(), value.end());
    return *this;
}

std::vector<std::byte> parcel_writer::finish()
{
    if (open_groups_ != 0)
        throw parcel_error("record: " + std::to_string(open_groups_) + " groups are left open");
    head(PARCEL_TOKEN_END, {}, 0);
    return std::exchange(record_, {});
}

/* A token's head and its name. */
void parcel_writer::head(parcel_token_type_td type, std::string_view name, std::size_t value_size)
{
    check_text(name, "field name");
    append(type, 4);
    append(name.empty() ? 0 : static_cast<std::uint32_t>(name.size() + 1), 4);
    append(static_cast<std::uint32_t>(value_size), 4);
    if (!name.empty()) {
        append(name);
        append(0, 1);
    }
}

parcel_writer &parcel_writer::number(parcel_token_type_td type, std::string_view name, std::uint32_t value)
{
    const auto size = static_cast<std::size_t>(parcel_value_size(type));
    head(type, name, size);
    append(value, size);
    return *this;
}

parcel_writer &parcel_writer::characters(parcel_token_type_td type, std::string_view name, std::string_view value)
{
    check_text(value, "text of field '" + std::string(name) + "'");
    head(type, name, value.size() + 1);
    append(value);
    append(0, 1);
    return *this;
}

void parcel_writer::append(std::uint32_t number, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        record_.push_back(static_cast<std::byte>(number >> (8 * i)));
}

void parcel_writer::append(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    record_.insert(record_.end(), bytes.begin(), bytes.end());
}

} // namespace ostore
