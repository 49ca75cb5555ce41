#include "service/native_mapping.h"

#include "service/judge.h"
#include "service/merge.h"
#include "service/tree_access.h"
#include "service/walk.h"
#include "service/wrong_model.h"

#include "framework/schema_facts.h"

#include "oc_chmon.h"

#include <algorithm>
#include <array>
#include <deque>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

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

} // namespace

dtf_datatree map_native(const plugin &mapper, const dtf_datatree &native, const std::string &name,
                        framework::arena &memory, std::uint32_t kind, const walk_options &walks)
{
    const auto models = native_models(mapper);
    const std::span<const dtf_datatree> tops = children_of(native);
    check_models(tops, models, name);
    std::deque<dtf_datatree> mapped;
    for (const native_model &model : models) {
        for (const dtf_datatree &top : tops) {
            if (!is_top_of(top, model))
                continue;
            auto options = mapping_options_for(walks, framework::direction::native_to_openconfig, kind);
            options.packs_entries = true;
            framework::mapping walk(std::move(options), memory);
            run_walk(walk, model.walker, top, mapped.emplace_back(), walks);
        }
    }
    std::vector<dtf_datatree *> parents;
    parents.reserve(mapped.size());
    for (dtf_datatree &one : mapped)
        parents.push_back(&one);
    dtf_datatree reply{};
    merge(memory, reply, parents);
    return reply;
}

void map_document(const plugin &mapper, const map_options &options, const framework::text_receiver &out)
{
    framework::arena memory;
    const framework::document_options limits;
    const auto text = framework::read_document_text(options.document, limits.size_limit);
    const auto written_as = framework::format_of(text);
    /* The reader works in place: what is to be judged later is copied first. */
    const auto original = framework::make_document_text(options.validate ? text.view() : std::string_view(), text.name);
    const dtf_datatree native = framework::parse_document(text, memory, limits);
    if (options.validate)
        judge_native(original, written_as);
    const dtf_datatree reply = map_native(mapper, native, text.name, memory, options.kind, options.walks);
    const auto wanted = options.format.value_or(written_as);
    if (!options.validate) {
        write_document(reply, wanted, out);
        return;
    }
    const std::string written = write_document(reply, wanted);
    judge_reply(reply, reply_extent::whole, written, wanted);
    out(written);
}

} // namespace service
