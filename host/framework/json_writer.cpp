#include "json_writer.h"

#include "json_text.h"
#include "schema_facts.h"
#include "text_sink.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace framework {

namespace {

using siblings = std::span<const dtf_datatree>;

siblings children_of(const dtf_datatree &node)
{
    return (node.flags & DTF_FLAG_HAS_SUBTREE) != 0 ? siblings(node.children, node.child_count) : siblings();
}

bool same_name(const dtf_datatree &a, const dtf_datatree &b)
{
    return (a.tag == b.tag || std::strcmp(a.tag, b.tag) == 0) && same_namespace(a.ns, b.ns);
}

/* How many nodes at the beginning have the first one's name. */
std::size_t run_length(siblings nodes)
{
    std::size_t length = 1;
    while (length < nodes.size() && same_name(nodes[length], nodes[0]))
        ++length;
    return length;
}

/*
 * Whether nodes of one name stand together, found by comparing the runs' first nodes with each other. False also where
 * there are more runs than this is good for.
 */
bool stand_together(siblings nodes)
{
    constexpr std::size_t most_runs = 24;
    const dtf_datatree *firsts[most_runs];
    std::size_t runs = 0;
    for (; !nodes.empty(); nodes = nodes.subspan(run_length(nodes))) {
        const auto is_known = [&](const dtf_datatree *first) { return same_name(*first, nodes[0]); };
        if (runs == most_runs || std::any_of(firsts, firsts + runs, is_known))
            return false;
        firsts[runs++] = &nodes[0];
    }
    return true;
}

/* The nodes with those of one name together, in the order in which the names come first. */
std::vector<dtf_datatree> put_together(siblings nodes)
{
    std::map<std::pair<std::string_view, std::string_view>, std::vector<dtf_datatree>> groups;
    std::vector<std::vector<dtf_datatree> *> order;
    for (const dtf_datatree &node : nodes) {
        auto &group = groups[{node.tag, node.ns == nullptr ? "" : node.ns}];
        if (group.empty())
            order.push_back(&group);
        group.push_back(node);
    }
    std::vector<dtf_datatree> together;
    together.reserve(nodes.size());
    for (const auto *group : order)
        together.insert(together.end(), group->begin(), group->end());
    return together;
}

/* An object's members: what is known of the node they are below, and how deep they are. */
struct scope {
    const dtf_datatree *above;
    const schema_node *facts;
    std::size_t level;
};

class json_writer
{
  public:
    json_writer(std::string &out, const json_write_options &options) : sink_(out), options_(options) {}

    void write_document(const dtf_datatree &root);

  private:
    void write_object(const dtf_datatree &node, const schema_node *facts, std::size_t level);
    void write_members(siblings nodes, const scope &in, bool is_first);
    void write_member(siblings run, const scope &in);
    void write_name(const dtf_datatree &node, const scope &in, std::string_view mark);
    void write_array(siblings run, const schema_node *facts, std::size_t level);
    void write_node(const dtf_datatree &node, const schema_node *facts, std::size_t level);
    void write_value(const char *value, const schema_node *facts);
    void write_leaf_notes(siblings run, const schema_node *facts, const scope &in);
    void write_notes(const dtf_datatree &node);

    bool has_notes(const dtf_datatree &node) const { return options_.notes && !options_.notes(node).empty(); }
    void begin_line(std::size_t level)
    {
        if (!options_.pretty)
            return;
        sink_.put("\n");
        sink_.put_spaces(2 * level);
    }

