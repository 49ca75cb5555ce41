/*
 * Documents through get, plan and edit on a small device: the input is one, or says what tree it shall be, which is
 * then given in both encodings. Nothing but a std::runtime_error of one line comes out, and of an edit nothing but a
 * netconf_error; a reply can be read again and is the same in both encodings; an edit does what its dry run said.
 */
#include "input.h"

#include "ostore/temporary_folder.h"

#include "device/load.h"
#include "device/native_tables.h"
#include "framework/json_writer.h"
#include "framework/xml_writer.h"
#include "service/edit.h"
#include "service/get.h"
#include "service/netconf_error.h"
#include "service/request_plan.h"

#include <fstream>
#include <map>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using framework::document_format;
using framework::document_use;

constexpr const char *inventory = R"({"inventory": ["0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-PRE"]})";
constexpr const char *interfaces = R"({"Vantra-TALIN-ifmgr-cfg:interface-configurations": {"interface-configuration": [
    {"active": "act", "interface-name": "HundredGigE0/0/0/0", "description": "client"},
    {"active": "act", "interface-name": "Ots0/1/0/1"}, {"active": "pre", "interface-name": "Ots0/1/0/0"}]}})";
constexpr const char *ports = R"({"Vantra-TALIN-controller-kestrel-ots-oper:ots-oper": {"ots-ports": {"ots-port": [
    {"name": "Ots0/1/0/1", "ots-spectrum-info": {"spectrum-slice-power-info": [
        {"lower-frequency": "191350000", "upper-frequency": "191400000", "rx-power": -435},
        {"lower-frequency": "191450000", "upper-frequency": "191500000"}]}},
    {"name": "Ots0/2/0/1"}, {"name": "Ots0/4/0/0"}]}}})";

/* The device, opened once, and a file in memory that documents come from. */
struct bench {
    temporary_folder folder;
    std::string inventory_file = folder.path / "inventory.json";
    device::folder device = device::folder::create(folder.path / "device");
    service::plugin mapper;
    int document = ::memfd_create("document", 0);
    std::string document_file = "/proc/self/fd/" + std::to_string(document);
    std::map<std::string, std::string> configuration;

    bench()
    {
        std::ofstream(inventory_file) << inventory;
        device::load(device, device::schema(), {{"i", inventory}, {"c", interfaces}, {"o", ports}});
        configuration = stored();
    }
    std::map<std::string, std::string> stored()
    {
        std::map<std::string, std::string> all;
        const ostore::read_transaction txn(device.database());
        for (ostore::cursor at(txn, device.database().table(device::interfaces_table)); at.next();)
            all.emplace(at.key(), at.value());
        return all;
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

std::string get(bool config_only)
{
    service::get_options options;
    options.filter = on().document_file;
    options.config_only = config_only;
    options.format = document_format::xml;
    const std::string xml = service::get_document(on().mapper, on().device, options);
    options.format = document_format::json;
    const std::string json = service::get_document(on().mapper, on().device, options);
    if (as_xml(xml, document_use::data) != xml || as_xml(json, document_use::data) != xml)
        fuzz::report("a reply's encodings differ", xml + json);
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
        const bool changed = on().stored() != on().configuration;
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
std::string request(unsigned what, std::string_view document)
{
    if (::ftruncate(on().document, 0) != 0 ||
        ::pwrite(on().document, document.data(), document.size(), 0) != static_cast<ssize_t>(document.size()))
        std::exit(2);
    std::string message;
    try {
        switch (what % 8) {
        case 0:
        case 1:
            return get(what % 8 == 1);
        case 2:
        case 3:
        case 4:
            return plan(what % 8 == 2 ? 10 : what % 8 == 3 ? 0 : 1);
        default:
            message = edit(what % 8 == 5   ? service::edit_operation::merge
                           : what % 8 == 6 ? service::edit_operation::replace
                                           : service::edit_operation::none);
            if (!message.starts_with("error: "))
                return message;
        }
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
std::string grow(fuzz::input &in, std::size_t position, int room)
{
    struct element {
        const char *tag;
        std::size_t first, count; /* its children's places in the table */
    };
    constexpr element elements[] = {{"channel-monitors", 1, 1},
                                    {"channel-monitor", 2, 4},
                                    {"name", 0, 0},
                                    {"config", 6, 2},
                                    {"state", 6, 2},
                                    {"channels", 8, 1},
                                    {"name", 0, 0},
                                    {"monitor-port", 0, 0},
                                    {"channel", 9, 3},
                                    {"lower-frequency", 0, 0},
                                    {"upper-frequency", 0, 0},
                                    {"state", 12, 3},
                                    {"lower-frequency", 0, 0},
                                    {"upper-frequency", 0, 0},
                                    {"power", 0, 0},
                                    {"extra", 0, 0}};
    constexpr const char *values[] = {"0/1-CHMON-PRE", "0/1-CHMON-BST", "0/2-CHMON-PRE",   "0/3-CHMON-PRE",
                                      "191350000",     "191400000",     "0/1-OtsCtrl-0/1", "-4.35",
                                      "%s%n",          "&lt;\xc3\xa9",  " a\nb ",          "0/01-CHMON-PRE"};
    constexpr const char *operations[] = {"merge", "replace", "create", "delete", "remove"};
    const element &at = elements[position];
    const unsigned facts = in.byte();
    std::string text = std::string("<") + at.tag;
    text += facts % 64 == 1 ? " xmlns='urn:foreign'" : "";
    if (facts % 4 == 3)
        text += std::string(" nc:operation='") + in.pick(operations) + "'";
    text += '>';
    if (at.count == 0)
        return text + (facts % 8 >= 3 ? in.pick(values) : "") + "</" + at.tag + '>';
    /* Runs of one name stand together, as JSON has them. */
    for (std::size_t child = at.first; child < at.first + at.count && room > 0; ++child)
        for (std::size_t copies = in.byte() % 8; copies > 4; --copies)
            text += grow(in, child, room - 1);
    text += facts % 32 == 2 ? grow(in, std::size(elements) - 1, 0) : "";
    return text + "</" + at.tag + '>';
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
        request(what, in.rest());
    else
        request_twice(what, "<config xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0' "
                            "xmlns='http://openconfig.net/yang/channel-monitor'>" +
                                grow(in, 0, 12) + "</config>");
    return 0;
}
