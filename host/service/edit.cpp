#include "service/edit.h"

#include "service/edit_resolution.h"
#include "service/netconf_error.h"
#include "service/request_plan.h"
#include "service/tree_access.h"
#include "service/tree_making.h"
#include "service/walk.h"

#include "framework/arena.h"
#include "framework/document.h"
#include "framework/edit_operations.h"
#include "framework/schema_facts.h"
#include "framework/tree.h"

#include "oc_chmon.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace service {

namespace {

/* Of the plug-in's request kinds, the one of edits. */
constexpr std::uint32_t edit_kind = 1;

/* ------------------------------------------------------------------------------------------- the document --------- */

bool is_config_wrapper(const dtf_datatree &node)
{
    /* XML's <config> is taken off by the reader. Its JSON form names the module that defines edit-config. */
    return std::string_view(node.tag) == "config" && node.ns != nullptr && std::string_view(node.ns) == "ietf-netconf";
}

/* What is around the container hides its schema from the reader, so list keys took over operations as other leaves do.
 */
void free_keys(const dtf_datatree &monitors)
{
    for (const dtf_datatree &entry : children_of(monitors)) {
        dtf_datatree *const key = framework::find_child(entry, "name");
        if (key != nullptr && (key->flags & DTF_FLAG_OP_SET) == 0)
            key->operation = 0;
    }
}

/* The edit's one top container; null where the document holds none. */
dtf_datatree *monitors_in(const dtf_datatree &document)
{
    dtf_datatree *found = nullptr;
    for (dtf_datatree &top : children_of(document)) {
        if (is_config_wrapper(top) && document.child_count == 1) {
            dtf_datatree *const monitors = monitors_in(top);
            if (monitors != nullptr)
                free_keys(*monitors);
            return monitors;
        }
        const std::string path = std::string("/") + top.tag;
        if (top.ns == nullptr || framework::find_module_by_namespace(top.ns) == nullptr)
            throw application_error("unknown-namespace", path,
                                    top.ns == nullptr ? "has no namespace"
                                                      : "no model has namespace " + std::string(top.ns));
        if (path != monitors_path || !framework::same_namespace(top.ns, CHMON_NS_OPENCONFIG_CHANNEL_MONITOR))
            throw application_error("unknown-element", path, "only /channel-monitors can be edited");
        if (found != nullptr)
            throw application_error("bad-element", path, "given more than once");
        found = &top;
    }
    return found;
}

/* ------------------------------------------------------------------------------------------- the plug-in's part --- */

/* A place for those faults that the plug-in gives none: the first node that is so. */
std::string suspect(const dtf_datatree &monitors, faultno code)
{
    if (code == FAULT_INVALID_ARGS && dtf_map_is_request_delete(&monitors) != 0)
        return monitors_path;
    for (const dtf_datatree &entry : children_of(monitors)) {
        const std::string name(leaf_value(entry, "name"));
        const dtf_datatree *const config = framework::find_child(entry, "config");
        if (code == FAULT_TREE_ERROR && children_of(entry).empty())
            return std::string(monitors_path) + "/channel-monitor/name";
        if (code == FAULT_INVALID_ARGS && config != nullptr && !children_of(*config).empty() &&
            dtf_map_is_request_delete(config) != 0)
            return monitor_path(name) + "/config";
    }
    return {};
}

/* Lets the plug-in judge the edit as it came: elements, namespaces, keys. */
void check_by_plugin(const plugin &mapper, const dtf_datatree &monitors, framework::arena &memory,
                     const walk_options &walks)
{
    try {
        const request_plan checked(mapper, monitors, edit_kind, memory, walks);
    } catch (const walk_fault &fault) {
        throw to_netconf_error(fault, suspect(monitors, fault.code()));
    }
}

/* The edit once more, as the changes it comes to: an operation per list entry, and all of the entry. Below a root. */
dtf_datatree plain_request(const std::vector<monitor_change> &changes, framework::arena &memory)
{
    const char *const ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
    dtf_datatree document{};
    dtf_datatree &monitors = add_node(memory, document, monitors_tag, ns);
    for (const monitor_change &change : changes) {
        dtf_datatree &entry = add_node(memory, monitors, "channel-monitor", ns);
        framework::set_operation(entry, static_cast<std::uint32_t>(change.operation));
        add_leaf(memory, entry, "name", change.name);
        if (!is_removal(change.operation))
            add_leaf(memory, add_node(memory, entry, "config", ns), "name", change.name);
    }
    framework::inherit_operations(document);
    return document;
}

/* The interfaces that the mapping wrote must be those of the monitors that were asked for, and no others. */
void check_interfaces(const std::vector<entry_change> &entries, const std::vector<monitor_change> &changes,
                      const monitor_directory &monitors)
{
    for (const entry_change &entry : entries) {
        const bool wanted = std::ranges::any_of(changes, [&](const monitor_change &change) {
            const auto known = monitors.find(change.name);
            return known != monitors.end() && known->second.interface == entry.interface;
        });
        if (!wanted || entry.active != configured_activity)
            throw application_error("operation-failed", {}, "the edit was mapped to interface " + entry.interface);
    }
    if (entries.size() != changes.size())
        throw application_error("operation-failed", {}, "a part of the edit was not mapped");
}

/* ------------------------------------------------------------------------------------------- on the device -------- */

std::vector<entry_change> plan_changes(const plugin &mapper, const edit_request &edit, const ostore::transaction &txn,
                                       const edit_options &options)
{
    const ostore::serving served = txn.serve();
    std::vector<std::string> names;
    for (const monitor_edit &monitor : edit.monitors)
        names.push_back(monitor.name);
    const monitor_directory monitors = find_monitors(mapper, txn, names, options.walks);
    const auto changes = resolve_edit(edit, options.default_operation, monitors);

    framework::arena memory;
    const dtf_datatree request = plain_request(changes, memory);
    const request_plan plan(mapper, request.children[0], edit_kind, memory, options.walks);
    auto entries = changes_of(plan.native(), txn);
    check_interfaces(entries, changes, monitors);
    std::erase_if(entries, [](const entry_change &entry) { return !entry.is_change(); });
    return entries;
}

std::vector<entry_change> run(const plugin &mapper, device::folder &device, const edit_options &options)
{
    framework::arena memory;
    framework::document_options reading;
    reading.use = framework::document_use::edit;
    const dtf_datatree document = framework::read_document(options.document, memory, reading);
    edit_request edit;
    if (const dtf_datatree *const monitors = monitors_in(document)) {
        edit = read_edit(*monitors);
        check_by_plugin(mapper, *monitors, memory, options.walks);
    }
    if (options.dry_run)
        return plan_changes(mapper, edit, ostore::read_transaction(device.database()), options);
    ostore::write_transaction txn(device.database());
    auto entries = plan_changes(mapper, edit, txn, options);
    if (entries.empty())
        return entries;
    carry_out(entries, txn);
    txn.commit();
    return entries;
}

} // namespace

edit_operation default_operation_named(const std::string &name)
{
    if (name == "merge")
        return edit_operation::merge;
    if (name == "replace")
        return edit_operation::replace;
    if (name == "none")
        return edit_operation::none;
    throw std::invalid_argument("unknown default operation " + name);
}

std::vector<entry_change> edit_device(const plugin &mapper, device::folder &device, const edit_options &options)
{
    return answer([&] { return run(mapper, device, options); });
}

} // namespace service
