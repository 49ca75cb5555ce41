/* The parcel library: what is written is read back, and hostile bytes are answered, never followed. */
#include "plugin/in_children.h"
#include "record_reader.h"

#include "ostore/parcel_writer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <map>
#include <random>

namespace {

using ostore::parcel_writer;
using record = std::vector<std::byte>;

/* Every type with and without a name, groups in groups, texts of odd lengths, types without a text form. */
record rich_record()
{
    const std::array<std::byte, 3> bytes{std::byte{1}, std::byte{2}, std::byte{3}};
    parcel_writer to("inv_basic", 3, -1);
    to.int8("a", -5).uint8("b", 251).int16("c", -300).uint16("d", 65535).int32("e", -70000).uint32("f", 4000000000u);
    to.ipv4("g", inet_addr("10.0.0.1"))
        .enumeration("h", -9)
        .boolean("i", 7)
        .group("info")
        .text("Name", "0/1-CHMON-BST");
    to.group("").second_text("", "").end_group().raw(6, "opaque", bytes).end_group().raw(16, "", {});
    return to.finish();
}

/* One line per token: type, name and value, as a reader sees them. */
std::string describe(const parcel_token_td &token)
{
    const auto &value = token.value;
    const std::map<unsigned, std::int64_t> numbers{{0, value.i8},  {1, value.u8},  {2, value.i16}, {3, value.u16},
                                                   {4, value.i32}, {5, value.u32}, {9, value.i32}, {10, value.boolean}};
    const auto number = numbers.find(token.type);
    const std::string text = token.type == PARCEL_TOKEN_TEXT          ? value.text
                             : token.type == PARCEL_TOKEN_SECOND_TEXT ? token.second_text
                             : token.type == PARCEL_TOKEN_IPV4        ? inet_ntoa_r(value.ipv4)
                             : number != numbers.end()                ? std::to_string(number->second)
                                                                      : "";
    return std::to_string(token.type) + " " + (token.field_name ? token.field_name : "-") + " " + text;
}

TEST(parcel, every_type_is_read_back)
{
    const record bytes = rich_record();
    parcel_header_td header{};
    ASSERT_EQ(parcel_header_info(bytes.data(), &header), 0u);
    EXPECT_EQ(header.schema + (" " + std::to_string(header.major)) + std::to_string(header.minor), "inv_basic 3-1");
    std::string lines;
    EXPECT_EQ(record_reader().read(bytes.data(), bytes.size(),
                                   [&lines](const parcel_token_td &token) { lines += describe(token) + '|'; }),
              0u);
    EXPECT_EQ(lines, "0 a -5|1 b 251|2 c -300|3 d 65535|4 e -70000|5 f 4000000000|8 g 10.0.0.1|9 h -9|10 i 7|14 info |"
                     "12 Name 0/1-CHMON-BST|14 - |13 - |15 - |6 opaque |15 - |16 - |18 - |");
}

/* Cuts, changed bytes, and lengths that do not fit. */
void read_each_damage(record_reader &reader)
{
    const record bytes = rich_record();
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_NE(reader.read(bytes.data(), size), 0u) << "cut at " << size;
    record changed = bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (unsigned change = 1; change < 256; ++change) {
            changed[i] = bytes[i] ^ static_cast<std::byte>(change);
            reader.read(changed.data(), changed.size());
        }
        changed[i] = bytes[i];
    }
    const auto number = [&](std::size_t at) {
        std::uint32_t value = 0;
        std::memcpy(&value, &bytes[at], 4);
        return value;
    };
    for (std::size_t at = ostore::parcel_header_size; at < bytes.size();
         at += ostore::parcel_token_head_size + number(at + 4) + number(at + 8))
        for (const std::size_t field : {at + 4, at + 8})
            for (const std::uint32_t length : {0u, 1u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
                changed = bytes;
                std::memcpy(&changed[field], &length, 4);
                EXPECT_EQ(reader.read(changed.data(), changed.size()) == 0, length == number(field))
                    << "length " << length << " at " << field;
            }
}

/* Two to five changes at once, with a cut: seeded, so that a failure comes back. */
void read_random_damage(record_reader &reader, unsigned seed)
{
    const record bytes = rich_record();
    std::mt19937 random(seed);
    for (int i = 0; i < 92'000; ++i) {
        record changed = bytes;
        for (unsigned n = 2 + random() % 4; n > 0; --n)
            changed[random() % changed.size()] = static_cast<std::byte>(random());
        reader.read(changed.data(), random() % 4 != 0 ? changed.size() : random() % changed.size());
    }
}

/* A byte read beyond a record ends the child process that reads it. */
TEST(parcel, hostile_records_are_answered)
{
    auto &reader = shared_with_children<record_reader>();
    const std::size_t overreads = count_crashes(11, 11, [&reader](std::size_t i) {
        i == 0 ? read_each_damage(reader) : read_random_damage(reader, static_cast<unsigned>(i));
    });
    std::printf("variants=%ju overreads=%zu loops=%ju unreleased=%ju odd_codes=%ju\n", reader.variants, overreads,
                reader.loops, reader.unreleased, reader.odd_codes);
    EXPECT_GE(reader.variants, 1'000'000u);
    EXPECT_EQ(overreads, 0u);
    EXPECT_TRUE(reader.faultless());
}

TEST(parcel, misuse_and_unbalanced_groups_are_refused)
{
    const record bytes = rich_record();
    parcel_walk_td state{};
    parcel_token_td token{};
    parcel_header_td header{};
    EXPECT_EQ(parcel_header_info(nullptr, &header), ostore::fault_parcel_arguments);
    EXPECT_EQ(parcel_generic_init(nullptr, 100, &state), ostore::fault_parcel_arguments);
    EXPECT_EQ(parcel_generic_token(&state, &token), ostore::fault_parcel_ended) << "never started";
    ASSERT_EQ(parcel_generic_init(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &state), 0u);
    parcel_generic_destroy(&state);
    EXPECT_EQ(parcel_generic_token(&state, &token), ostore::fault_parcel_ended) << "after its end";

    record_reader reader;
    for (const auto type : {PARCEL_TOKEN_GROUP_END, PARCEL_TOKEN_GROUP}) {
        const record unbalanced = parcel_writer("s", 1, 0).raw(type, "", {}).finish();
        EXPECT_EQ(reader.read(unbalanced.data(), unbalanced.size()), ostore::fault_parcel_group);
    }
    EXPECT_THROW(parcel_writer(std::string(48, 's'), 1, 0), ostore::parcel_error);
    EXPECT_THROW(parcel_writer("s", 1, 0).group("g").finish(), ostore::parcel_error);
    EXPECT_THROW(parcel_writer("s", 1, 0).end_group(), ostore::parcel_error);
    EXPECT_THROW(parcel_writer("s", 1, 0).text("n", std::string_view("a\0b", 3)), ostore::parcel_error);
}

} // namespace
