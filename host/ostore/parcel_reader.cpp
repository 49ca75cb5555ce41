/*
 * The reading half of the parcel library (parcel.h) over the form that parcel_format.h lays out.
 *
 * Invariants: a byte is read only after the length that covers it was compared with what is left of the record; every
 * token consumes at least its head, so a walk of n bytes ends within n / 12 tokens; a fault leaves the walk where it
 * was and hands out nothing. Texts of a token are heap copies, so that they outlive neither more nor less than the
 * token, whatever becomes of the record.
 */
#include "ostore/faults.h"
#include "ostore/parcel_format.h"
#include "ostore/usage.h"

#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace ostore {

namespace {

/* What a parcel_walk_td holds. */
struct walk_state {
    std::uint64_t mark; /* tells a running walk from an ended one */
    const unsigned char *at;
    std::size_t left;
    std::uint64_t open_groups;
};
static_assert(sizeof(walk_state) <= sizeof(parcel_walk_td) && std::is_trivially_copyable_v<walk_state>);

constexpr std::uint64_t running_mark = 0x6b6c61776c637270u;

/* A token as it lies in the record, lengths checked. */
struct raw_token {
    parcel_token_type_td type;
    const unsigned char *name;
    std::size_t name_size;
    const unsigned char *value;
    std::size_t value_size;
};

using heap_text = std::unique_ptr<const char[]>;

std::uint32_t little_endian(const unsigned char *bytes, std::size_t size)
{
    std::uint32_t number = 0;
    for (std::size_t i = size; i > 0; --i)
        number = (number << 8) | bytes[i - 1];
    return number;
}

/* Whether the bytes are a text: a zero byte last and only there. */
bool is_text(const unsigned char *bytes, std::size_t size)
{
    return size > 0 && std::memchr(bytes, 0, size) == bytes + size - 1;
}

/* Cuts the next token off the record by its lengths and compares them with its type. */
faultno read_raw(const walk_state &walk, raw_token &raw)
{
    if (walk.left < parcel_token_head_size)
        return fault_parcel_truncated;
    const std::size_t room = walk.left - parcel_token_head_size;
    raw.type = little_endian(walk.at, 4);
    raw.name_size = little_endian(walk.at + 4, 4);
    raw.value_size = little_endian(walk.at + 8, 4);
    if (raw.name_size > room || raw.value_size > room - raw.name_size)
        return fault_parcel_truncated;
    raw.name = walk.at + parcel_token_head_size;
    raw.value = raw.name + raw.name_size;

    if (raw.name_size != 0 && !is_text(raw.name, raw.name_size))
        return fault_parcel_token;
    const int wanted = parcel_value_size(raw.type);
    if (wanted == parcel_text_value)
        return is_text(raw.value, raw.value_size) ? FAULT_SUCCESS : fault_parcel_token;
    if (wanted >= 0 && raw.value_size != static_cast<std::size_t>(wanted))
        return fault_parcel_token;
    return FAULT_SUCCESS;
}

/* Keeps the count of open groups; a fault where the token would unbalance them. */
faultno follow_groups(parcel_token_type_td type, std::uint64_t &open_groups)
{
    if (type == PARCEL_TOKEN_GROUP)
        ++open_groups;
    const bool closes = type == PARCEL_TOKEN_GROUP_END;
    if ((closes && open_groups == 0) || (type == PARCEL_TOKEN_END && open_groups != 0))
        return fault_parcel_group;
    if (closes)
        --open_groups;
    return FAULT_SUCCESS;
}

/* A heap copy of a text of the record, its terminator included. */
heap_text copy_text(const unsigned char *bytes, std::size_t size)
{
    auto copy = std::make_unique<char[]>(size);
    std::memcpy(copy.get(), bytes, size);
    return copy;
}

void set_number(const raw_token &raw, parcel_token_td &token)
{
    const std::uint32_t number = little_endian(raw.value, raw.value_size);
    switch (raw.type) {
    case PARCEL_TOKEN_INT8:
    case PARCEL_TOKEN_UINT8:
        token.value.u8 = static_cast<std::uint8_t>(number);
        break;
    case PARCEL_TOKEN_INT16:
    case PARCEL_TOKEN_UINT16:
        token.value.u16 = static_cast<std::uint16_t>(number);
        break;
    case PARCEL_TOKEN_IPV4:
        /* Address bytes keep their order in memory, as in a struct in_addr. */
        std::memcpy(&token.value.ipv4, raw.value, sizeof token.value.ipv4);
        break;
    default:
        token.value.u32 = number;
        break;
    }
}

/* Turns a checked raw token into one that owns its texts. */
parcel_token_td decode(const raw_token &raw)
{
    const int size = parcel_value_size(raw.type);
    heap_text name = raw.name_size != 0 ? copy_text(raw.name, raw.name_size) : nullptr;
    heap_text text = size == parcel_text_value ? copy_text(raw.value, raw.value_size) : nullptr;

    parcel_token_td token{};
    token.type = raw.type;
    token.field_name = name.release();
    if (raw.type == PARCEL_TOKEN_TEXT)
        token.value.text = text.release();
    else if (raw.type == PARCEL_TOKEN_SECOND_TEXT)
        token.second_text = text.release();
    else if (size > 0)
        set_number(raw, token);
    return token;
}

/* Frees a text that a token owned. */
void drop(const char *&text)
{
    heap_text(text).reset();
    text = nullptr;
}

/* The token after the walk's place; on success the walk stands behind it. Throws std::bad_alloc, and nothing happened.
 */
faultno next_token(walk_state &walk, parcel_token_td &token)
{
    raw_token raw{};
    faultno rc = read_raw(walk, raw);
    std::uint64_t open_groups = walk.open_groups;
    if (rc == FAULT_SUCCESS)
        rc = follow_groups(raw.type, open_groups);
    if (rc != FAULT_SUCCESS)
        return rc;
    token = decode(raw);
    const std::size_t used = parcel_token_head_size + raw.name_size + raw.value_size;
    walk.at += used;
    walk.left -= used;
    walk.open_groups = open_groups;
    if (raw.type == PARCEL_TOKEN_END)
        walk.mark = 0;
    return FAULT_SUCCESS;
}

} // namespace

} // namespace ostore

