/* The mapping between trees of standard containers, as one writes it first. */
#ifndef PEERS_CONTAINER_MAPPING_H
#define PEERS_CONTAINER_MAPPING_H

#include "naming.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace peers {

struct tree_node {
    std::string tag, value;
    std::vector<tree_node> children;

    tree_node &add(std::string name, std::string text = {})
    {
        return children.emplace_back(tree_node{std::move(name), std::move(text), {}});
    }

    const tree_node *child(std::string_view name) const
    {
        const auto found = std::ranges::find(children, name, &tree_node::tag);
        return found == children.end() ? nullptr : &*found;
    }
};

inline void map_slice(const tree_node &slice, tree_node &channel)
{
    const std::string &lower = slice.child("lower-frequency")->value;
    const std::string &upper = slice.child("upper-frequency")->value;
    channel.add("lower-frequency", lower);
    tree_node &state = channel.add("state");
    state.add("lower-frequency", lower);
    state.add("upper-frequency", upper);
    if (const tree_node *const power = slice.child("rx-power"))
        state.add("power", power_of(power->value.c_str()));
    channel.add("upper-frequency", upper);
}

/* `native`: the ots-oper node. */
inline tree_node map(const tree_node &native)
{
    tree_node monitors{"channel-monitors", {}, {}};
    for (const tree_node &port : native.children.front().children) {
        const monitor_name named = monitor_of(port.child("name")->value.c_str());
        tree_node &monitor = monitors.add("channel-monitor");
        monitor.add("name", named.name);
        tree_node &state = monitor.add("state");
        state.add("name", named.name);
        state.add("monitor-port", named.port);
        tree_node &channels = monitor.add("channels");
        for (const tree_node &slice : port.child("ots-spectrum-info")->children)
            map_slice(slice, channels.add("channel"));
    }
    return monitors;
}

} // namespace peers

#endif
