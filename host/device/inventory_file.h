/// The inventory file: {"inventory": ["0/1-CHMON-BST", "0/1-CHMON-PRE"]}.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace device {

/// Whether a name has the form 0/SLOT-CHMON-BST or 0/SLOT-CHMON-PRE, at most 19 characters, the slot without leading
/// zeros (0/01-CHMON-PRE would be a second name of the monitor 0/1-CHMON-PRE).
bool is_monitor_name(std::string_view name);

/// The names of an inventory file, in its order. Throws invalid_document, naming `file` and what is wrong, for anything
/// but one member "inventory" that is an array of monitor names without doubles.
std::vector<std::string> read_inventory(const std::string &text, std::string_view file);

} // namespace device
