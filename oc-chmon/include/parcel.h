/*
 * The parcel library: decoding of the system database's self-describing records.
 *
 * A parcel is a block of bytes: a header that names its schema and version, then a sequence of tokens, each with a
 * type, a field name and a value, closed by a token of type PARCEL_TOKEN_END. Only the library reads the bytes; its
 * users see tokens. It checks every length before it reads and answers malformed bytes with a nonzero code.
 *
 * Compiles alone as C11 and as C++20.
 */
#ifndef PARCEL_H
#define PARCEL_H

#include "dtf.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Type of a token: which member of `value` holds, or how the token steers the walk. Other values occur and have no
 * text form. */
typedef uint32_t parcel_token_type_td;

#define PARCEL_TOKEN_INT8 0u
#define PARCEL_TOKEN_UINT8 1u
#define PARCEL_TOKEN_INT16 2u
#define PARCEL_TOKEN_UINT16 3u
#define PARCEL_TOKEN_INT32 4u
#define PARCEL_TOKEN_UINT32 5u
#define PARCEL_TOKEN_IPV4 8u
/* A signed 32-bit number that names a value (value.i32). */
#define PARCEL_TOKEN_ENUM 9u
#define PARCEL_TOKEN_BOOLEAN 10u
/* Text in value.text. */
#define PARCEL_TOKEN_TEXT 12u
/* Text in second_text. */
#define PARCEL_TOKEN_SECOND_TEXT 13u
/* Opens a nested group; its members follow, up to PARCEL_TOKEN_GROUP_END. */
#define PARCEL_TOKEN_GROUP 14u
#define PARCEL_TOKEN_GROUP_END 15u
/* Ends the record's token sequence. */
#define PARCEL_TOKEN_END 18u

/* One decoded token. Its texts belong to it until parcel_generic_free_token_allocations(). */
typedef struct parcel_token_td {
    parcel_token_type_td type;
    union {
        int8_t i8;
        uint8_t u8;
        int16_t i16;
        uint16_t u16;
        int32_t i32;
        uint32_t u32;
        uint32_t ipv4;    /* as inet_ntoa_r() takes it */
        uint32_t boolean; /* nonzero is true */
        const char *text; /* NUL-terminated */
    } value;
    const char *second_text; /* NUL-terminated, or null */
    const char *field_name;  /* NUL-terminated, or null where the token has no name */
} parcel_token_td;

/* What a parcel's header says. `schema` points into the parcel. */
typedef struct parcel_header_td {
    const char *schema;
    int32_t major;
    int32_t minor;
} parcel_header_td;

/* State of a walk over a parcel's tokens: the library's own, 128 bytes, on the caller's stack. */
typedef struct parcel_walk_td {
    uint64_t state[16];
} parcel_walk_td;

/* Reads the header. 0 and *header filled, or a code and *header untouched. */
faultno parcel_header_info(const void *parcel, parcel_header_td *header);

/* Starts a walk over a parcel of `length` bytes, which must stay until the walk ends. 0 when the walk is ready and must
 * be ended with parcel_generic_destroy(), or a code and nothing to end. */
faultno parcel_generic_init(const void *parcel, uint32_t length, parcel_walk_td *walk);

/* Decodes the next token. 0 and a token to be released with parcel_generic_free_token_allocations(), or a code and
 * nothing to release. */
faultno parcel_generic_token(parcel_walk_td *walk, parcel_token_td *token);

/* Releases the texts a decoded token holds. Once per decoded token. */
void parcel_generic_free_token_allocations(parcel_token_td *token);

/* Ends a walk. Once per walk that parcel_generic_init() made ready. */
void parcel_generic_destroy(parcel_walk_td *walk);

/* Dotted-decimal text of an IPv4 address as a token holds it; valid until the same thread's next call. */
const char *inet_ntoa_r(uint32_t address);

#ifdef __cplusplus
}
#endif

#endif
