#include "ostore/inventory_item.h"

#include "ostore/database.h"
#include "ostore/parcel_writer.h"

namespace ostore {

namespace {

constexpr std::string_view item_suffix = "/attrib/inv_basic_parcel";
constexpr std::string_view escaped_slash = "%2f";
/* ENTITY-MIB's IANAPhysicalClass (RFC 6933): module. */
constexpr std::int32_t class_module = 9;

[[noreturn]] void refuse(std::string_view monitor, const std::string &why)
{
    throw store_error(store_fault::bad_key, "inventory: name '" + std::string(monitor) + "' " + why);
}

} // namespace

std::string inventory_item_key(std::string_view monitor)
{
    if (monitor.empty())
        refuse(monitor, "is empty");
    const std::size_t slash = monitor.find('/');
    if (monitor.substr(0, slash).find(escaped_slash) != std::string_view::npos)
        refuse(monitor, "holds '%2f'");
    std::string entity(monitor);
    if (slash != std::string_view::npos)
        entity.replace(slash, 1, escaped_slash);
    std::string key = std::string(inventory_prefix) + entity + std::string(item_suffix);
    if (key.size() > database::max_key_size)
        refuse(monitor.substr(0, 20), "... is too long");
    return key;
}

std::vector<std::byte> inventory_item_record(std::string_view monitor)
{
    return parcel_writer("inv_basic_parcel", 1, 0)
        .group("inv_phy_entity_basic_info")
        .text("Description", "Optical channel monitor")
        .enumeration("PhysicalClass", class_module)
        .text("Name", monitor)
        .boolean("FieldReplaceable", 0)
        .end_group()
        .finish();
}

std::optional<std::string> inventory_item_monitor(std::string_view key)
{
    if (key.size() <= inventory_prefix.size() + item_suffix.size() || !key.starts_with(inventory_prefix) ||
        !key.ends_with(item_suffix))
        return std::nullopt;
    key.remove_prefix(inventory_prefix.size());
    key.remove_suffix(item_suffix.size());
    std::string monitor(key);
    if (const std::size_t at = monitor.find(escaped_slash); at != std::string::npos)
        monitor.replace(at, escaped_slash.size(), "/");
    return monitor;
}

} // namespace ostore
