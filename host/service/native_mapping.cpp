#include "service/native_mapping.h"

#include "service/merge.h"
#include "service/tree_access.h"
#include "service/walk.h"
#include "service/wrong_model.h"

#include "device/schema.h"
#include "framework/json_writer.h"
#include "framework/schema_facts.h"
#include "framework/xml_writer.h"

#include "oc_chmon.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace service {

namespace {

/* A native model: its top container, and the plug-in's walker for it. */
struct native_model {
    const char *tag;
    const char *ns;
    framework::walker walker;
};

/* In the order of their parts in a monitor's entry: configuration before state. */
std::array<native_model, 2> native_models(const plugin &mapper)
{
    return {{{"interface-configurations", CHMON_NS_VANTRA_TALIN_IFMGR_CFG, mapper.interfaces_walker()},
             {"ots-oper", CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER, mapper.operational_walker()}}};
}

bool is_top_of(const dtf_datatree &node, const native_model &model)
{
    return std::string_view(node.tag) == model.tag && framework::same_namespace(node.ns, model.ns);
}

std::string as_text(const native_model &model) { return std::string(model.tag) + " in " + model.ns; }

void check_models(std::span<const dtf_datatree> tops, std::span<const native_model, 2> models, const std::string &name)
{
    for (const dtf_datatree &top : tops) {
        if (std::ranges::none_of(models, [&top](const native_model &model) { return is_top_of(top, model); }))
            throw wrong_model(name, top, "native data: " + as_text(models[0]) + " or " + as_text(models[1]));
    }
    if (tops.empty())
        throw wrong_model(name + ": the document holds no data");
}

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

void judge_reply(const dtf_datatree &reply, const std::string &text, document_format format)
{
    if (children_of(reply).empty())
        return;
    const auto how = is_complete(reply) ? device::check::whole : device::check::types;
    device::schema().validate(text, to_device(format), how, "the result");
}

} // namespace

dtf_datatree map_native(const plugin &mapper, const dtf_datatree &native, const std::string &name,
                        framework::arena &memory, std::uint32_t kind, const walk_options &walks)
{
    const auto models = native_models(mapper);
    const std::span<const dtf_datatree> tops = children_of(native);
    check_models(tops, models, name);
    dtf_datatree reply{};
    for (const native_model &model : models) {
        for (const dtf_datatree &top : tops) {
            if (!is_top_of(top, model))
                continue;
            framework::mapping walk(mapping_options_for(walks, framework::direction::native_to_openconfig, kind),
                                    memory);
            dtf_datatree mapped{};
            run_walk(walk, model.walker, top, mapped, walks);
            merge_monitors(memory, reply, mapped);
        }
    }
    return reply;
}

std::string map_document(const plugin &mapper, const map_options &options)
{
    framework::arena memory;
    const framework::document_options limits;
    const auto text = framework::read_document_text(options.document, limits.size_limit);
    const auto written_as = framework::format_of(text);
    /* The reader works in place: what is to be judged later is copied first. */
    const std::string original(options.validate ? text.view() : std::string_view());
    const dtf_datatree native = framework::parse_document(text, memory, limits);
    if (options.validate)
        judge_native(native, original, written_as, text.name);
    const dtf_datatree reply = map_native(mapper, native, text.name, memory, options.kind, options.walks);
    const auto wanted = options.format.value_or(written_as);
    std::string written = write_document(reply, wanted);
    if (options.validate)
        judge_reply(reply, written, wanted);
    return written;
}

} // namespace service
