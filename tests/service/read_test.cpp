/* Fetching no more than what a filter needs loses nothing of the reply. */
#include "ostore/temporary_folder.h"

#include "device/folder.h"
#include "device/load.h"
#include "framework/document.h"
#include "framework/xml_writer.h"
#include "service/key_order.h"
#include "service/read.h"
#include "service/subtree_filter.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iostream>
#include <numeric>
#include <random>

namespace {

/* What a filter may name, by depth: what is there, what is not, what is unknown, and what is of another model. */
struct part {
    const char *tag;
    std::vector<const char *> values;
    std::vector<part> parts;
    unsigned rarity = 2; /* there once in so many times */
};

using texts = std::vector<const char *>;
const texts names = {"0/1-CHMON-PRE", "0/1-CHMON-BST", "0/2-CHMON-PRE", "0/3-CHMON-BST", "0/4-CHMON-PRE"};
const texts bounds = {"191350000", "191400000", "191450000", "191500000"};
const part name{"name", names, {}}, foreign{"o:name", {"0/1-CHMON-PRE"}, {}, 12};
const part port{"monitor-port", {"0/1-OtsCtrl-0/1"}, {}}, power{"power", {"-12.34"}, {}};
const part lower{"lower-frequency", bounds, {}}, upper{"upper-frequency", bounds, {}};
const part channel{"channel", {}, {lower, upper, {"state", {}, {lower, upper, power}}}};
const part monitor{"channel-monitor",
                   {},
                   {name,
                    {"config", {}, {name, port, foreign}},
                    {"state", {}, {name, port, foreign}},
                    {"channels", {}, {channel, channel}},
                    {"serial-number", {}, {}, 12},
                    foreign}};

/* A random choice of it, in any order: the place of a key is no matter. A leaf selects or matches. */
std::string filter_of(const part &of, std::mt19937 &random)
{
    std::vector<std::string> inside;
    if (!of.values.empty() && random() % 2 == 0)
        inside.emplace_back(of.values[random() % of.values.size()]);
    for (const part &each : of.parts)
        if (random() % each.rarity == 0)
            inside.push_back(filter_of(each, random));
    std::shuffle(inside.begin(), inside.end(), random);
    return std::string("<") + of.tag + ">" + std::accumulate(inside.begin(), inside.end(), std::string()) + "</" +
           of.tag + ">";
}

std::string text(const dtf_datatree &tree)
{
    std::string written;
    framework::write_xml(written, tree);
    return written;
}

/* The golden cases' small device: of three monitors one is not configured, and one has no channels. */
TEST(reading, no_filter_misses_what_was_not_fetched)
{
    const temporary_folder folder;
    device::folder device = device::folder::create(folder.path / "device");
    std::vector<device::document> documents;
    for (const char *const file : {"inventory.json", "interfaces.xml", "ots-oper.json"})
        documents.push_back(device::read_document(std::filesystem::path(CHMON_TINY_DEVICE) / file));
    device::load(device, device::schema(), documents);
    const service::plugin mapper;
    const ostore::read_transaction state(device.database());
    unsigned compared = 0, spared = 0;
    for (const std::uint32_t kind : {service::kind_get, service::kind_get_config}) {
        service::read_costs costs;
        framework::arena whole_memory;
        const dtf_datatree whole = service::read(mapper, state, nullptr, kind, whole_memory, {}, &costs);
        const std::uint64_t everything = costs.records;
        for (unsigned seed = 0; seed < 250; ++seed) {
            std::mt19937 random(seed);
            const std::string monitors = filter_of(monitor, random) + (seed % 2 == 0 ? filter_of(monitor, random) : "");
            framework::arena memory;
            framework::document_options options;
            options.use = framework::document_use::read;
            const std::string document = "<channel-monitors xmlns='http://openconfig.net/yang/channel-monitor' "
                                         "xmlns:o='urn:example:other'>" +
                                         monitors + "</channel-monitors>";
            const dtf_datatree filter =
                framework::parse_document(framework::make_document_text(document, "filter"), memory, options);
            dtf_datatree wanted = service::cut_to_filter(whole, filter, memory);
            service::put_keys_first(wanted);
            const dtf_datatree got = service::read(mapper, state, &filter, kind, memory, {}, &costs);
            ASSERT_EQ(text(got), text(wanted)) << "kind " << kind << ", seed " << seed << ": " << monitors;
            ++compared;
            spared += costs.records < everything ? 1 : 0;
        }
    }
    std::cout << "filters=" << compared << " with less fetched=" << spared << '\n';
    EXPECT_GE(spared, compared / 4);
}

} // namespace
