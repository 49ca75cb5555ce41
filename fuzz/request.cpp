/*
 * Documents through get, plan and edit on a small device: the input is one, or says what tree it shall be, which is
 * then given in both encodings. Nothing but a std::runtime_error of one line comes out, and of an edit nothing but a
 * netconf_error; a reply can be read again, is the same in both encodings, and lacks nothing for what was not fetched;
 * an edit does what its dry run said.
 */
#include "input.h"

#include "service/edit_device.h"

#include "device/load.h"
#include "framework/json_writer.h"
#include "framework/schema_facts.h"
#include "framework/xml_writer.h"
#include "service/get.h"
#include "service/judge.h"
#include "service/key_order.h"
#include "service/read.h"
#include "service/request_plan.h"
#include "service/subtree_filter.h"
#include "service/tree_access.h"

#include <sys/mman.h>
#include <unistd.h>

namespace {

using framework::document_format;
using framework::document_use;

/* The small device of the golden cases, opened once, and a file in memory that documents come from. */
struct bench {
    temporary_folder folder;
    std::string inventory_file = CHMON_TINY_DEVICE "/inventory.json";
    device::folder device = device::folder::create(folder.path / "device");
    service::plugin mapper;
    int document = ::memfd_create("document", 0);
    std::string document_file = "/proc/self/fd/" + std::to_string(document);
    edits::records configuration;

