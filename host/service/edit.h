/* An edit of a device's configuration in OpenConfig terms. */
#ifndef SERVICE_EDIT_H
#define SERVICE_EDIT_H

#include "service/edit_request.h"
#include "service/native_changes.h"
#include "service/plugin.h"
#include "service/walk_options.h"

#include "device/folder.h"

#include <string>
#include <vector>

namespace service {

/* The default-operation named "merge", "replace" or "none". Throws std::invalid_argument for another name. */
edit_operation default_operation_named(const std::string &name);

struct edit_options {
    /* The edit's document, XML or JSON, channel-monitors with or without <config> around it; "-" is standard input. */
    std::string document;
    /* What a node does that has no operation of its own and none above it that it would take over. */
    edit_operation default_operation = edit_operation::merge;
    /* Only find out what would change. */
    bool dry_run = false;
    walk_options walks;
};

/*
 * Carries the edit out in one transaction, whose commit is on the disk on return, and gives the native changes, none
 * where everything is so already. After any error (netconf_error, plugin_error) nothing has changed. Edits of several
 * processes wait for each other.
 */
std::vector<entry_change> edit_device(const plugin &mapper, device::folder &device, const edit_options &options);

} // namespace service

#endif
