/* Which monitors a device has, which of them are configured, and by which native interfaces. */
#ifndef SERVICE_MONITOR_DIRECTORY_H
#define SERVICE_MONITOR_DIRECTORY_H

#include "service/plugin.h"
#include "service/walk_options.h"

#include "ostore/transaction.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace service {

/* A monitor of the device: the plug-in maps its interface, were it configured, to this name and port. */
struct known_monitor {
    /* Its interface, an entry whose key `active` is configured_activity. */
    std::string interface;
    std::string port;
    bool configured = false;
};

/* Of the two values of the native key `active`, the one of entries that are in force; the plug-in writes no other. */
inline constexpr std::string_view configured_activity = "act";

/* By name. */
using monitor_directory = std::map<std::string, known_monitor>;

/*
 * The configured monitors, and those of `names` that the device has. A name that no interface of the device maps to
 * (not in the inventory, not of the naming scheme, a second spelling of another name) is left out. The inventory must
 * be served from `txn`. Throws walk_fault and what reading the store throws.
 */
monitor_directory find_monitors(const plugin &mapper, const ostore::transaction &txn,
                                const std::vector<std::string> &names, const walk_options &walks);

} // namespace service

#endif