    bench()
    {
        std::vector<framework::document_text> documents;
        for (const char *const file : {"inventory.json", "interfaces.xml", "ots-oper.json"})
            documents.push_back(framework::read_document_text(std::string(CHMON_TINY_DEVICE) + '/' + file, 1 << 20));
        device::load(device, device::schema(), documents);
        configuration = edits::stored(device);
    }
    void restore()
    {
        ostore::write_transaction txn(device.database());
        const auto table = device.database().table(device::interfaces_table);
        txn.erase_all(table);
        for (const auto &[key, value] : configuration)
            txn.put(table, key, value);
        txn.commit();
    }
};

bench &on()
{
    static bench made;
    return made;
}

dtf_datatree parse(const std::string &text, document_use use, framework::arena &memory)
{
    framework::document_options options;
    options.use = use;
    return framework::parse_document(framework::make_document_text(text, "text"), memory, options);
}

/* A text that the host wrote, as XML again. */
std::string as_xml(const std::string &text, document_use use)
{
    framework::arena memory;
    std::string xml;
    try {
        framework::write_xml(xml, parse(text, use, memory));
    } catch (const framework::parse_error &refused) {
        fuzz::report("the host cannot read what it wrote", refused.what() + ('\n' + text));
    }
    return xml;
}

/* A get's reply, made of all that the device has. */
std::string cut_from_all(dtf_datatree filter, bool config_only, framework::arena &memory)
{
    service::trim_texts(filter, memory);
    const ostore::read_transaction state(on().device.database());
    const auto kind = config_only ? service::kind_get_config : service::kind_get;
    const dtf_datatree all = service::read(on().mapper, state, nullptr, kind, memory, {});
    dtf_datatree cut = service::cut_to_filter(all, filter, memory);
    service::put_keys_first(cut);
    return service::write_document(cut, document_format::xml);
}

std::string get(const std::string &document, bool config_only)
{
    framework::arena memory;
    const dtf_datatree filter = parse(document, document_use::read, memory);
    const bool in_message = document.find("ietf-netconf:") != std::string::npos;
    service::get_options options;
    options.filter = on().document_file;
    options.config_only = config_only;
    options.format = document_format::xml;
    std::string xml, json;
    try {
        xml = service::get_document(on().mapper, on().device, options);
        options.format = document_format::json;
        json = service::get_document(on().mapper, on().device, options);
    } catch (const service::netconf_error &error) {
        if (!in_message)
            fuzz::report("a filter was refused", error.what() + ('\n' + document));
        throw;
    }
    if (as_xml(xml, document_use::data) != xml || as_xml(json, document_use::data) != xml)
        fuzz::report("a reply's encodings differ", xml + json);
    if (const std::string cut = in_message ? xml : cut_from_all(filter, config_only, memory); cut != xml)
        fuzz::report("a reply lacks what was not fetched", document + '\n' + xml + cut);
    return xml;
}

std::string plan(std::uint32_t kind)
{
    service::plan_options options;
    options.document = on().document_file;
    options.inventory = on().inventory_file;
    options.kind = kind;
    options.format = document_format::json;
    const std::string json = service::plan_document(on().mapper, options);
    options.format = document_format::xml;
    const std::string xml = service::plan_document(on().mapper, options);
    /* No reader takes the sources of an edit's nodes. */
    if (xml.find(":source=") == std::string::npos &&
        as_xml(xml, document_use::read) != as_xml(json, document_use::read))
        fuzz::report("a plan's encodings differ", xml + json);
    return xml;
}

std::string edit(service::edit_operation otherwise)
{
    service::edit_options options;
    options.document = on().document_file;
    options.default_operation = otherwise;
    std::string outcome[2];
    for (const bool dry : {true, false}) {
        options.dry_run = dry;
        try {
            for (const auto &change : service::edit_device(on().mapper, on().device, options))
                outcome[dry] += change.describe() + '\n';
        } catch (const service::netconf_error &error) {
            outcome[dry] = std::string("error: ") + error.what();
        }
        const bool changed = edits::stored(on().device) != on().configuration;
        if (changed != (!dry && !outcome[dry].empty() && !outcome[dry].starts_with("error: ")))
            fuzz::report("an edit stored something else than it said", outcome[dry]);
        if (changed)
            on().restore();
    }
    if (outcome[0] != outcome[1])
        fuzz::report("dry run and edit differ", outcome[1] + outcome[0]);
    return outcome[0];
}

/* The outcome of one request, and a finding where an exception is none of those that are documented. */
std::string request(unsigned what, const std::string &document)
{
    if (::ftruncate(on().document, 0) != 0 ||
        ::pwrite(on().document, document.data(), document.size(), 0) != static_cast<ssize_t>(document.size()))
        std::exit(2);
    constexpr std::uint32_t kinds[] = {10, 0, 1};
    constexpr service::edit_operation defaults[] = {service::edit_operation::merge, service::edit_operation::replace,
                                                    service::edit_operation::none};
    const unsigned way = what % 8;
    std::string message;
    try {
        if (way < 5)
            return way < 2 ? get(document, way == 1) : plan(kinds[way - 2]);
        message = edit(defaults[way - 5]);
        if (!message.starts_with("error: "))
            return message;
    } catch (const ostore::store_error &error) {
        fuzz::report("the store is blamed", error.what());
    } catch (const std::runtime_error &error) {
        message = std::string("error: ") + error.what();
    }
    if (std::any_of(message.begin(), message.end(), [](unsigned char c) { return c < ' '; }))
        fuzz::report("an error of more than one line", message);
    return message;
}

/* A tree of the input's choice as an XML document: mostly the model's elements, where they belong. */
std::string grow(fuzz::input &in, const framework::schema_node &at)
{
    constexpr const char *values[] = {"0/1-CHMON-PRE", "0/1-CHMON-BST", "0/2-CHMON-PRE",   "0/3-CHMON-PRE",
                                      "191350000",     "191400000",     "0/1-OtsCtrl-0/1", "-4.35",
                                      "%s%n",          "&lt;\xc3\xa9",  " a\nb ",          "0/01-CHMON-PRE"};
    constexpr const char *operations[] = {"merge", "replace", "create", "delete", "remove"};
    const std::string tag(at.tag);
    const unsigned facts = in.byte();
    std::string text = '<' + tag;
    text += facts % 64 == 1 ? " xmlns='urn:foreign'" : "";
    if (facts % 4 == 3)
        text += std::string(" nc:operation='") + in.pick(operations) + "'";
    text += '>';
    if (at.children.empty() && facts % 8 >= 3) {
        const std::size_t fitting = tag == "name"           ? in.below(4)
                                    : tag == "monitor-port" ? 6
                                    : tag == "power"        ? 7
                                                            : 4 + in.below(2);
        text += facts % 8 == 3 ? in.pick(values) : values[fitting];
    }
    /* Runs of one name stand together, as JSON has them. */
    for (const framework::schema_node &child : at.children)
        for (std::size_t copies = in.byte() % 8; copies > 3; --copies)
            text += grow(in, child);
    text += facts % 32 == 2 && !at.children.empty() ? "<extra/>" : "";
    return text + "</" + tag + '>';
}

/* The same document in both encodings has one outcome. */
void request_twice(unsigned what, const std::string &xml)
{
    framework::arena memory;
    std::string json;
    framework::write_json(json, parse(xml, document_use::edit, memory), {true, framework::explicit_operation});
    const std::string as_given = request(what, xml), translated = request(what, json);
    if (as_given != translated)
        fuzz::report("an encoding changes the outcome", xml + '\n' + json + '\n' + as_given + '\n' + translated);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::input in(data, size);
    const unsigned what = in.byte();
    if (what % 16 < 8)
        request(what, std::string(in.rest()));
    else
        request_twice(what, "<config xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0' "
                            "xmlns='http://openconfig.net/yang/channel-monitor'>" +
                                grow(in, *framework::find_schema_node(service::monitors_tag)) + "</config>");
    return 0;
}
