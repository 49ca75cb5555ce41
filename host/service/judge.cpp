#include "service/judge.h"

#include "service/tree_access.h"

#include "framework/json_writer.h"
#include "framework/tree.h"
#include "framework/xml_writer.h"

#include "device/schema.h"

#include <algorithm>
#include <string_view>

namespace service {

namespace {

/* Whether every monitor has its configured part, to which its key refers. */
bool is_complete(const dtf_datatree &reply)
{
    return std::ranges::all_of(children_of(reply), [](const dtf_datatree &top) {
        return std::ranges::all_of(children_of(top), [](const dtf_datatree &monitor) {
            return framework::find_child(monitor, "config") != nullptr;
        });
    });
}

device::format to_device(document_format format)
{
    return format == document_format::xml ? device::format::xml : device::format::json;
}

/*
 * Whether the first element is NETCONF's <data> or <config>. A comment before it may hold a tag as well: then the
 * document is judged in another form, and no differently.
 */
bool is_wrapped(std::string_view xml)
{
    std::size_t start = xml.find('<');
    while (start != std::string_view::npos && start + 1 < xml.size() &&
           (xml[start + 1] == '?' || xml[start + 1] == '!'))
        start = xml.find('<', start + 1);
    if (start == std::string_view::npos)
        return false;
    std::string_view name = xml.substr(start + 1);
    name = name.substr(0, name.find_first_of(" \t\r\n/>"));
    name.remove_prefix(name.find(':') + 1); /* npos + 1 is 0 */
    return name == "data" || name == "config";
}

} // namespace

void write_document(const dtf_datatree &tree, document_format format, const framework::text_receiver &out)
{
    if (format == document_format::xml)
        framework::write_xml(out, tree);
    else
        framework::write_json(out, tree);
}

std::string write_document(const dtf_datatree &tree, document_format format)
{
    std::string text;
    write_document(tree, format, framework::append_to(text));
    return text;
}

/* The judge knows no wrapper: what is in one is judged element by element. */
void judge_native(const dtf_datatree &native, const std::string &text, document_format format, const std::string &name)
{
    const device::schema judge;
    if (format != document_format::xml || !is_wrapped(text)) {
        judge.validate(text, to_device(format), device::check::whole, name);
        return;
    }
    for (const dtf_datatree &top : children_of(native))
        judge.validate(write_document(top, format), to_device(format), device::check::whole, name + ": " + top.tag);
}

void judge_reply(const dtf_datatree &reply, reply_extent extent, const std::string &text, document_format format)
{
    if (children_of(reply).empty())
        return;
    const auto how = extent == reply_extent::whole && is_complete(reply) ? device::check::whole : device::check::types;
    device::schema().validate(text, to_device(format), how, "the result");
}

} // namespace service
