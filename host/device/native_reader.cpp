#include "device/native_reader.h"

namespace device {

native_reader::native_reader(const ostore::transaction &txn)
    : txn_(txn),
      interfaces_(txn.store().table(interfaces_table)),
      ports_(txn.store().table(ports_table)),
      slices_(txn.store().table(slices_table))
{
}

ots_port native_reader::as_port(std::string_view name, std::string_view record)
{
    ots_port port{name, 0, {}};
    if (record.size() < slice_count_size) {
        refuse_record("a port's record ends early");
    }
    std::memcpy(&port.slice_count, record.data(), slice_count_size);
    port.entry = checked_entry(record.substr(slice_count_size), native_tag::ots_port);
    return port;
}

std::optional<std::string_view> native_reader::interface(std::string_view active, std::string_view name) const
{
    const std::string key = interface_key(active, name);
    if (key.size() > ostore::database::max_key_size) {
        return std::nullopt; // no entry has such a key, and a request may ask for anything
    }
    const auto entry = txn_.get(interfaces_, key);
    return entry ? std::optional(checked_entry(*entry, native_tag::interface_configuration)) : std::nullopt;
}

std::optional<ots_port> native_reader::port(std::string_view name) const
{
    if (name.empty() || name.size() > ostore::database::max_key_size) {
        return std::nullopt;
    }
    // A cursor, since it hands out the stored key: that lives as long as the transaction, the caller's name may not.
    ostore::cursor at(txn_, ports_, name);
    return at.next() && at.key() == name ? std::optional(as_port(at.key(), at.value())) : std::nullopt;
}

slice_cursor::slice_cursor(const native_reader &reader, const ots_port &port)
    : records_(reader.txn_, reader.slices_, slices_prefix(port.name)), chunk_({}), slices_due_(port.slice_count)
{
}

bool slice_cursor::next_chunk()
{
    // The last chunk is through: all that the port promised must have come.
    if (!records_.next()) {
        if (slices_due_ != 0 || leaves_due_ != 0) {
            refuse_count();
        }
        return false;
    }
    chunk_ = flat_cursor(records_.value());
    return true;
}

void slice_cursor::refuse_count() { refuse_record("a port's slices are not those it says it has"); }

} // namespace device
