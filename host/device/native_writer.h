/// Changing a device's native data within a transaction of its database.
#pragma once

#include "device/native_entry.h"
#include "device/native_tables.h"
#include "ostore/transaction.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace device {

/// Changes the interface configuration of a device within a transaction.
class native_writer
{
  public:
    /// Keeps the transaction by reference; nothing is lasting before its commit().
    explicit native_writer(ostore::write_transaction &txn);

    /// Stores an entry in place of one with the same keys. Throws std::invalid_argument when a key leaf is missing. The
    /// leaves must be valid by the schema: they are stored as they are.
    void put_interface(std::span<const native_leaf> leaves);

    /// As put_interface, and keeps those leaves of the entry stored so far that are not given.
    void merge_interface(std::span<const native_leaf> leaves);

    /// Removes an entry; false when there was none.
    bool remove_interface(std::string_view active, std::string_view name);

  private:
    ostore::write_transaction &txn_;
    ostore::table_id interfaces_;
};

/// Native documents as records: made outside of a transaction, for that takes long, and stored within one.
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
