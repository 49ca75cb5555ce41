#include "device/native_writer.h"

#include "device/native_reader.h"

#include <algorithm>
#include <stdexcept>

namespace device {
namespace {

std::string_view key_leaf(std::span<const native_leaf> leaves, native_tag tag)
{
    const auto leaf = std::find_if(leaves.begin(), leaves.end(), [tag](const auto &each) { return each.tag == tag; });
    if (leaf == leaves.end() || !leaf->value || leaf->value->empty()) {
        throw std::invalid_argument(std::string("interface-configuration without ") + text_of(tag));
    }
    return *leaf->value;
}

std::string key_of(std::span<const native_leaf> leaves)
{
    return interface_key(key_leaf(leaves, native_tag::active), key_leaf(leaves, native_tag::interface_name));
}

} // namespace

native_writer::native_writer(ostore::write_transaction &txn)
    : txn_(txn), interfaces_(txn.store().table(interfaces_table))
{
}

void native_writer::put_interface(std::span<const native_leaf> leaves)
{
    txn_.put(interfaces_, key_of(leaves), entry_of(native_tag::interface_configuration, leaves));
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

void native_records::add_interface(std::span<const native_leaf> leaves)
{
    interfaces_.push_back({key_of(leaves), entry_of(native_tag::interface_configuration, leaves)});
}

void native_records::begin_port(std::string_view name, std::span<const native_leaf> leaves)
{
    port_name_ = name;
    port_entry_ = entry_of(native_tag::ots_port, leaves);
    chunk_count_ = 0;
    port_slices_ = 0;
}

void native_records::add_slice(std::span<const native_leaf> leaves)
{
    add_entry(chunk_, native_tag::spectrum_slice_power_info, leaves);
    if (++port_slices_ % slices_per_record == 0) {
        end_chunk();
    }
}

void native_records::end_chunk()
{
    if (!chunk_.record().empty()) {
        slices_.push_back({slices_key(port_name_, chunk_count_++), chunk_.record()});
        chunk_.clear();
    }
}

void native_records::end_port()
{
    end_chunk();
    std::string value(reinterpret_cast<const char *>(&port_slices_), slice_count_size);
    ports_.push_back({port_name_, value + port_entry_});
    slice_count_ += port_slices_;
}

void native_records::store(ostore::write_transaction &txn) const
{
    const auto replace = [&txn](const char *table, const std::vector<record> &records) {
        const ostore::table_id id = txn.store().table(table);
        txn.erase_all(id);
        for (const record &each : records) {
            txn.put(id, each.key, each.value);
        }
    };
    if (replaces_interfaces_) {
        replace(interfaces_table, interfaces_);
    }
    if (replaces_ports_) {
        replace(ports_table, ports_);
        replace(slices_table, slices_);
    }
}

} // namespace device
