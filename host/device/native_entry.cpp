#include "device/native_entry.h"

namespace device {

void add_entry(flat_writer &writer, native_tag root, std::span<const native_leaf> leaves)
{
    writer.add(root, leaves.size(), std::nullopt);
    for (const native_leaf &leaf : leaves) {
        writer.add(leaf.tag, 0, leaf.value);
    }
}

std::string entry_of(native_tag root, std::span<const native_leaf> leaves)
{
    flat_writer writer;
    add_entry(writer, root, leaves);
    return writer.record();
}

std::vector<native_leaf> leaves_of(std::string_view entry)
{
    std::vector<native_leaf> leaves;
    flat_cursor cursor(entry);
    flat_node node;
    cursor.next(node); // the entry itself
    while (cursor.next(node)) {
        leaves.push_back({node.tag, std::nullopt});
        if (node.value != nullptr) {
            leaves.back().value = std::string_view(node.value, node.value_length);
        }
    }
    return leaves;
}

std::string_view checked_entry(std::string_view entry, native_tag root)
{
    flat_cursor cursor(entry);
    flat_node node;
    if (!cursor.next(node) || node.tag != root) {
        refuse_record("a native entry of another kind than its table's");
    }
    unsigned due = node.child_count;
    while (cursor.next(node)) {
        if (due-- == 0 || node.child_count != 0) {
            refuse_record("a native entry with more nodes than it says");
        }
    }
    if (due != 0) {
        refuse_record("a native entry with fewer nodes than it says");
    }
    return entry;
}

} // namespace device
