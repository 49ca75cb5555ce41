/*
 * The inventory's items: a channel monitor is present where the store holds an item under its name.
 *
 * Item of monitor 0/1-CHMON-BST: key /oper/inventory/gl/entity/0%2f1-CHMON-BST/attrib/inv_basic_parcel; its parcel
 * holds a group inv_phy_entity_basic_info, in it the text field Name.
 */
#ifndef OSTORE_INVENTORY_ITEM_H
#define OSTORE_INVENTORY_ITEM_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ostore {

/* What the keys of all inventory items begin with. */
constexpr std::string_view inventory_prefix = "/oper/inventory/gl/entity/";

/*
 * Key of a monitor's item. Throws store_error for a name that is empty, makes the key too long, or cannot be told from
 * another one in a key ("%2f" stands for the first "/").
 */
std::string inventory_item_key(std::string_view monitor);

/* The parcel of a monitor's item. Throws parcel_error for a name that holds a zero byte. */
std::vector<std::byte> inventory_item_record(std::string_view monitor);

/* The monitor whose item has this key, or nothing where the key is no inventory item's. */
std::optional<std::string> inventory_item_monitor(std::string_view key);

} // namespace ostore

#endif
