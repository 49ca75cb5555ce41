#include "service/monitor_directory.h"

#include "service/native_mapping.h"
#include "service/tree_access.h"
#include "service/tree_making.h"

#include "device/native_reader.h"
#include "framework/arena.h"
#include "framework/tree.h"

#include "oc_chmon.h"

#include <set>

namespace service {

namespace {

/* Interfaces and monitors have names of one to one: others, which a conversion would only guess at, are no monitors'.
 */
bool can_carry_monitor(const plugin &mapper, const std::string &interface)
{
    return mapper.controller_of(mapper.monitor_of(interface)) == interface;
}

std::set<std::string> configured_interfaces(const plugin &mapper, const ostore::transaction &txn)
{
    std::set<std::string> interfaces;
    const auto take = [&](std::string_view entry) {
        const auto leaves = device::leaves_of(entry);
        const std::string name(device::key_leaf(leaves, device::native_tag::interface_name));
        if (device::key_leaf(leaves, device::native_tag::active) == configured_activity &&
            can_carry_monitor(mapper, name))
            interfaces.insert(name);
    };
    device::naming_store(txn, [&] { device::native_reader(txn).each_interface(take); });
    return interfaces;
}

/* What the plug-in makes of an interface that is in force; a root without children where that is nothing. */
dtf_datatree map_interface(const plugin &mapper, const std::string &interface, framework::arena &memory,
                           const walk_options &walks)
{
    dtf_datatree native{};
    const char *const ns = CHMON_NS_VANTRA_TALIN_IFMGR_CFG;
    dtf_datatree &top = add_node(memory, native, "interface-configurations", ns);
    dtf_datatree &entry = add_node(memory, top, "interface-configuration", ns);
    add_leaf(memory, entry, "active", configured_activity);
    add_leaf(memory, entry, "interface-name", interface);
    return map_native(mapper, native, "interface " + interface, memory, 0, walks);
}

void enter(monitor_directory &into, const dtf_datatree &reply, const std::string &interface, bool configured)
{
    for (const dtf_datatree &top : children_of(reply)) {
        for (const dtf_datatree &monitor : children_of(top)) {
            const dtf_datatree *const config = framework::find_child(monitor, "config");
            const std::string_view port = config == nullptr ? std::string_view() : leaf_value(*config, "monitor-port");
            into[std::string(leaf_value(monitor, "name"))] = {interface, std::string(port), configured};
        }
    }
}

} // namespace

monitor_directory find_monitors(const plugin &mapper, const ostore::transaction &txn,
                                const std::vector<std::string> &names, const walk_options &walks)
{
    const std::set<std::string> configured = configured_interfaces(mapper, txn);
    std::set<std::string> interfaces = configured;
    for (const std::string &name : names) {
        const std::string interface = mapper.controller_of(name);
        if (mapper.monitor_of(interface) == name)
            interfaces.insert(interface);
    }
    monitor_directory monitors;
    for (const std::string &interface : interfaces) {
        framework::arena memory;
        enter(monitors, map_interface(mapper, interface, memory, walks), interface, configured.contains(interface));
    }
    return monitors;
}

} // namespace service
