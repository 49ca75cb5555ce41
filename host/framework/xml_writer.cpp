#include "xml_writer.h"

#include "edit_operations.h"
#include "ready_entry.h"
#include "schema_facts.h"

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace framework {

namespace {

/* White space is special at a value's ends. */
constexpr special_characters make_special()
{
    special_characters special = {};
    for (std::size_t c = 0; c < special.size(); ++c)
        special[c] = c <= 0x20 || c >= 0x80 || c == '&' || c == '<' || c == '>';
    return special;
}

constexpr special_characters special = make_special();

bool has_children(const dtf_datatree &node) { return (node.flags & DTF_FLAG_HAS_SUBTREE) != 0 && node.child_count > 0; }

class xml_writer
{
  public:
    xml_writer(const text_receiver &out, const xml_write_options &options) : sink_(out), options_(options) {}

    void write_document(const dtf_datatree &root);

  private:
    /* An element whose end is still to come. */
    struct open_element {
        const dtf_datatree *node;
        std::uint32_t next_child;
    };

    void write_wrapped(const dtf_datatree &root);
    void write_tree(const dtf_datatree &top, const char *ns_above);
    void write_packed_entries(const dtf_datatree &node, const char *ns_above);
    void write_start(const dtf_datatree &node, const char *ns_above);
    void write_end(const dtf_datatree &node);
    void write_end_tag(const char *tag);
    void write_attributes(const dtf_datatree &node, const char *ns_above);
    void write_notes(const dtf_datatree &node);
    void declare_prefixes(const dtf_datatree &top);
    void write_attribute(std::string_view name, const char *text);
    void write_text(const char *text, bool guards_ends);
    void write_spaces(const char *&text, bool as_references);
    void write_special(const char *&text);
    void begin_line(std::size_t level);
    void end_line()
    {
        if (options_.pretty)
            sink_.put("\n");
    }

    text_sink sink_;
    const xml_write_options &options_;
    ready_entries ready_entries_;
    std::vector<open_element> open_; /* a stack of our own: trees may be deep, and the machine's small */
    bool is_first_ = true;
};

void xml_writer::write_document(const dtf_datatree &root)
{
    if (root.tag != nullptr)
        write_tree(root, nullptr);
    else if (has_children(root) && root.child_count == 1)
        write_tree(root.children[0], nullptr);
    else
        write_wrapped(root);
    sink_.flush();
}

void xml_writer::write_wrapped(const dtf_datatree &root)
{
    dtf_datatree wrapper = root;
    wrapper.tag = "data";
    wrapper.ns = netconf_namespace.data();
    wrapper.flags &= ~DTF_FLAG_OP_SET;
    write_tree(wrapper, nullptr);
}

void xml_writer::write_tree(const dtf_datatree &top, const char *ns_above)
{
    const std::size_t outside = open_.size();
    write_start(top, ns_above);
    while (open_.size() > outside) {
        const dtf_datatree &node = *open_.back().node;
        if (open_.back().next_child < node.child_count) {
            const dtf_datatree &child = node.children[open_.back().next_child++];
            if (is_packed(child))
                write_packed_entries(child, node.ns);
            else
                write_start(child, node.ns);
            continue;
        }
        open_.pop_back();
        write_end(node);
    }
}

void xml_writer::write_packed_entries(const dtf_datatree &node, const char *ns_above)
{
    const auto write_whole = [&](const dtf_datatree &entry) { write_tree(entry, ns_above); };
    const auto make_ready = [&](entry_shape &shape) -> const ready_entry & {
        const auto [known, is_new] = ready_entries_.try_emplace({&shape, ns_above, open_.size()});
        if (is_new && !options_.notes)
            known->second = ready_entry(sink_, shape, [&] { write_whole(shape.entry); });
        return known->second;
    };
    write_packed(sink_, special, node, make_ready, write_whole);
}

/* Writes a leaf as a whole; of an element with children the start, and then it is open. */
void xml_writer::write_start(const dtf_datatree &node, const char *ns_above)
{
    begin_line(open_.size());
    sink_.put("<");
    sink_.put(std::string_view(node.tag));
    write_attributes(node, ns_above);
    if (has_children(node)) {
        sink_.put(">");
        end_line();
        open_.push_back({&node, 0});
    } else if ((node.flags & DTF_FLAG_HAS_VALUE) != 0 && node.value != nullptr) {
        sink_.put(">");
        write_text(node.value, true);
        write_end_tag(node.tag);
    } else {
        sink_.put("/>");
        end_line();
    }
}

void xml_writer::begin_line(std::size_t level)
{
    if (options_.pretty)
        sink_.put_columns(2 * level);
}

void xml_writer::write_end(const dtf_datatree &node)
{
    begin_line(open_.size());
    write_end_tag(node.tag);
}

void xml_writer::write_end_tag(const char *name)
{
    sink_.put("</");
    sink_.put(std::string_view(name));
    sink_.put(">");
    end_line();
}

void xml_writer::write_attributes(const dtf_datatree &node, const char *ns_above)
{
    if (!same_namespace(node.ns, ns_above))
        write_attribute("xmlns", node.ns == nullptr ? "" : node.ns);
    if (options_.notes)
        write_notes(node);
}

/* The first element declares the prefixes for all. */
void xml_writer::write_notes(const dtf_datatree &node)
{
    if (std::exchange(is_first_, false))
        declare_prefixes(node);
    const node_notes notes = options_.notes(node);
    if (!notes.operation.empty())
        write_attribute("nc:operation", std::string(notes.operation).c_str());
    if (!notes.source.empty())
        write_attribute("chmon:source", std::string(notes.source).c_str());
}

/* Those of the prefixes of notes that the tree needs. */
void xml_writer::declare_prefixes(const dtf_datatree &top)
{
    bool has_operations = false;
    bool has_sources = false;
    for (std::vector<const dtf_datatree *> rest = {&top}; !rest.empty();) {
        const dtf_datatree &node = *rest.back();
        rest.pop_back();
        const node_notes notes = options_.notes(node);
        has_operations = has_operations || !notes.operation.empty();
        has_sources = has_sources || !notes.source.empty();
        for (std::uint32_t i = 0; has_children(node) && i < node.child_count; ++i)
            rest.push_back(&node.children[i]);
    }
    if (has_operations)
        write_attribute("xmlns:nc", netconf_namespace.data());
    if (has_sources)
        write_attribute("xmlns:chmon", source_namespace.data());
}

void xml_writer::write_attribute(std::string_view name, const char *text)
{
    sink_.put(" ");
    sink_.put(name);
    sink_.put("=\"");
    while (const char *const quote = std::strchr(text, '"')) {
        write_text(std::string(text, quote).c_str(), false);
        sink_.put("&quot;");
        text = quote + 1;
    }
    write_text(text, false);
    sink_.put("\"");
}

std::string_view space_reference(char c)
{
    switch (c) {
    case '\t':
        return "&#9;";
    case '\n':
        return "&#10;";
    case '\r':
        return "&#13;";
    default:
        return "&#32;";
    }
}

/* Runs of plain characters go over as they are. guards_ends: white space at the ends becomes references. */
void xml_writer::write_text(const char *text, bool guards_ends)
{
    const char *const start = text;
    for (;;) {
        sink_.taken(copy_plain(sink_.room(), text, special, text_sink::most_room));
        if (*text == '\0')
            return;
        if (const std::size_t spaces = std::strspn(text, " \t\n\r"); spaces != 0)
            write_spaces(text, guards_ends && (text == start || text[spaces] == '\0'));
        else if (special[static_cast<unsigned char>(*text)])
            write_special(text);
    }
}

/* Writes the white space that a text begins with, and moves past it. A carriage return would not stay one. */
void xml_writer::write_spaces(const char *&text, bool as_references)
{
    for (; *text != '\0' && std::strchr(" \t\n\r", *text) != nullptr; ++text)
        sink_.put(as_references || *text == '\r' ? space_reference(*text) : std::string_view(text, 1));
}

/* Writes the character that a text begins with, and moves past it. */
void xml_writer::write_special(const char *&text)
{
    const char c = *text;
    if (const std::size_t length = utf8_length(text); length > 1) {
        sink_.put({text, length});
        text += length;
        return;
    }
    ++text;
    if (c == '&')
        sink_.put("&amp;");
    else if (c == '<')
        sink_.put("&lt;");
    else if (c == '>')
        sink_.put("&gt;");
    else
        sink_.put(replacement_character);
}

} // namespace

void write_xml(const text_receiver &out, const dtf_datatree &root, const xml_write_options &options)
{
    xml_writer(out, options).write_document(root);
}

} // namespace framework
