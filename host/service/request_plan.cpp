#include "service/request_plan.h"

#include "device/temporary_inventory.h"
#include "service/netconf_error.h"
#include "service/plan_text.h"
#include "service/tree_access.h"
#include "service/walk.h"
#include "service/wrong_model.h"

#include "framework/schema_facts.h"

#include "oc_chmon.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string_view>

namespace service {

namespace {

framework::mapping_options request_options(const plugin &mapper, std::uint32_t kind, framework::arena &memory,
                                           const walk_options &walks)
{
    auto options = mapping_options_for(walks, framework::direction::openconfig_to_native, kind);
    options.request_memory = &memory;
    options.request_key = [&mapper](std::string_view controller) { return mapper.monitor_of(controller); };
    return options;
}

/* The document's one top container; everything else is refused, for the plug-in would take any node for it. */
const dtf_datatree &request_in(const dtf_datatree &document, const std::string &name)
{
    const auto tops = children_of(document);
    if (tops.empty())
        throw wrong_model(name + ": the document holds no request");
    for (const dtf_datatree &top : tops) {
        if (std::string_view(top.tag) != monitors_tag ||
            !framework::same_namespace(top.ns, CHMON_NS_OPENCONFIG_CHANNEL_MONITOR))
            throw wrong_model(name, top, std::string(monitors_tag) + " in " + CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
    }
    if (tops.size() > 1)
        throw wrong_model(name + ": a request has one " + monitors_tag + ", this document has " +
                          std::to_string(tops.size()));
    return tops.front();
}

bool names_monitor(const dtf_datatree &request)
{
    return std::ranges::any_of(children_of(request),
                               [](const dtf_datatree &monitor) { return !leaf_value(monitor, "name").empty(); });
}

/* A refused request, and what a server would answer. */
[[noreturn]] void refuse(const walk_fault &fault)
{
    throw std::runtime_error(std::string(fault.what()) + "; NETCONF " + std::string(error_tag_of(fault.code())));
}

void note(const walk_options &walks, const char *what)
{
    if (walks.diagnostics != nullptr)
        *walks.diagnostics << "note: " << what << '\n';
}

} // namespace

bool is_read_kind(std::uint32_t kind) { return kind == 0 || kind == 10; }

request_plan::request_plan(const plugin &mapper, const dtf_datatree &request, std::uint32_t kind,
                           framework::arena &memory, const walk_options &walks)
    : walk_(request_options(mapper, kind, memory, walks), memory)
{
    run_walk(walk_, mapper.request_walker(), request, native_, walks);
}

std::string plan_document(const plugin &mapper, const plan_options &options)
try {
    framework::arena memory;
    framework::document_options reading;
    reading.use = is_read_kind(options.kind) ? framework::document_use::read : framework::document_use::edit;
    const auto text = framework::read_document_text(options.document, reading.size_limit);
    const auto written_as = framework::format_of(text);
    const dtf_datatree document = framework::parse_document(text, memory, reading);
    const dtf_datatree &request = request_in(document, text.name);

    std::optional<device::temporary_inventory> inventory;
    if (options.inventory)
        inventory.emplace(*options.inventory);
    else if (is_read_kind(options.kind) && !names_monitor(request))
        note(options.walks, "the request names no monitor, and without --inventory no controller is known to have one");
    const request_plan plan(mapper, request, options.kind, memory, options.walks);
    if (children_of(plan.native()).empty())
        note(options.walks, "the request concerns no native data");
    return plan_text(plan, options.format.value_or(written_as));
} catch (const walk_fault &fault) {
    refuse(fault);
}

} // namespace service
