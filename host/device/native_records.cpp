#include "device/native_records.h"

namespace device {

void native_records::add_interface(std::span<const native_leaf> leaves)
{
    interfaces_.push_back({interface_key(leaves), entry_of(native_tag::interface_configuration, leaves)});
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
    // The count first: a reader makes room for all slices before it has fetched one.
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
    // What the documents do not speak of stays as it is.
    if (replaces_interfaces_) {
        replace(interfaces_table, interfaces_);
    }
    if (replaces_ports_) {
        replace(ports_table, ports_);
        replace(slices_table, slices_);
    }
}

} // namespace device
