/* What an edit asks for, monitor by monitor, before anything is known of the device. */
#ifndef SERVICE_EDIT_REQUEST_H
#define SERVICE_EDIT_REQUEST_H

#include "service/tree_access.h"

#include "dtf.h"

#include <optional>
#include <string>
#include <vector>

namespace service {

/* The operations of RFC 6241, section 7.2, as dtf_datatree.operation numbers them; `none` is one of a whole edit only
 * (default-operation). */
enum class edit_operation { merge, replace, create, remove_existing, remove, none };

/* Whether something is to go: "delete" (remove_existing), which insists that it is there, or "remove". */
inline bool is_removal(edit_operation operation)
{
    return operation == edit_operation::remove_existing || operation == edit_operation::remove;
}

/* A node that the edit names; `operation` only where the node has one of its own. */
struct edit_node {
    std::optional<edit_operation> operation;
    std::string value;
};

/* One list entry of the edit. What is not there is not named. */
struct monitor_edit {
    std::string name;
    std::optional<edit_operation> operation;
    edit_node key;
    std::optional<edit_node> config;
    std::optional<edit_node> config_name;
    std::optional<edit_node> config_port;
};

struct edit_request {
    /* That of the container of all monitors. */
    std::optional<edit_operation> operation;
    std::vector<monitor_edit> monitors;
};

/* /channel-monitors/channel-monitor[name='...'] */
std::string monitor_path(const std::string &name);

/*
 * Reads the edit out of its tree, the channel-monitors container. Throws netconf_error for what has the wrong form and
 * is no matter of the mapping: a list entry, container or leaf that is there twice, a container with a value, a leaf
 * with children, what is no configuration. Entries without their key and unknown elements are passed over, for the
 * plug-in judges those.
 */
edit_request read_edit(const dtf_datatree &monitors);

} // namespace service

#endif