faultno parcel_header_info(const void *parcel, parcel_header_td *header)
{
    using namespace ostore;
    if (parcel == nullptr || header == nullptr)
        return fault_parcel_arguments;
    const auto *bytes = static_cast<const unsigned char *>(parcel);
    if (std::memcmp(bytes, parcel_magic.data(), parcel_magic.size()) != 0)
        return fault_parcel_header;
    if (little_endian(bytes + 4, 4) != parcel_format_version)
        return fault_parcel_version;
    const unsigned char *schema = bytes + parcel_schema_offset;
    if (schema[0] == 0 || std::memchr(schema, 0, parcel_schema_size) == nullptr)
        return fault_parcel_header;
    header->schema = reinterpret_cast<const char *>(schema);
    header->major = static_cast<std::int32_t>(little_endian(bytes + 8, 4));
    header->minor = static_cast<std::int32_t>(little_endian(bytes + 12, 4));
    return FAULT_SUCCESS;
}

faultno parcel_generic_init(const void *parcel, uint32_t length, parcel_walk_td *walk)
{
    using namespace ostore;
    if (parcel == nullptr || walk == nullptr)
        return fault_parcel_arguments;
    if (length < parcel_header_size)
        return fault_parcel_truncated;
    parcel_header_td header{};
    if (const faultno rc = parcel_header_info(parcel, &header); rc != FAULT_SUCCESS)
        return rc;
    const walk_state state{running_mark, static_cast<const unsigned char *>(parcel) + parcel_header_size,
                           length - parcel_header_size, 0};
    std::memcpy(walk, &state, sizeof state);
    count(&usage_counts::walks_started);
    return FAULT_SUCCESS;
}

faultno parcel_generic_token(parcel_walk_td *walk, parcel_token_td *token)
{
    using namespace ostore;
    if (walk == nullptr || token == nullptr)
        return fault_parcel_arguments;
    walk_state state{};
    std::memcpy(&state, walk, sizeof state);
    if (state.mark != running_mark)
        return fault_parcel_ended;
    try {
        const faultno rc = next_token(state, *token);
        if (rc != FAULT_SUCCESS)
            return rc;
    } catch (const std::bad_alloc &) {
        return fault_parcel_memory;
    }
    std::memcpy(walk, &state, sizeof state);
    count(&usage_counts::tokens_decoded);
    return FAULT_SUCCESS;
}

void parcel_generic_free_token_allocations(parcel_token_td *token)
{
    using namespace ostore;
    if (token == nullptr)
        return;
    if (token->type == PARCEL_TOKEN_TEXT)
        drop(token->value.text);
    drop(token->second_text);
    drop(token->field_name);
    count(&usage_counts::tokens_released);
}

void parcel_generic_destroy(parcel_walk_td *walk)
{
    if (walk == nullptr)
        return;
    *walk = parcel_walk_td{};
    ostore::count(&ostore::usage_counts::walks_ended);
}
