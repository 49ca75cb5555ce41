#include "xml_writer.h"

#include "edit_operations.h"
#include "schema_facts.h"
#include "text_sink.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace framework {

namespace {

/* Which characters of a text are not simply copied. */
constexpr std::array<bool, 256> make_special()
{
    std::array<bool, 256> special = {};
    for (std::size_t c = 0; c < special.size(); ++c)
        special[c] = c < 0x20 || c >= 0x80 || c == '&' || c == '<' || c == '>';
    return special;
}

constexpr std::array<bool, 256> special = make_special();

class xml_writer
{
  public:
    xml_writer(std::string &out, const xml_write_options &options) : sink_(out), options_(options) {}

    void write_document(const dtf_datatree &root);

  private:
    /* Which of the prefixes of notes a tree needs. */
    struct prefixes {
        bool nc;
        bool chmon;
    };

    void write_wrapped(const dtf_datatree &root);
    void write_element(const dtf_datatree &node, const char *ns_above, std::size_t level);
    void write_attributes(const dtf_datatree &node, const char *ns_above);
    void write_notes(const dtf_datatree &node);
    prefixes prefixes_below(const dtf_datatree &node) const;
    void write_value(std::string_view value);
    void write_attribute(std::string_view name, const char *text);
    void write_text(const char *text);
    void write_special(const char *&text);
    void begin_line(std::size_t level)
    {
        if (options_.pretty)
            sink_.put_spaces(2 * level);
    }
    void end_line(std::string_view text) { sink_.put(options_.pretty ? text : text.substr(0, text.size() - 1)); }

    text_sink sink_;
    const xml_write_options &options_;
    bool is_first_ = true;
};

bool has_children(const dtf_datatree &node) { return (node.flags & DTF_FLAG_HAS_SUBTREE) != 0 && node.child_count > 0; }

void xml_writer::write_document(const dtf_datatree &root)
{
    if (root.tag != nullptr)
        write_element(root, nullptr, 0);
    else if (has_children(root) && root.child_count == 1)
        write_element(root.children[0], nullptr, 0);
    else
        write_wrapped(root);
}

void xml_writer::write_wrapped(const dtf_datatree &root)
{
    dtf_datatree wrapper = root;
    wrapper.tag = "data";
    wrapper.ns = netconf_namespace.data();
    wrapper.flags &= ~DTF_FLAG_OP_SET;
    write_element(wrapper, nullptr, 0);
}

void xml_writer::write_element(const dtf_datatree &node, const char *ns_above, std::size_t level)
{
    const std::string_view tag = node.tag;
    begin_line(level);
    sink_.put("<");
    sink_.put(tag);
    write_attributes(node, ns_above);
    if (has_children(node)) {
        end_line(">\n");
        for (std::uint32_t i = 0; i < node.child_count; ++i)
            write_element(node.children[i], node.ns, level + 1);
        begin_line(level);
    } else if ((node.flags & DTF_FLAG_HAS_VALUE) != 0 && node.value != nullptr) {
        sink_.put(">");
        write_value(node.value);
    } else {
        end_line("/>\n");
        return;
    }
    sink_.put("</");
    sink_.put(tag);
    end_line(">\n");
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
    if (std::exchange(is_first_, false)) {
        const prefixes used = prefixes_below(node);
        if (used.nc)
            write_attribute("xmlns:nc", netconf_namespace.data());
        if (used.chmon)
            write_attribute("xmlns:chmon", source_namespace.data());
    }
    const node_notes notes = options_.notes(node);
    if (!notes.operation.empty())
        write_attribute("nc:operation", std::string(notes.operation).c_str());
    if (!notes.source.empty())
        write_attribute("chmon:source", std::string(notes.source).c_str());
}

xml_writer::prefixes xml_writer::prefixes_below(const dtf_datatree &node) const
{
    const node_notes notes = options_.notes(node);
    prefixes used{!notes.operation.empty(), !notes.source.empty()};
    for (std::uint32_t i = 0; has_children(node) && i < node.child_count; ++i) {
        const prefixes below = prefixes_below(node.children[i]);
        used = {used.nc || below.nc, used.chmon || below.chmon};
    }
    return used;
}

void xml_writer::write_attribute(std::string_view name, const char *text)
{
    sink_.put(" ");
    sink_.put(name);
    sink_.put("=\"");
    while (const char *const quote = std::strchr(text, '"')) {
        write_text(std::string(text, quote).c_str());
        sink_.put("&quot;");
        text = quote + 1;
    }
    write_text(text);
    sink_.put("\"");
}

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

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

void xml_writer::write_value(std::string_view value)
{
    if (value.empty())
        return;
    if (!is_space(value.front()) && !is_space(value.back())) {
        write_text(value.data());
        return;
    }
    const std::size_t first = std::min(value.find_first_not_of(" \t\n\r"), value.size());
    const std::size_t last = first == value.size() ? first : value.find_last_not_of(" \t\n\r") + 1;
    for (const char c : value.substr(0, first))
        sink_.put(space_reference(c));
    write_text(std::string(value.substr(first, last - first)).c_str());
    for (const char c : value.substr(last))
        sink_.put(space_reference(c));
}

/* Runs of plain characters go over in one piece. */
void xml_writer::write_text(const char *text)
{
    for (;;) {
        const char *const start = text;
        while (!special[static_cast<unsigned char>(*text)])
            ++text;
        sink_.put({start, static_cast<std::size_t>(text - start)});
        if (*text == '\0')
            return;
        write_special(text);
    }
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
    else if (c == '\t' || c == '\n')
        sink_.put({&c, 1});
    else
        sink_.put(c == '\r' ? space_reference(c) : replacement_character);
}

} // namespace

void write_xml(std::string &out, const dtf_datatree &root, const xml_write_options &options)
{
    xml_writer(out, options).write_document(root);
}

} // namespace framework
