#include "service/spectra.h"

#include "service/read.h"
#include "service/tree_access.h"
#include "service/tree_making.h"

#include "device/inventory.h"
#include "framework/arena.h"
#include "framework/packed_entries.h"
#include "framework/tree.h"

#include "oc_chmon.h"

#include <charconv>
#include <cmath>
#include <set>
#include <utility>

namespace service {

namespace {

/* The number that a text is; none where it is not one, or not a finite one. */
template <typename number> std::optional<number> number_of(std::string_view text)
{
    number value{};
    const char *const end = text.data() + text.size();
    const auto read_to = std::from_chars(text.data(), end, value);
    if (text.empty() || read_to.ec != std::errc() || read_to.ptr != end)
        return std::nullopt;
    if constexpr (std::is_floating_point_v<number>)
        if (!std::isfinite(value))
            return std::nullopt;
    return value;
}

/* A leaf of one of the containers below an entry: what is configured, else what the device tells. */
std::string_view leaf_below(const dtf_datatree &entry, std::initializer_list<const char *> containers, const char *leaf)
{
    for (const char *const name : containers) {
        const dtf_datatree *const container = framework::find_child(entry, name);
        const std::string_view value = container == nullptr ? std::string_view() : leaf_value(*container, leaf);
        if (!value.empty())
            return value;
    }
    return {};
}

chart::channel channel_of(const dtf_datatree &entry)
{
    return {number_of<std::uint64_t>(leaf_value(entry, "lower-frequency")),
            number_of<std::uint64_t>(leaf_value(entry, "upper-frequency")),
            number_of<double>(leaf_below(entry, {"state"}, "power"))};
}

chart::monitor monitor_of(const dtf_datatree &entry)
{
    chart::monitor made;
    made.name = leaf_value(entry, "name");
    made.port = leaf_below(entry, {"state", "config"}, "monitor-port");
    if (const dtf_datatree *const channels = framework::find_child(entry, "channels"))
        for (const dtf_datatree &child : children_of(*channels))
            if (std::string_view(child.tag) == "channel")
                made.channels.push_back(channel_of(child));
    return made;
}

std::vector<chart::monitor> monitors_of(dtf_datatree reply, framework::arena &memory)
{
    framework::unpack_all(memory, reply);
    std::vector<chart::monitor> monitors;
    for (const dtf_datatree &top : children_of(reply))
        for (const dtf_datatree &entry : children_of(top))
            monitors.push_back(monitor_of(entry));
    return monitors;
}

/* A filter for the name of one monitor and all that it has; without a name, for the names of all of them. */
dtf_datatree filter_for(const char *name, framework::arena &memory)
{
    const char *const ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
    dtf_datatree filter{};
    dtf_datatree &entry = add_node(memory, add_node(memory, filter, monitors_tag, ns), "channel-monitor", ns);
    if (name == nullptr)
        add_node(memory, entry, "name", ns);
    else
        add_leaf(memory, entry, "name", name);
    return filter;
}

} // namespace

std::vector<chart::monitor> read_spectra(const plugin &mapper, const device::folder &device, const walk_options &walks)
{
    const ostore::read_transaction state(device.database());
    framework::arena memory;
    return monitors_of(read(mapper, state, nullptr, kind_get, memory, walks), memory);
}

chart::monitor read_spectrum(const plugin &mapper, const device::folder &device, const std::string &name,
                             const walk_options &walks)
{
    const ostore::read_transaction state(device.database());
    framework::arena memory;
    const dtf_datatree all_names = filter_for(nullptr, memory);
    std::set<std::string> known;
    for (chart::monitor &one : monitors_of(read(mapper, state, &all_names, kind_get, memory, walks), memory))
        known.insert(std::move(one.name));
    /* One that the device has, but that is neither configured nor measured, has an empty spectrum. */
    for (std::string &one : device::list_monitors(state))
        known.insert(std::move(one));
    if (!known.contains(name)) {
        std::string list;
        for (const std::string &one : known)
            list += (list.empty() ? "" : ", ") + one;
        throw unknown_monitor(name + ": no such monitor; the device has " + (list.empty() ? "none" : list));
    }
    const dtf_datatree filter = filter_for(name.c_str(), memory);
    const auto monitors = monitors_of(read(mapper, state, &filter, kind_get, memory, walks), memory);
    return monitors.empty() ? chart::monitor{name, {}, {}} : monitors.front();
}

} // namespace service
