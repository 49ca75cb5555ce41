/// The inventory file: {"inventory": ["0/1-CHMON-BST", "0/1-CHMON-PRE"]}.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace device {

/// What messages say of the names that there are.
inline constexpr const char *monitor_name_form = "(0/SLOT-CHMON-BST or 0/SLOT-CHMON-PRE, SLOT 1 to 3)";

/// Whether a name is one of the six that a monitor can have: slots 1 to 3 have a controller with a booster (BST) and a
/// pre-amplifier (PRE). A second spelling of one, such as 0/01-CHMON-PRE, is none.
bool is_monitor_name(std::string_view name);

/// The names of an inventory file, in its order. Throws invalid_document, naming `file` and what is wrong, for anything
/// but one member "inventory" that is an array of monitor names without doubles.
std::vector<std::string> read_inventory(std::string_view text, std::string_view file);

} // namespace device
