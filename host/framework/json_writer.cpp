#include "json_writer.h"

#include "json_text.h"
#include "path_table.h"
#include "ready_entry.h"
#include "schema_facts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
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
    /* Most names differ in their first character already. */
    if (a.tag != b.tag && (*a.tag != *b.tag || std::strcmp(a.tag, b.tag) != 0))
        return false;
    return same_namespace(a.ns, b.ns);
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
        for (std::size_t i = 0; i < runs; ++i) {
            if (same_name(*firsts[i], nodes[0]))
                return false;
        }
        if (runs == most_runs)
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

class json_writer
{
  public:
    json_writer(const text_receiver &out, const json_write_options &options) : sink_(out), options_(options) {}

    void write_document(const dtf_datatree &root);

  private:
    /* An object whose end is still to come, and the array among its members that is being written, if one is. */
    struct open_object {
        const dtf_datatree *node;
        const schema_node *facts; /* of the object */
        siblings rest;            /* the members still to come */
        siblings run;             /* the array's elements, all of them */
        std::size_t written;      /* of these */
        const schema_node *run_facts;
        std::size_t level; /* of the members */
        bool is_first;
        bool is_reordered; /* its members are the last of reordered_ */
    };

    void open(const dtf_datatree &node, siblings members, const schema_node *facts, std::size_t level);
    void write_members(std::size_t outside);
    void close();
    void write_member(open_object &in);
    const schema_node *begin_member(const dtf_datatree &node, open_object &in);
    const schema_node *write_name(const dtf_datatree &node, const open_object &in, std::string_view mark);
    void write_element(open_object &in);
    void write_packed_elements(const dtf_datatree &node);
    void end_array(open_object &in);
    bool write_scalar(const dtf_datatree &node, const schema_node *facts, std::string_view null);
    void write_value(const char *value, const schema_node *facts);
    void write_leaf_notes(siblings run, const schema_node *facts, const open_object &in);
    void write_notes(const dtf_datatree &node);

    bool has_notes(const dtf_datatree &node) const { return options_.notes && !options_.notes(node).empty(); }
    void begin_line(std::size_t level);

    text_sink sink_;
    const json_write_options &options_;
    ready_entries ready_entries_;
    bool has_bare_leaf_ = false;    /* a leaf was written whose value tells how it is written */
    std::vector<open_object> open_; /* a stack of our own: trees may be deep, and the machine's small */
    std::deque<std::vector<dtf_datatree>> reordered_;
};

/* Whether a node is written as an object: it has children, or is something that can have some. */
bool is_object(const dtf_datatree &node, const schema_node *facts)
{
    if (!children_of(node).empty())
        return true;
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        return false;
    if (facts != nullptr)
        return facts->kind == schema_kind::container || facts->kind == schema_kind::list;
    return is_list_entry(node);
}

void json_writer::write_document(const dtf_datatree &root)
{
    const dtf_datatree above = {};
    open(above, root.tag == nullptr ? children_of(root) : siblings(&root, 1), nullptr, 1);
    write_members(0);
    if (options_.pretty)
        sink_.put("\n");
    sink_.flush();
}

void json_writer::begin_line(std::size_t level)
{
    if (options_.pretty)
        sink_.put_line(2 * level);
}

/* `level` is that of the members. */
void json_writer::open(const dtf_datatree &node, siblings members, const schema_node *facts, std::size_t level)
{
    const bool is_reordered = !stand_together(members);
    if (is_reordered)
        members = reordered_.emplace_back(put_together(members));
    open_.push_back({&node, facts, members, {}, 0, nullptr, level, true, is_reordered});
    sink_.put("{");
    if (!has_notes(node))
        return;
    begin_line(level);
    if (options_.pretty)
        sink_.put("\"@\": ");
    else
        sink_.put("\"@\":");
    write_notes(node);
    open_.back().is_first = false;
}

/* Until only the `outside` first objects are open: the members of the innermost one, and the elements of its array. */
void json_writer::write_members(std::size_t outside)
{
    while (open_.size() > outside) {
        open_object &in = open_.back();
        if (in.written < in.run.size())
            write_element(in);
        else if (!in.run.empty())
            end_array(in);
        else if (!in.rest.empty())
            write_member(in);
        else
            close();
    }
}

void json_writer::close()
{
    const open_object &ended = open_.back();
    if (!ended.is_first || open_.size() == 1)
        begin_line(ended.level - 1);
    sink_.put("}");
    if (ended.is_reordered)
        reordered_.pop_back();
    open_.pop_back();
}

/* The next member: as a whole where it is a leaf, else its beginning. */
void json_writer::write_member(open_object &in)
{
    const siblings run = in.rest.first(run_length(in.rest));
    in.rest = in.rest.subspan(run.size());
    const schema_node *const facts = begin_member(run[0], in);
    if (run.size() > 1 || (facts != nullptr && facts->kind == schema_kind::list)) {
        sink_.put("[");
        in.run = run;
        in.written = 0;
        in.run_facts = facts;
    } else if (!write_scalar(run[0], facts, "[null]")) {
        open(run[0], children_of(run[0]), facts, in.level + 1);
    } else if (has_notes(run[0])) {
        write_leaf_notes(run, facts, in);
    }
}

