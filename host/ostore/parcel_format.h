/*
 * The binary form of a parcel, shared by reader and writer. Numbers are little-endian; nothing is aligned or padded
 * but the schema name.
 *
 *   header, 64 bytes
 *     offset size
 *          0    4  magic: 'P' 'R' 'C' 'L'
 *          4    4  format version, unsigned: 1
 *          8    4  schema version, major, signed
 *         12    4  schema version, minor, signed
 *         16   48  schema name, 1 to 47 bytes, filled up with zero bytes (at least one)
 *
 *   tokens, one after the other, the last one of type 18 (end)
 *          0    4  type, unsigned
 *          4    4  n: bytes of the field name with its closing zero; 0: the token has no name
 *          8    4  v: bytes of the value
 *         12    n  field name, a zero byte last and only there
 *     12 + n    v  value
 *
 *   value, by type
 *       0, 1       v = 1  8-bit number
 *       2, 3       v = 2  16-bit number
 *       4, 5, 9    v = 4  32-bit number
 *       8          v = 4  IPv4 address, its four bytes in the order they are written: 10, 0, 0, 1
 *      10          v = 4  boolean, nonzero is true
 *      12, 13      v > 0  text, a zero byte last and only there
 *      14, 15, 18  v = 0  group, end of group, end of record; groups are balanced
 *      any other   any v  opaque: carried, not decoded
 *
 * The header is of a fixed size because its reader is not told how long the record is.
 */
#ifndef OSTORE_PARCEL_FORMAT_H
#define OSTORE_PARCEL_FORMAT_H

#include "parcel.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace ostore {

constexpr std::size_t parcel_header_size = 64;
constexpr std::array<unsigned char, 4> parcel_magic{'P', 'R', 'C', 'L'};
constexpr std::uint32_t parcel_format_version = 1;
constexpr std::size_t parcel_schema_offset = 16;
constexpr std::size_t parcel_schema_size = parcel_header_size - parcel_schema_offset;
constexpr std::size_t parcel_token_head_size = 12;

/* The one length a value of this type may have; -1 for a text, -2 for a type whose value is not decoded. */
constexpr int parcel_text_value = -1;
constexpr int parcel_opaque_value = -2;
constexpr int parcel_value_size(parcel_token_type_td type)
{
    switch (type) {
    case PARCEL_TOKEN_INT8:
    case PARCEL_TOKEN_UINT8:
        return 1;
    case PARCEL_TOKEN_INT16:
    case PARCEL_TOKEN_UINT16:
        return 2;
    case PARCEL_TOKEN_INT32:
    case PARCEL_TOKEN_UINT32:
    case PARCEL_TOKEN_IPV4:
    case PARCEL_TOKEN_ENUM:
    case PARCEL_TOKEN_BOOLEAN:
        return 4;
    case PARCEL_TOKEN_TEXT:
    case PARCEL_TOKEN_SECOND_TEXT:
        return parcel_text_value;
    case PARCEL_TOKEN_GROUP:
    case PARCEL_TOKEN_GROUP_END:
    case PARCEL_TOKEN_END:
        return 0;
    default:
        return parcel_opaque_value;
    }
}

} // namespace ostore

#endif
