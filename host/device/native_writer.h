/// Single changes of a device's native data, as an edit makes them.
#pragma once

#include "device/native_entry.h"
#include "device/native_tables.h"
#include "ostore/transaction.h"

#include <span>
#include <string_view>

namespace device {

/// Changes the interface configuration of a device within a transaction. Operational data is the device's own: no edit
/// changes it, only a load replaces it (native_records.h).
class native_writer
{
  public:
    /// Keeps the transaction by reference; nothing is lasting before its commit().
    explicit native_writer(ostore::write_transaction &txn);

    /// Stores an entry, keys and all, in place of one with the same keys. Throws std::invalid_argument when a key leaf
    /// is missing. The leaves must be valid by the schema: they are stored as they are.
    void put_interface(std::span<const native_leaf> leaves);

    /// Removes an entry; false when there was none.
    bool remove_interface(std::string_view active, std::string_view name);

  private:
    ostore::write_transaction &txn_;
    ostore::table_id interfaces_;
};

} // namespace device
