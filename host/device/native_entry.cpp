#include "device/native_entry.h"

#include <algorithm>

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
    std::vector<native_leaf> ordered(leaves.begin(), leaves.end());
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto &a, const auto &b) { return a.tag < b.tag; });
    flat_writer writer;
    add_entry(writer, root, ordered);
    return writer.record();
}

std::string_view key_leaf(std::span<const native_leaf> leaves, native_tag tag)
{
    const auto leaf = std::find_if(leaves.begin(), leaves.end(), [tag](const auto &each) { return each.tag == tag; });
    if (leaf == leaves.end() || !leaf->value || leaf->value->empty()) {
        throw std::invalid_argument(std::string("native entry without key ") + text_of(tag));
    }
    return *leaf->value;
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
    // Leaves only: of the native lists none has a container inside that the store keeps with the entry.
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
