#include "service/edit_request.h"

#include "service/netconf_error.h"
#include "service/tree_access.h"

#include "framework/schema_facts.h"

#include <set>
#include <string_view>

namespace service {

namespace {

std::optional<edit_operation> own_operation(const dtf_datatree &node)
{
    if ((node.flags & DTF_FLAG_OP_SET) == 0)
        return std::nullopt;
    return static_cast<edit_operation>(node.operation); /* the reader gives no others */
}

edit_node as_node(const dtf_datatree &node) { return {own_operation(node), std::string(value_of(node))}; }

/* A node of the edit with its schema and its path. */
struct place {
    const dtf_datatree &node;
    const framework::schema_node &schema;
    std::string path;
};

void check_form(const place &at)
{
    if (is_leaf(at.schema) && !children_of(at.node).empty())
        throw application_error("unknown-element", at.path + "/" + children_of(at.node).front().tag,
                                "a leaf has no elements below it");
    if (!is_leaf(at.schema) && !value_of(at.node).empty())
        throw application_error("bad-element", at.path, "takes elements, not a value");
}

/* A tag of ours in a namespace that is not: the plug-in goes by the tag where it knows one. */
[[noreturn]] void refuse_namespace(const dtf_datatree &node, const std::string &path)
{
    throw application_error("unknown-namespace", path,
                            node.ns == nullptr ? "has no namespace" : "no element of that namespace here");
}

/* Calls `visit(place)` for each child that the schema knows; one that is no list entry may be there once. What the
 * schema does not know is the plug-in's to judge. */
template <typename function> void each_child(const place &parent, function &&visit)
{
    std::set<std::string_view> seen;
    for (const dtf_datatree &child : children_of(parent.node)) {
        const framework::schema_node *const schema = framework::schema_of(child, parent.node, &parent.schema);
        std::string path = parent.path + "/" + child.tag;
        if (schema == nullptr && parent.schema.child(child.tag) != nullptr)
            refuse_namespace(child, path);
        if (schema == nullptr)
            continue;
        if (schema->kind != framework::schema_kind::list && !seen.insert(schema->tag).second)
            throw application_error("bad-element", path, "given more than once");
        const place at{child, *schema, std::move(path)};
        check_form(at);
        visit(at);
    }
}

void read_config(const place &config, monitor_edit &into)
{
    into.config = as_node(config.node);
    each_child(config, [&into](const place &leaf) {
        (leaf.schema.tag == "name" ? into.config_name : into.config_port) = as_node(leaf.node);
    });
}

monitor_edit read_monitor(const place &entry)
{
    monitor_edit monitor;
    monitor.operation = own_operation(entry.node);
    each_child(entry, [&monitor](const place &child) {
        if (child.schema.tag == "name") {
            monitor.key = as_node(child.node);
            monitor.name = monitor.key.value;
        } else if (child.schema.tag == "config") {
            read_config(child, monitor);
        } else {
            throw application_error("unknown-element", child.path, "holds what the device tells, no configuration");
        }
    });
    return monitor;
}

} // namespace

std::string monitor_path(const std::string &name)
{
    /* XPath literals have no escapes: the other kind of quotes where the name holds the usual one, pieces for both. */
    const std::string path = std::string(monitors_path) + "/channel-monitor[name=";
    const bool has_apostrophe = name.find('\'') != std::string::npos;
    if (!has_apostrophe || name.find('"') == std::string::npos) {
        const char quote = has_apostrophe ? '"' : '\'';
        return path + quote + name + quote + "]";
    }
    std::string pieces;
    for (const char c : name)
        pieces += c == '\'' ? std::string("', \"'\", '") : std::string(1, c);
    return path + "concat('" + pieces + "')]";
}

edit_request read_edit(const dtf_datatree &monitors)
{
    edit_request edit;
    edit.operation = own_operation(monitors);
    const place top{monitors, *framework::find_schema_node(monitors_path), monitors_path};
    check_form(top);
    std::set<std::string> names;
    each_child(top, [&](place entry) {
        if (const std::string_view name = leaf_value(entry.node, "name"); !name.empty())
            entry.path = monitor_path(std::string(name));
        monitor_edit monitor = read_monitor(entry);
        if (monitor.name.empty())
            return;
        if (!names.insert(monitor.name).second)
            throw application_error("bad-element", entry.path, "the same entry twice in one edit");
        edit.monitors.push_back(std::move(monitor));
    });
    return edit;
}

} // namespace service
