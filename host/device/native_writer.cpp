#include "device/native_writer.h"

#include "device/native_reader.h"

#include <algorithm>

namespace device {

native_writer::native_writer(ostore::write_transaction &txn)
    : txn_(txn), interfaces_(txn.store().table(interfaces_table))
{
}

void native_writer::put_interface(std::span<const native_leaf> leaves)
{
    txn_.put(interfaces_, interface_key(leaves), entry_of(native_tag::interface_configuration, leaves));
}

void native_writer::merge_interface(std::span<const native_leaf> leaves)
{
    std::vector<native_leaf> merged(leaves.begin(), leaves.end());
    const auto stored = native_reader(txn_).interface(key_leaf(leaves, native_tag::active),
                                                      key_leaf(leaves, native_tag::interface_name));
    for (const native_leaf &leaf : leaves_of(stored.value_or(std::string_view()))) {
        if (std::none_of(leaves.begin(), leaves.end(), [&leaf](const auto &given) { return given.tag == leaf.tag; })) {
            merged.push_back(leaf);
        }
    }
    put_interface(merged);
}

bool native_writer::remove_interface(std::string_view active, std::string_view name)
{
    return txn_.erase(interfaces_, interface_key(active, name));
}

} // namespace device