/* Line break and name of the next member. Returns what is known of it. */
const schema_node *json_writer::begin_member(const dtf_datatree &node, open_object &in)
{
    if (!std::exchange(in.is_first, false))
        sink_.put(",");
    begin_line(in.level);
    return write_name(node, in, "");
}

/* The member name, and what is known of it; the mark "@" makes it that of an annotation. */
const schema_node *json_writer::write_name(const dtf_datatree &node, const open_object &in, std::string_view mark)
{
    const bool is_inherited = node.ns == nullptr || same_namespace(node.ns, in.node->ns);
    sink_.put("\"");
    sink_.put(mark);
    if (!is_inherited) {
        const schema_module *const module = find_module_by_namespace(node.ns);
        if (module != nullptr)
            sink_.put(module->name);
        else
            put_json_text(sink_, node.ns);
        sink_.put(":");
    }
    put_json_text(sink_, node.tag);
    if (options_.pretty)
        sink_.put("\": ");
    else
        sink_.put("\":");
    return schema_of(node, *in.node, in.facts);
}

/* The array's next element, or its beginning. */
void json_writer::write_element(open_object &in)
{
    const dtf_datatree &node = in.run[in.written];
    if (is_packed(node)) {
        ++in.written;
        write_packed_elements(node);
        return;
    }
    const bool on_lines = is_object(in.run[0], in.run_facts);
    if (in.written++ != 0) {
        if (options_.pretty && !on_lines)
            sink_.put(", ");
        else
            sink_.put(",");
    }
    if (on_lines)
        begin_line(in.level + 1);
    if (!write_scalar(node, in.run_facts, "null"))
        open(node, children_of(node), in.run_facts, in.level + 2);
}

/* They are objects, and never the first of an array. */
void json_writer::write_packed_elements(const dtf_datatree &node)
{
    const std::size_t outside = open_.size();
    const schema_node *const facts = open_.back().run_facts;
    const std::size_t level = open_.back().level;
    const auto write_whole = [&](const dtf_datatree &entry) {
        sink_.put(",");
        begin_line(level + 1);
        open(entry, children_of(entry), facts, level + 2);
        write_members(outside);
    };
    const auto make_ready = [&](entry_shape &shape) -> const ready_entry & {
        const auto [known, is_new] = ready_entries_.try_emplace({&shape, facts, level});
        if (!is_new || options_.notes)
            return known->second;
        has_bare_leaf_ = false;
        ready_entry ready(sink_, shape, [&] { write_whole(shape.entry); });
        if (!has_bare_leaf_)
            known->second = std::move(ready);
        return known->second;
    };
    write_packed(sink_, json_special, node, make_ready, write_whole);
}

void json_writer::end_array(open_object &in)
{
    const siblings run = std::exchange(in.run, {});
    if (is_object(run[0], in.run_facts))
        begin_line(in.level);
    sink_.put("]");
    const auto is_noted_leaf = [&](const dtf_datatree &node) {
        return has_notes(node) && !is_object(node, in.run_facts);
    };
    if (options_.notes && std::ranges::any_of(run, is_noted_leaf))
        write_leaf_notes(run, in.run_facts, in);
}

/* Writes what is no object; false where it is one. */
bool json_writer::write_scalar(const dtf_datatree &node, const schema_node *facts, std::string_view null)
{
    if (is_object(node, facts))
        return false;
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        write_value(node.value, facts);
    else
        sink_.put(null);
    return true;
}

void json_writer::write_value(const char *value, const schema_node *facts)
{
    if (value == nullptr)
        value = "";
    if (facts != nullptr && facts->kind == schema_kind::bare_leaf) {
        has_bare_leaf_ = true;
        const std::string_view text = value;
        if (is_json_number(text) || text == "true" || text == "false") {
            sink_.put(text);
            return;
        }
    }
    put_json_string(sink_, value);
}

/* The annotation of a leaf stands beside it; that of a run is an array, with null for those without (or with their own
 * inside). */
void json_writer::write_leaf_notes(siblings run, const schema_node *facts, const open_object &in)
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
        sink_.put(std::string_view(options_.pretty ? ": " : ":"));
        put_json_string(sink_, std::string(text).c_str());
    };
    sink_.put("{");
    if (!notes.operation.empty())
        put_note("\"ietf-netconf:operation\"", notes.operation);
    if (!notes.operation.empty() && !notes.source.empty())
        sink_.put(std::string_view(options_.pretty ? ", " : ","));
    if (!notes.source.empty())
        put_note("\"chmon:source\"", notes.source);
    sink_.put("}");
}

} // namespace

void write_json(const text_receiver &out, const dtf_datatree &root, const json_write_options &options)
{
    json_writer(out, options).write_document(root);
}

} // namespace framework