    text_sink sink_;
    const json_write_options &options_;
};

constexpr std::uint32_t container_kind = 3; /* dtf_datatree.node_kind */
constexpr std::uint32_t list_kind = 4;
constexpr std::uint8_t kind_is_known = 0x04; /* dtf_datatree.kind_flags */

/* Whether a node is written as an object: it has children, or is something that can have some. */
bool is_object(const dtf_datatree &node, const schema_node *facts)
{
    if (!children_of(node).empty())
        return true;
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        return false;
    if (facts != nullptr)
        return facts->kind == schema_kind::container || facts->kind == schema_kind::list;
    return (node.kind_flags & kind_is_known) != 0 && (node.node_kind == container_kind || node.node_kind == list_kind);
}

void json_writer::write_document(const dtf_datatree &root)
{
    dtf_datatree above = {};
    const siblings top = root.tag == nullptr ? children_of(root) : siblings(&root, 1);
    sink_.put("{");
    write_members(top, {&above, nullptr, 1}, true);
    begin_line(0);
    sink_.put("}");
    if (options_.pretty)
        sink_.put("\n");
}

void json_writer::write_object(const dtf_datatree &node, const schema_node *facts, std::size_t level)
{
    const siblings below = children_of(node);
    const bool annotated = has_notes(node);
    sink_.put("{");
    if (annotated) {
        begin_line(level + 1);
        sink_.put(options_.pretty ? "\"@\": " : "\"@\":");
        write_notes(node);
    }
    write_members(below, {&node, facts, level + 1}, !annotated);
    if (annotated || !below.empty())
        begin_line(level);
    sink_.put("}");
}

void json_writer::write_members(siblings nodes, const scope &in, bool is_first)
{
    std::vector<dtf_datatree> together;
    if (!stand_together(nodes))
        nodes = together = put_together(nodes);
    while (!nodes.empty()) {
        if (!std::exchange(is_first, false))
            sink_.put(",");
        const std::size_t length = run_length(nodes);
        write_member(nodes.first(length), in);
        nodes = nodes.subspan(length);
    }
}

void json_writer::write_member(siblings run, const scope &in)
{
    const schema_node *const facts = schema_of(run[0], *in.above, in.facts);
    begin_line(in.level);
    write_name(run[0], in, "");
    if (run.size() > 1 || (facts != nullptr && facts->kind == schema_kind::list))
        write_array(run, facts, in.level);
    else
        write_node(run[0], facts, in.level);
    const bool annotated =
        std::ranges::any_of(run, [&](const dtf_datatree &node) { return has_notes(node) && !is_object(node, facts); });
    if (annotated)
        write_leaf_notes(run, facts, in);
}

/* The member name; the mark "@" makes it that of an annotation. */
void json_writer::write_name(const dtf_datatree &node, const scope &in, std::string_view mark)
{
    sink_.put("\"");
    sink_.put(mark);
    if (node.ns != nullptr && !same_namespace(node.ns, in.above->ns)) {
        const schema_module *const module = find_module_by_namespace(node.ns);
        if (module != nullptr)
            sink_.put(module->name);
        else
            put_json_text(sink_, node.ns);
        sink_.put(":");
    }
    put_json_text(sink_, node.tag);
    sink_.put(options_.pretty ? "\": " : "\":");
}

void json_writer::write_array(siblings run, const schema_node *facts, std::size_t level)
{
    const bool on_lines = is_object(run[0], facts);
    sink_.put("[");
    for (const dtf_datatree &node : run) {
        if (&node != &run[0])
            sink_.put(options_.pretty && !on_lines ? ", " : ",");
        if (on_lines)
            begin_line(level + 1);
        if (is_object(node, facts))
            write_object(node, facts, level + 1);
        else if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
            write_value(node.value, facts);
        else
            sink_.put("null");
    }
    if (on_lines)
        begin_line(level);
    sink_.put("]");
}

/* What stands behind a member's name. */
void json_writer::write_node(const dtf_datatree &node, const schema_node *facts, std::size_t level)
{
    if (is_object(node, facts))
        write_object(node, facts, level);
    else if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        write_value(node.value, facts);
    else
        sink_.put("[null]");
}

void json_writer::write_value(const char *value, const schema_node *facts)
{
    const std::string_view text = value == nullptr ? "" : value;
    const bool may_be_bare = facts != nullptr && facts->kind == schema_kind::bare_leaf;
    if (may_be_bare && (is_json_number(text) || text == "true" || text == "false"))
        sink_.put(text);
    else
        put_json_string(sink_, text.data());
}

/* The annotation of a leaf stands beside it; that of a run is an array, with null for those without (or with their own
 * inside). */
void json_writer::write_leaf_notes(siblings run, const schema_node *facts, const scope &in)
{
    sink_.put(",");
    begin_line(in.level);
    write_name(run[0], in, "@");
    if (run.size() == 1) {
        write_notes(run[0]);
        return;
    }
    sink_.put("[");
    for (const dtf_datatree &node : run) {
        if (&node != &run[0])
            sink_.put(",");
        if (has_notes(node) && !is_object(node, facts))
            write_notes(node);
        else
            sink_.put("null");
    }
    sink_.put("]");
}

void json_writer::write_notes(const dtf_datatree &node)
{
    const node_notes notes = options_.notes(node);
    const auto put_note = [this](std::string_view name, std::string_view text) {
        sink_.put(name);
        sink_.put(options_.pretty ? ": " : ":");
        put_json_string(sink_, std::string(text).c_str());
    };
    sink_.put("{");
    if (!notes.operation.empty())
        put_note("\"ietf-netconf:operation\"", notes.operation);
    if (!notes.operation.empty() && !notes.source.empty())
        sink_.put(options_.pretty ? ", " : ",");
    if (!notes.source.empty())
        put_note("\"chmon:source\"", notes.source);
    sink_.put("}");
}

} // namespace

void write_json(std::string &out, const dtf_datatree &root, const json_write_options &options)
{
    json_writer(out, options).write_document(root);
}

} // namespace framework
