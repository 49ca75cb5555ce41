#include "service/plan_notes.h"
#include "service/plan_text.h"

#include "framework/schema_facts.h"

#include <string_view>

namespace service {

namespace {

constexpr std::size_t indent_width = 2;

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

void attribute(std::string &to, std::string_view name, std::string_view value)
{
    to.append(" ").append(name).append("=\"").append(escaped(value)).append("\"");
}

void start_tag(std::string &to, const framework::mapping *walk, const dtf_datatree &node, const char *outer_ns)
{
    to.append("<").append(node.tag);
    if (node.ns != nullptr && !framework::same_namespace(node.ns, outer_ns))
        attribute(to, "xmlns", node.ns);
    if (outer_ns == nullptr && has_notes(walk, node)) {
        attribute(to, "xmlns:nc", framework::netconf_namespace);
        attribute(to, "xmlns:chmon", plan_namespace);
    }
    const plan_notes notes = notes_of(walk, node);
    if (!notes.operation.empty())
        attribute(to, "nc:operation", notes.operation);
    if (!notes.source.empty())
        attribute(to, "chmon:source", notes.source);
}

void element(std::string &to, const framework::mapping *walk, const dtf_datatree &node, const char *outer_ns,
             std::size_t depth)
{
    to.append(depth * indent_width, ' ');
    start_tag(to, walk, node, outer_ns);
    const auto children = children_of(node);
    if (children.empty() && value_of(node).empty()) {
        to.append("/>\n");
        return;
    }
    to.append(">").append(escaped(value_of(node)));
    if (!children.empty()) {
        to.append("\n");
        for (const dtf_datatree &child : children)
            element(to, walk, child, node.ns, depth + 1);
        to.append(depth * indent_width, ' ');
    }
    to.append("</").append(node.tag).append(">\n");
}

} // namespace

std::string plan_xml(const dtf_datatree &native, const framework::mapping *walk)
{
    std::string text;
    const auto tops = children_of(native);
    if (tops.size() == 1) {
        element(text, walk, tops.front(), nullptr, 0);
        return text;
    }
    text.append("<data");
    attribute(text, "xmlns", framework::netconf_namespace);
    text.append(tops.empty() ? "/>\n" : ">\n");
    for (const dtf_datatree &top : tops)
        element(text, walk, top, nullptr, 1);
    return text.append(tops.empty() ? "" : "</data>\n");
}

} // namespace service
