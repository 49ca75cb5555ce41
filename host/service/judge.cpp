#include "service/judge.h"

#include "service/tree_access.h"

#include "framework/json_writer.h"
#include "framework/tree.h"
#include "framework/xml_wrapper.h"
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

/* The judge knows no wrapper. */
void judge_native(const framework::document_text &text, document_format format)
{
    const auto inner = format == document_format::xml ? framework::without_wrapper(text) : std::nullopt;
    device::schema().validate(inner ? std::string_view(*inner) : framework::content_of(text), to_device(format),
                              device::check::whole, text.name);
}

void judge_reply(const dtf_datatree &reply, reply_extent extent, const std::string &text, document_format format)
{
    if (children_of(reply).empty())
        return;
    const auto how = extent == reply_extent::whole && is_complete(reply) ? device::check::whole : device::check::types;
    device::schema().validate(text, to_device(format), how, "the result");
}

} // namespace service
