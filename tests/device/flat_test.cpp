// The flat form: what is written comes back, and whatever the bytes are nothing is read beyond them.
#include "device/flat.h"

#include <gtest/gtest.h>
#include <vector>

using namespace device;

namespace {

flat_writer example()
{
    flat_writer entry;
    entry.add(native_tag::interface_configuration, 4, std::nullopt);
    entry.add(native_tag::active, 0, "act");
    entry.add(native_tag::interface_name, 0, "Ots0/1/0/0");
    entry.add(native_tag::description, 0, "");
    entry.add(native_tag::shutdown, 0, std::nullopt);
    return entry;
}

TEST(flat, gives_back_what_was_written_and_refuses_what_does_not_fit)
{
    flat_writer again;
    flat_node node;
    flat_writer written = example();
    written.add(native_tag::description, 255, std::string(flat_writer::longest_value, 'x'));
    EXPECT_THROW(written.add(native_tag::description, 0, std::string(flat_writer::longest_value + 1, 'x')),
                 std::length_error);
    EXPECT_THROW(written.add(native_tag::ots_port, 256, std::nullopt), std::length_error);
    for (flat_cursor cursor(written.record()); cursor.next(node);) {
        const std::string_view value = node.value == nullptr ? "" : node.value;
        EXPECT_EQ(value.size(), node.value_length);
        again.add(node.tag, node.child_count, node.value == nullptr ? std::nullopt : std::optional(value));
    }
    EXPECT_EQ(again.record(), written.record());
}

// Every cut and every changed byte: the cursor ends, refuses, or gives nodes whose values lie within the record.
TEST(flat, never_leaves_a_damaged_record)
{
    const std::string sound = example().record();
    int records = 0;
    const auto walk = [&records](const std::string &bytes) {
        // Exactly these bytes in their own block, so that a sanitizer sees a read behind them.
        const std::vector<char> block(bytes.begin(), bytes.end());
        const std::string_view record(block.data(), block.size());
        flat_node node;
        try {
            for (flat_cursor cursor(record); cursor.next(node);) {
                if (node.value != nullptr) {
                    EXPECT_LE(node.value + std::strlen(node.value), record.data() + record.size());
                }
                EXPECT_NE(text_of(node.tag), nullptr);
            }
        } catch (const damaged_record &) {
        }
        ++records;
    };
    for (std::size_t place = 0; place < sound.size(); ++place) {
        walk(sound.substr(0, place));
        for (int value = 0; value < 256; ++value) {
            std::string changed = sound;
            changed[place] = static_cast<char>(value);
            walk(changed);
        }
    }
    EXPECT_EQ(records, static_cast<int>(257 * sound.size()));
    EXPECT_GT(records, 9000);
}

} // namespace
