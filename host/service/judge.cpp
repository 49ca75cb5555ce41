#include "service/judge.h"

#include "service/tree_access.h"

#include "framework/json_writer.h"
#include "framework/tree.h"
#include "framework/xml_writer.h"

#include "device/schema.h"

#include <algorithm>

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

std::string write_document(const dtf_datatree &tree, document_format format)
{
    std::string text;
    if (format == document_format::xml)
        framework::write_xml(text, tree);
    else
        framework::write_json(text, tree);
    return text;
}

/* The judge knows no wrapper around several top elements, so these are judged one by one. */
void judge_native(const dtf_datatree &native, const std::string &text, document_format format, const std::string &name)
{
    const device::schema judge;
    const auto tops = children_of(native);
    if (tops.size() == 1)
        judge.validate(text, to_device(format), device::check::whole, name);
    else {
        for (const dtf_datatree &top : tops)
            judge.validate(write_document(top, format), to_device(format), device::check::whole, name + ": " + top.tag);
    }
}

void judge_reply(const dtf_datatree &reply, reply_extent extent, const std::string &text, document_format format)
{
    if (children_of(reply).empty())
        return;
    const auto how = extent == reply_extent::whole && is_complete(reply) ? device::check::whole : device::check::types;
    device::schema().validate(text, to_device(format), how, "the result");
}

} // namespace service
