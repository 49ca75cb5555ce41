/*
 * What an edit comes to on a given device: the rules of RFC 6241, section 7.2.
 *
 * The configuration of a monitor is one thing natively, so it is there as a whole or not at all: list entry, config,
 * config/name and config/monitor-port. The leaves follow from the key. Hence an edit that names the key alone
 * configures the monitor, and none of the rest can go while the entry stays.
 */
#ifndef SERVICE_EDIT_RESOLUTION_H
#define SERVICE_EDIT_RESOLUTION_H

#include "service/edit_request.h"
#include "service/monitor_directory.h"

#include <string>
#include <vector>

namespace service {

/* What becomes of a monitor: `operation` is merge, replace, create or remove. */
struct monitor_change {
    std::string name;
    edit_operation operation;
};

/*
 * The changes, those of monitors that a replace or delete of everything takes along first, then in the edit's order.
 * `monitors` must know all configured ones and those that the edit names. Throws netconf_error where the edit cannot
 * be carried out; what it asks for may be there already.
 */
std::vector<monitor_change> resolve_edit(const edit_request &edit, edit_operation default_operation,
                                         const monitor_directory &monitors);

} // namespace service

#endif
