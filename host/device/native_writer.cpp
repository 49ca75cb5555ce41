#include "device/native_writer.h"

namespace device {

native_writer::native_writer(ostore::write_transaction &txn)
    : txn_(txn), interfaces_(txn.store().table(interfaces_table))
{
}

void native_writer::put_interface(std::span<const native_leaf> leaves)
{
    txn_.put(interfaces_, interface_key(leaves), entry_of(native_tag::interface_configuration, leaves));
}

bool native_writer::remove_interface(std::string_view active, std::string_view name)
{
    return txn_.erase(interfaces_, interface_key(active, name));
}

} // namespace device
