/// Whole native documents on their way into the store.
#pragma once

#include "device/native_entry.h"
#include "device/native_tables.h"
#include "ostore/transaction.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace device {

/// Native documents as records of the store (native_tables.h): made outside of a transaction, for that takes long, and
/// stored within one.
class native_records
{
  public:
    /// From now on store() replaces the whole interface configuration, or all operational data of the ports.
    void begin_interfaces() { replaces_interfaces_ = true; }
    void begin_ports() { replaces_ports_ = true; }

    /// An entry of the interface configuration, as native_writer::put_interface has it.
    void add_interface(std::span<const native_leaf> leaves);

    /// A port with its own leaves, then its slices one by one.
    void begin_port(std::string_view name, std::span<const native_leaf> leaves);
    void add_slice(std::span<const native_leaf> leaves);
    void end_port();

    bool has_interfaces() const { return replaces_interfaces_; }
    bool has_ports() const { return replaces_ports_; }
    std::size_t interface_count() const { return interfaces_.size(); }
    std::size_t port_count() const { return ports_.size(); }
    std::size_t slice_count() const { return slice_count_; }

    /// Replaces what the documents replace. Nothing is lasting before the transaction's commit().
    void store(ostore::write_transaction &txn) const;

  private:
    struct record {
        std::string key;
        std::string value;
    };

    /// Makes a record of the slices gathered so far, if there are any.
    void end_chunk();

    bool replaces_interfaces_ = false;
    bool replaces_ports_ = false;
    std::vector<record> interfaces_;
    std::vector<record> ports_;
    std::vector<record> slices_;
    std::size_t slice_count_ = 0;

    // The port that is being added.
    std::string port_name_;
    std::string port_entry_;
    flat_writer chunk_;
    std::uint32_t chunk_count_ = 0;
    std::uint32_t port_slices_ = 0;
};

} // namespace device
