/* The mapping from one pugixml document to another. */
#ifndef PEERS_PUGIXML_MAPPING_H
#define PEERS_PUGIXML_MAPPING_H

#include "naming.h"

#include <pugixml.hpp>

namespace peers {

inline void add_leaf(pugi::xml_node parent, const char *tag, const char *value)
{
    parent.append_child(tag).text().set(value);
}

inline void map_slice(pugi::xml_node slice, pugi::xml_node channel)
{
    const char *const lower = slice.child_value("lower-frequency");
    const char *const upper = slice.child_value("upper-frequency");
    add_leaf(channel, "lower-frequency", lower);
    pugi::xml_node state = channel.append_child("state");
    add_leaf(state, "lower-frequency", lower);
    add_leaf(state, "upper-frequency", upper);
    if (const pugi::xml_node power = slice.child("rx-power"))
        add_leaf(state, "power", power_of(power.child_value()).c_str());
    add_leaf(channel, "upper-frequency", upper);
}

inline void map(const pugi::xml_document &native, pugi::xml_document &mapped)
{
    pugi::xml_node monitors = mapped.append_child("channel-monitors");
    monitors.append_attribute("xmlns") = "http://openconfig.net/yang/channel-monitor";
    for (const pugi::xml_node port : native.child("ots-oper").child("ots-ports").children("ots-port")) {
        const monitor_name named = monitor_of(port.child_value("name"));
        pugi::xml_node monitor = monitors.append_child("channel-monitor");
        add_leaf(monitor, "name", named.name.c_str());
        pugi::xml_node state = monitor.append_child("state");
        add_leaf(state, "name", named.name.c_str());
        add_leaf(state, "monitor-port", named.port.c_str());
        pugi::xml_node channels = monitor.append_child("channels");
        for (const pugi::xml_node slice : port.child("ots-spectrum-info").children("spectrum-slice-power-info"))
            map_slice(slice, channels.append_child("channel"));
    }
}

} // namespace peers

#endif
