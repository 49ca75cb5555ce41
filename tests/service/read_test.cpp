/* What a read fetches, and that fetching less than everything loses nothing. */
#include "ostore/temporary_folder.h"

#include "device/folder.h"
#include "device/inventory.h"
#include "device/native_records.h"
#include "framework/document.h"
#include "framework/xml_writer.h"
#include "service/key_order.h"
#include "service/read.h"
#include "service/subtree_filter.h"

#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <thread>

namespace {

using device::native_tag;

constexpr unsigned many_slices = 600; /* three records */

/* Six monitors, the last of them not configured: one with many slices, the others with four, every third unread. */
class reading : public ::testing::Test
{
  protected:
    reading()
    {
        device::native_records records;
        records.begin_interfaces();
        records.begin_ports();
        unsigned number = 0;
        for (const char *const name :
             {"Ots0/1/0/0", "Ots0/1/0/1", "Ots0/2/0/0", "Ots0/2/0/1", "Ots0/3/0/0", "Ots0/3/0/1"}) {
            const std::vector<device::native_leaf> entry = {{native_tag::active, "act"},
                                                            {native_tag::interface_name, name}};
            if (++number < 6)
                records.add_interface(entry);
            records.begin_port(name, std::vector<device::native_leaf>{{native_tag::name, name}});
            for (unsigned i = 0; i < (number == 1 ? many_slices : 4u); ++i)
                add_slice(records, i);
            records.end_port();
        }
        ostore::write_transaction txn(device_.database());
        records.store(txn);
        device::replace_monitors(txn, {"0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST", "0/2-CHMON-PRE",
                                       "0/3-CHMON-BST", "0/3-CHMON-PRE"});
        txn.commit();
    }

    static void add_slice(device::native_records &records, unsigned number)
    {
        const std::string lower = std::to_string(191000 + number), upper = std::to_string(191001 + number);
        const std::string power = std::to_string(-1000 - static_cast<int>(number));
        std::vector<device::native_leaf> slice = {{native_tag::lower_frequency, lower},
                                                  {native_tag::upper_frequency, upper}};
        if (number % 3 != 0)
            slice.push_back({native_tag::rx_power, power});
        records.add_slice(slice);
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

TEST_F(reading, FetchesTheRecordsThatTheFilterNeeds)
{
    const ostore::read_transaction state(device_.database());
    struct wanted {
        const char *filter;
        std::uint64_t config_records; /* by a get-config */
        std::uint64_t records;        /* by a get */
    };
    /* A monitor is one record of configuration, one of its port, and its slices three or, for the others, one. */
    const wanted table[] = {
        {"<channel-monitor><name>0/1-CHMON-BST</name><config/></channel-monitor>", 1, 2},
        {"<channel-monitor><name>0/1-CHMON-BST</name><state/></channel-monitor>", 1, 2},
        {"<channel-monitor><name>0/1-CHMON-BST</name><channels/></channel-monitor>", 1, 5},
        {"<channel-monitor><name>0/1-CHMON-PRE</name></channel-monitor>", 1, 3},
        {"<channel-monitor><name>0/3-CHMON-PRE</name></channel-monitor>", 0, 2},
        {"<channel-monitor><name>0/9-CHMON-PRE</name></channel-monitor>", 0, 0},
        {"<channel-monitor><name/><config/></channel-monitor>", 5, 11},
        {"<channel-monitor><channels><channel><state><power/></state></channel></channels></channel-monitor>", 5, 19},
        {"<channel-monitor><o:name/></channel-monitor>", 0, 0},
        {"", 5, 19},
    };
    for (const wanted &row : table) {
        const dtf_datatree filter = parse(row.filter);
        service::read(mapper_, state, &filter, service::kind_get_config, memory_, {}, &costs_);
        EXPECT_EQ(costs_.records, row.config_records) << "get-config: " << row.filter;
        service::read(mapper_, state, &filter, service::kind_get, memory_, {}, &costs_);
        EXPECT_EQ(costs_.records, row.records) << "get: " << row.filter;
    }
}

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

    std::string bound(const std::string &tag) { return leaf(tag, std::to_string(191000 + below(4))); }

    std::string channels()
    {
        std::string made;
        for (unsigned i = below(3); i > 0; --i) {
            std::string state = element("state", maybe(bound("lower-frequency")) + maybe(bound("upper-frequency")) +
                                                     maybe(leaf("power", "-10.01")));
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

TEST_F(reading, SeesOneStateOfTheDevice)
{
    const ostore::read_transaction before(device_.database());
    std::thread([this] {
        ostore::write_transaction txn(device_.database());
        device::replace_monitors(txn, {});
        txn.commit();
    }).join();
    const dtf_datatree old_reply = service::read(mapper_, before, nullptr, service::kind_get, memory_, {}, nullptr);
    ASSERT_EQ(old_reply.child_count, 1u);
    EXPECT_EQ(old_reply.children[0].child_count, 6u);
    std::thread([this] {
        const ostore::read_transaction after(device_.database());
        EXPECT_EQ(service::read(mapper_, after, nullptr, service::kind_get, memory_, {}, nullptr).child_count, 0u);
    }).join();
}

} // namespace
