// A device's store: what was put in comes back, all of it, and no more is fetched than was asked for.
#include "ostore/temporary_folder.h"

#include "device/folder.h"
#include "device/native_reader.h"
#include "device/native_records.h"

#include <gtest/gtest.h>

using namespace device;

namespace {

using leaves = std::vector<std::pair<std::string, std::string>>;

/// A port whose slice i goes from i to i + 1, every third without a reading.
struct port_with_slices {
    std::string name;
    std::vector<leaves> slices;

    port_with_slices(std::string called, unsigned count) : name(std::move(called))
    {
        for (unsigned i = 0; i < count; ++i) {
            const std::string lower = std::to_string(i), upper = std::to_string(i + 1);
            slices.push_back({{"lower-frequency", lower}, {"upper-frequency", upper}});
            if (i % 3 != 0) {
                slices.back().emplace_back("rx-power", "-" + upper);
            }
        }
    }
};

/// Puts the ports in place of all that are there.
void store_ports(const folder &device, const std::vector<port_with_slices> &ports)
{
    native_records records;
    records.begin_ports();
    for (const port_with_slices &port : ports) {
        records.begin_port(port.name, std::vector<native_leaf>{{native_tag::name, port.name}});
        for (const leaves &slice : port.slices) {
            std::vector<native_leaf> leaves_given;
            for (const auto &[tag, value] : slice) {
                leaves_given.push_back({native_tag_of(tag).value(), value});
            }
            records.add_slice(leaves_given);
        }
        records.end_port();
    }
    ostore::write_transaction txn(device.database());
    records.store(txn);
    txn.commit();
}

/// All slices of a port, in terms of what the cursor promises.
std::vector<leaves> slices_of(const native_reader &reader, const ots_port &port)
{
    std::vector<leaves> slices;
    flat_node node;
    for (slice_cursor cursor(reader, port); cursor.next(node);) {
        if (node.tag == native_tag::spectrum_slice_power_info) {
            slices.emplace_back();
        } else {
            slices.back().emplace_back(text_of(node.tag), node.value == nullptr ? "(empty)" : node.value);
        }
    }
    return slices;
}

class store : public testing::Test
{
  protected:
    temporary_folder folder_;
    folder device_ = folder::create(folder_.path / "device");
};

TEST_F(store, gives_back_spectra_of_any_size_and_fetches_only_what_is_asked_for)
{
    std::vector<port_with_slices> expected;
    for (const unsigned size : {0U, 1U, 255U, 256U, 257U, 1000U}) {
        // Names that begin alike: a port's records are not another one's.
        expected.emplace_back("Ots0/1/0/" + std::string(expected.size(), '1'), size);
    }
    store_ports(device_, expected);
    for (const auto &[name, slices] : expected) {
        const ostore::read_transaction txn(device_.database());
        const native_reader reader(txn);
        const auto port = reader.port(name);
        ASSERT_TRUE(port) << name;
        EXPECT_EQ(leaves_of(port->entry).size(), 1U);
        EXPECT_EQ(port->slice_count, slices.size());
        EXPECT_EQ(txn.counts().records, 1U);
        EXPECT_EQ(slices_of(reader, *port), slices);
        EXPECT_EQ(txn.counts().records, 1 + (slices.size() + slices_per_record - 1) / slices_per_record);
    }
    const ostore::read_transaction txn(device_.database());
    std::size_t ports = 0;
    native_reader(txn).each_port([&](const ots_port &port) { EXPECT_EQ(port.name, expected.at(ports++).name); });
    EXPECT_EQ(ports, expected.size());
    EXPECT_EQ(txn.counts().records, expected.size());
    EXPECT_FALSE(native_reader(txn).port("Ots0/1/0/2"));
    EXPECT_FALSE(native_reader(txn).port(std::string(600, 'x')));

    store_ports(device_, {{"Ots0/1/0/1", 1}});
    ostore::write_transaction after(device_.database());
    EXPECT_EQ(after.erase_all(device_.database().table(slices_table)), 1U) << "what was stored before is gone";
}

// Each byte of each record changed and cut: a reader refuses, or gives as many slices as the port says.
TEST_F(store, refuses_damaged_records)
{
    store_ports(device_, {{"p", 3}});
    int cases = 0, refused = 0;
    const auto try_record = [&](const char *table, const std::string &key, const std::string &value) {
        ostore::write_transaction txn(device_.database()); // never committed
        txn.put(txn.store().table(table), key, value);
        const native_reader reader(txn);
        ++cases;
        try {
            naming_store(txn, [&reader] {
                const auto port = reader.port("p");
                EXPECT_EQ(slices_of(reader, port.value()).size(), port->slice_count);
            });
        } catch (const ostore::store_error &damage) {
            EXPECT_NE(std::string_view(damage.what()).find("/store.mdb: the store is damaged"), std::string_view::npos);
            ++refused;
        }
    };
    for (const auto &[table, key] : {std::pair{ports_table, std::string("p")}, {slices_table, slices_key("p", 0)}}) {
        const ostore::read_transaction txn(device_.database());
        const std::string sound(txn.get(txn.store().table(table), key).value());
        for (std::size_t place = 0; place < sound.size(); ++place) {
            try_record(table, key, sound.substr(0, place));
            for (const int flipped : {1, 2, 64, 128}) {
                std::string changed = sound;
                changed[place] = static_cast<char>(changed[place] ^ flipped);
                try_record(table, key, changed);
            }
        }
    }
    EXPECT_GT(cases, 350);
    EXPECT_GT(refused, cases / 3);
}

} // namespace
