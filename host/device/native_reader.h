/// Reading a device's native data from its database, no more of it than is asked for.
#pragma once

#include "device/native_entry.h"
#include "device/native_tables.h"
#include "ostore/store_error.h"
#include "ostore/transaction.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace device {

/// Does work on the native data of a transaction; the damage that it meets is told as its store's: by a store_error.
template <class Work> auto naming_store(const ostore::transaction &txn, Work &&work)
{
    try {
        return work();
    } catch (const damaged_record &damage) {
        throw ostore::store_error(ostore::store_fault::damaged, "store " + txn.store().file() + ": " + damage.what());
    }
}

/// One port without its slices. All of it points into the store, and lives as long as the transaction.
struct ots_port {
    std::string_view name;
    std::uint32_t slice_count;
    std::string_view entry; ///< flat: the ots-port node, then its child_count leaves
};

/// Reads native data as one transaction sees it. What it hands out is checked to be well formed and lives as long as
/// the transaction (in a write transaction: until its next change). Throws damaged_record for a record that is not.
class native_reader
{
  public:
    /// Keeps the transaction by reference.
    explicit native_reader(const ostore::transaction &txn);

    /// Calls visit(std::string_view entry) for each configured interface in the order of the keys: the flat form of
    /// the interface-configuration node and its leaves.
    template <class Visit> void each_interface(Visit &&visit) const
    {
        for (ostore::cursor at(txn_, interfaces_); at.next();) {
            visit(checked_entry(at.value(), native_tag::interface_configuration));
        }
    }

    /// The same for one interface, none when it is not configured.
    std::optional<std::string_view> interface(std::string_view active, std::string_view name) const;

    /// Calls visit(const ots_port &) for each port, in the order of the names. Fetches no slices.
    template <class Visit> void each_port(Visit &&visit) const
    {
        for (ostore::cursor at(txn_, ports_); at.next();) {
            visit(as_port(at.key(), at.value()));
        }
    }

    /// One port, none when there is none of that name.
    std::optional<ots_port> port(std::string_view name) const;

  private:
    friend class slice_cursor;

    static ots_port as_port(std::string_view name, std::string_view record);

    const ostore::transaction &txn_;
    ostore::table_id interfaces_;
    ostore::table_id ports_;
    ostore::table_id slices_;
};

/// The spectrum of one port, node after node: a spectrum-slice-power-info node, its child_count leaves, the next one.
/// Gives exactly port.slice_count entries of that shape or throws damaged_record, so that a caller can make room first.
class slice_cursor
{
  public:
    /// The reader's transaction must outlive the cursor.
    slice_cursor(const native_reader &reader, const ots_port &port);

    /// The next node into `node`; false when all slices are through.
    bool next(flat_node &node)
    {
        while (!chunk_.next(node)) {
            if (!next_chunk()) {
                return false;
            }
        }
        if ((node.tag == native_tag::spectrum_slice_power_info) != (leaves_due_ == 0)) {
            refuse_count();
        }
        if (leaves_due_ != 0) {
            --leaves_due_;
            return true;
        }
        if (slices_due_ == 0) {
            refuse_count();
        }
        --slices_due_;
        leaves_due_ = node.child_count;
        return true;
    }

  private:
    bool next_chunk();
    [[noreturn]] static void refuse_count();

    ostore::cursor records_;
    flat_cursor chunk_;
    std::uint32_t slices_due_;
    std::uint32_t leaves_due_ = 0;
};

} // namespace device
