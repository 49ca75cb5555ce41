#include "service/get.h"

#include "service/judge.h"
#include "service/netconf_error.h"
#include "service/stop_watch.h"
#include "service/subtree_filter.h"
#include "service/tree_access.h"

#include "framework/document.h"

#include <chrono>
#include <ostream>
#include <string_view>

namespace service {

namespace {

/* The costs of a whole get. */
struct get_costs : read_costs {
    duration parse{};
    duration print{};
};

double microseconds(get_costs::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

void tell(std::ostream &stream, const get_costs &costs)
{
    const auto before = stream.precision(1);
    const auto flags = stream.setf(std::ios::fixed, std::ios::floatfield);
    stream << "stats: parse " << microseconds(costs.parse) << " us, plan " << microseconds(costs.plan) << " us, fetch "
           << microseconds(costs.fetch) << " us, map " << microseconds(costs.map) << " us, filter "
           << microseconds(costs.filter) << " us, print " << microseconds(costs.print) << " us; " << costs.records
           << " native records, " << costs.bytes << " bytes\n";
    stream.flags(flags);
    stream.precision(before);
}

/* The filter that a document is, in NETCONF's wrapper or alone. XML's <filter> is taken off by the reader; its JSON
 * form names the module that defines get. */
dtf_datatree filter_in(const dtf_datatree &document)
{
    const auto tops = children_of(document);
    if (tops.size() == 1 && tops.front().ns != nullptr) {
        const std::string_view ns = tops.front().ns;
        if (ns == "ietf-netconf" && std::string_view(tops.front().tag) == "filter") {
            dtf_datatree filter = tops.front();
            filter.tag = nullptr;
            return filter;
        }
        /* A message around it would select nothing, which is never what is meant; XML's is refused by the reader. */
        if (ns == "ietf-netconf")
            throw application_error("unknown-element", std::string("/") + tops.front().tag,
                                    "a filter is wanted here, without the message around it");
    }
    return document;
}

void run(const plugin &mapper, const device::folder &device, const get_options &options,
         const framework::text_receiver &out)
{
    /* Before the memory of the trees, which point into what it sees. */
    const ostore::read_transaction state(device.database());
    framework::arena memory;
    get_costs costs;
    stop_watch watch;
    std::optional<dtf_datatree> filter;
    document_format format = document_format::xml;
    if (options.filter) {
        framework::document_options reading;
        reading.use = framework::document_use::read;
        const auto text = framework::read_document_text(*options.filter, reading.size_limit);
        format = framework::format_of(text);
        filter = filter_in(framework::parse_document(text, memory, reading));
        trim_texts(*filter, memory);
    }
    costs.parse = watch.lap();
    const dtf_datatree reply = read(mapper, state, filter ? &*filter : nullptr,
                                    options.config_only ? kind_get_config : kind_get, memory, options.walks, &costs);
    watch.lap();
    format = options.format.value_or(format);
    if (options.validate) {
        const std::string text = write_document(reply, format);
        judge_reply(reply, filter ? reply_extent::part : reply_extent::whole, text, format);
        out(text);
    } else {
        write_document(reply, format, out);
    }
    costs.print = watch.lap();
    if (options.stats != nullptr)
        tell(*options.stats, costs);
}

} // namespace

void get_document(const plugin &mapper, const device::folder &device, const get_options &options,
                  const framework::text_receiver &out)
{
    answer([&] { run(mapper, device, options, out); });
}

std::string get_document(const plugin &mapper, const device::folder &device, const get_options &options)
{
    std::string text;
    get_document(mapper, device, options, framework::append_to(text));
    return text;
}

} // namespace service
