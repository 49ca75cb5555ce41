/*
 * The mapping from one libyang tree to another: with the calls made for one node each (typed), and with the call that
 * takes a path, as one writes it first (natural).
 */
#ifndef PEERS_LIBYANG_MAPPING_H
#define PEERS_LIBYANG_MAPPING_H

#include "naming.h"

#include <libyang/libyang.h>
#include <stdexcept>
#include <string_view>

namespace peers {

inline void expect(LY_ERR result)
{
    if (result != LY_SUCCESS)
        throw std::runtime_error("libyang failed");
}

inline ly_ctx *make_context(const char *folder)
{
    ly_ctx *context = nullptr;
    expect(ly_ctx_new(folder, LY_CTX_NO_YANGLIBRARY, &context));
    for (const char *module : {"openconfig-channel-monitor", "Vantra-TALIN-controller-kestrel-ots-oper"}) {
        if (ly_ctx_load_module(context, module, nullptr, nullptr) == nullptr)
            throw std::runtime_error("libyang does not load a module");
    }
    return context;
}

inline lyd_node *parse(const ly_ctx *context, const char *file, LYD_FORMAT format)
{
    lyd_node *tree = nullptr;
    expect(lyd_parse_data_path(context, file, format, LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &tree));
    return tree;
}

inline const char *value_in(const lyd_node *parent, std::string_view tag)
{
    for (const lyd_node *child = lyd_child(parent); child != nullptr; child = child->next) {
        if (tag == child->schema->name)
            return lyd_get_value(child);
    }
    return nullptr;
}

inline const lyd_node *child_of(const lyd_node *parent, std::string_view tag)
{
    const lyd_node *child = lyd_child(parent);
    while (child != nullptr && tag != child->schema->name)
        child = child->next;
    return child;
}

inline void add_leaf(lyd_node *parent, const char *tag, const char *value)
{
    expect(lyd_new_term(parent, nullptr, tag, value, 0, nullptr));
}

inline lyd_node *add_inner(lyd_node *parent, const char *tag)
{
    lyd_node *node = nullptr;
    expect(lyd_new_inner(parent, nullptr, tag, 0, &node));
    return node;
}

inline void map_slice_typed(const lyd_node *slice, lyd_node *channels)
{
    const char *const lower = value_in(slice, "lower-frequency");
    const char *const upper = value_in(slice, "upper-frequency");
    lyd_node *channel = nullptr;
    expect(lyd_new_list(channels, nullptr, "channel", 0, &channel, lower, upper));
    lyd_node *const state = add_inner(channel, "state");
    add_leaf(state, "lower-frequency", lower);
    add_leaf(state, "upper-frequency", upper);
    if (const char *const power = value_in(slice, "rx-power"))
        add_leaf(state, "power", power_of(power).c_str());
}

inline lyd_node *map_typed(const ly_ctx *context, const lyd_node *native)
{
    const lys_module *const module = ly_ctx_get_module_implemented(context, "openconfig-channel-monitor");
    lyd_node *monitors = nullptr;
    expect(lyd_new_inner(nullptr, module, "channel-monitors", 0, &monitors));
    for (const lyd_node *port = lyd_child(lyd_child(native)); port != nullptr; port = port->next) {
        const monitor_name named = monitor_of(value_in(port, "name"));
        lyd_node *monitor = nullptr;
        expect(lyd_new_list(monitors, nullptr, "channel-monitor", 0, &monitor, named.name.c_str()));
        lyd_node *const state = add_inner(monitor, "state");
        add_leaf(state, "name", named.name.c_str());
        add_leaf(state, "monitor-port", named.port.c_str());
        lyd_node *const channels = add_inner(monitor, "channels");
        const lyd_node *slice = lyd_child(child_of(port, "ots-spectrum-info"));
        for (; slice != nullptr; slice = slice->next)
            map_slice_typed(slice, channels);
    }
    return monitors;
}

inline void add_path(lyd_node *tree, const std::string &path, const char *value)
{
    expect(lyd_new_path(tree, nullptr, path.c_str(), value, LYD_NEW_PATH_UPDATE, nullptr));
}

inline lyd_node *map_natural(const ly_ctx *context, const lyd_node *native)
{
    const std::string top = "/openconfig-channel-monitor:channel-monitors";
    lyd_node *monitors = nullptr;
    expect(lyd_new_path(nullptr, context, top.c_str(), nullptr, 0, &monitors));
    for (const lyd_node *port = lyd_child(lyd_child(native)); port != nullptr; port = port->next) {
        const monitor_name named = monitor_of(value_in(port, "name"));
        const std::string monitor = top + "/channel-monitor[name='" + named.name + "']";
        add_path(monitors, monitor + "/state/name", named.name.c_str());
        add_path(monitors, monitor + "/state/monitor-port", named.port.c_str());
        const lyd_node *slice = lyd_child(child_of(port, "ots-spectrum-info"));
        for (; slice != nullptr; slice = slice->next) {
            const char *const lower = value_in(slice, "lower-frequency");
            const char *const upper = value_in(slice, "upper-frequency");
            const std::string state =
                monitor + "/channels/channel[lower-frequency='" + lower + "'][upper-frequency='" + upper + "']/state";
            add_path(monitors, state + "/lower-frequency", lower);
            add_path(monitors, state + "/upper-frequency", upper);
            if (const char *const power = value_in(slice, "rx-power"))
                add_path(monitors, state + "/power", power_of(power).c_str());
        }
    }
    return monitors;
}

} // namespace peers

#endif
