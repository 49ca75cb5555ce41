/* Fetching no more than what a filter needs loses nothing of the reply. */
#include "ostore/temporary_folder.h"

#include "device/folder.h"
#include "device/load.h"
#include "framework/document.h"
#include "framework/xml_writer.h"
#include "service/key_order.h"
#include "service/read.h"
#include "service/subtree_filter.h"

#include <gtest/gtest.h>
#include <iostream>
#include <random>

namespace {

/* The golden cases' small device: of three monitors one is not configured, and one has no channels. */
class reading : public ::testing::Test
{
  protected:
    reading()
    {
        std::vector<device::document> documents;
        for (const char *const file : {"inventory.json", "interfaces.xml", "ots-oper.json"})
            documents.push_back(device::read_document(std::filesystem::path(CHMON_TINY_DEVICE) / file));
        device::load(device_, device::schema(), documents);
    }

    dtf_datatree parse(const std::string &monitors)
    {
        framework::document_options options;
        options.use = framework::document_use::read;
        const std::string text =
            "<channel-monitors xmlns=\"http://openconfig.net/yang/channel-monitor\" xmlns:o=\"urn:example:other\">" +
            monitors + "</channel-monitors>";
        return framework::parse_document(framework::make_document_text(text, "filter"), memory_, options);
    }

    static std::string text(const dtf_datatree &tree)
    {
        std::string written;
        framework::write_xml(written, tree);
        return written;
    }

    temporary_folder folder_;
    device::folder device_ = device::folder::create(folder_.path / "device");
    service::plugin mapper_;
    framework::arena memory_;
    service::read_costs costs_;
};

/* Makes filters of all kinds: what they name is there, is not, is unknown, or is of another model. */
class filter_maker
{
  public:
    explicit filter_maker(unsigned seed) : random_(seed) {}

    std::string monitors()
    {
        std::string made;
        for (unsigned i = 1 + below(2); i > 0; --i)
            made += element("channel-monitor", maybe(name()) + maybe(names("config")) + maybe(names("state")) +
                                                   maybe(channels()) + rarely("<serial-number/>") +
                                                   rarely("<o:name>0/1-CHMON-PRE</o:name>"));
        return made;
    }

  private:
    unsigned below(unsigned end) { return std::uniform_int_distribution<unsigned>(0, end - 1)(random_); }
    std::string maybe(const std::string &text) { return below(2) == 0 ? text : ""; }
    std::string rarely(const std::string &text) { return below(12) == 0 ? text : ""; }

    static std::string element(const std::string &tag, const std::string &content)
    {
        return "<" + tag + ">" + content + "</" + tag + ">";
    }

    /* A leaf to select or to match. */
    std::string leaf(const std::string &tag, const std::string &value)
    {
        return element(tag, below(2) == 0 ? "" : value);
    }

    std::string name()
    {
        return leaf("name", "0/" + std::to_string(1 + below(4)) + (below(2) == 0 ? "-CHMON-PRE" : "-CHMON-BST"));
    }

    std::string names(const std::string &tag)
    {
        return element(tag, maybe(name()) + maybe(leaf("monitor-port", "0/1-OtsCtrl-0/1")) + rarely("<o:name/>"));
    }

    std::string bound(const std::string &tag) { return leaf(tag, std::to_string(191350000 + 50000 * below(4))); }

    std::string channels()
    {
        std::string made;
        for (unsigned i = below(3); i > 0; --i) {
            std::string state = element("state", maybe(bound("lower-frequency")) + maybe(bound("upper-frequency")) +
                                                     maybe(leaf("power", "-12.34")));
            /* Also with the keys behind: their place is no matter. */
            const std::string keys = maybe(bound("lower-frequency")) + maybe(bound("upper-frequency"));
            made += element("channel", below(2) == 0 ? keys + maybe(state) : maybe(state) + keys);
        }
        return element("channels", made);
    }

    std::mt19937 random_;
};

TEST_F(reading, NoFilterMissesWhatWasNotFetched)
{
    const ostore::read_transaction state(device_.database());
    constexpr unsigned floor = 500;
    unsigned compared = 0, spared = 0;
    for (const std::uint32_t kind : {service::kind_get, service::kind_get_config}) {
        framework::arena whole_memory;
        const dtf_datatree whole = service::read(mapper_, state, nullptr, kind, whole_memory, {}, &costs_);
        const std::uint64_t everything = costs_.records;
        for (unsigned seed = 0; seed < 250; ++seed) {
            memory_ = framework::arena();
            const std::string monitors = filter_maker(seed).monitors();
            const dtf_datatree filter = parse(monitors);
            dtf_datatree wanted_reply = service::cut_to_filter(whole, filter, memory_);
            service::put_keys_first(wanted_reply);
            const std::string wanted = text(wanted_reply);
            const std::string got = text(service::read(mapper_, state, &filter, kind, memory_, {}, &costs_));
            ASSERT_EQ(got, wanted) << "kind " << kind << ", seed " << seed << ": " << monitors;
            ++compared;
            spared += costs_.records < everything ? 1 : 0;
        }
    }
    std::cout << "filters=" << compared << " with less fetched=" << spared << " floor=" << floor << '\n';
    EXPECT_GE(compared, floor);
    EXPECT_GE(spared, compared / 4);
}

} // namespace
