/* How a controller's name becomes a monitor's, for the peers: "Ots0/2/0/1" is monitor 0/2-CHMON-PRE. */
#ifndef PEERS_NAMING_H
#define PEERS_NAMING_H

#include <cstdio>
#include <cstdlib>
#include <string>

namespace peers {

struct monitor_name {
    std::string name;
    std::string port;
};

/* The peers take every controller; only our own program asks the inventory. */
inline monitor_name monitor_of(const char *controller)
{
    const char rack = controller[3], slot = controller[5], port = controller[9];
    const std::string prefix = {rack, '/', slot};
    return {prefix + (port == '0' ? "-CHMON-BST" : "-CHMON-PRE"), prefix + "-OtsCtrl-0/" + port};
}

/* Hundredths as a number with two decimals, the way one writes it first. */
inline std::string power_of(const char *hundredths)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", std::atof(hundredths) / 100);
    return text;
}

} // namespace peers

#endif
