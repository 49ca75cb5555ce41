/// The inventory of a device: which channel monitors it has.
#pragma once

#include "ostore/transaction.h"

#include <string>
#include <string_view>
#include <vector>

namespace device {

/// The monitors in the inventory, in the order of their items' keys.
std::vector<std::string> list_monitors(const ostore::transaction &txn);

/// Adds a monitor; false when it was there. Throws std::invalid_argument for what is no monitor name.
bool add_monitor(ostore::write_transaction &txn, std::string_view name);

/// Removes a monitor; false when it was not there. Throws std::invalid_argument for what is no monitor name.
bool remove_monitor(ostore::write_transaction &txn, std::string_view name);

/// Makes the inventory exactly these monitors. Throws std::invalid_argument for what is no monitor name.
void replace_monitors(ostore::write_transaction &txn, const std::vector<std::string> &names);

} // namespace device
