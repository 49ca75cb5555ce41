// A device's store: what was loaded comes back, all of it or nothing, and no more is fetched than was asked for.
#include "ostore/temporary_folder.h"

#include "device/load.h"
#include "device/native_reader.h"

#include <gtest/gtest.h>

using namespace device;

namespace {

const schema &modules()
{
    static const schema loaded;
    return loaded;
}

using leaves = std::vector<std::pair<std::string, std::string>>;

/// A port document as JSON, slice i from i to i + 1, every third without a reading; and the same as leaves.
std::pair<std::string, std::vector<leaves>> spectrum(const std::string &port, unsigned slices)
{
    std::string text;
    std::vector<leaves> expected;
    for (unsigned i = 0; i < slices; ++i) {
        const std::string lower = std::to_string(i), upper = std::to_string(i + 1);
        expected.push_back({{"lower-frequency", lower}, {"upper-frequency", upper}});
        text.append(i == 0 ? "" : ",").append(R"({"lower-frequency": ")").append(lower);
        text.append(R"(", "upper-frequency": ")").append(upper).append("\"");
        if (i % 3 != 0) {
            expected.back().emplace_back("rx-power", "-" + upper);
            text.append(", \"rx-power\": -").append(upper);
        }
        text += "}";
    }
    return {"{\"name\": \"" + port + "\", \"ots-spectrum-info\": {\"spectrum-slice-power-info\": [" + text + "]}}",
            expected};
}

document ots_oper(const std::string &ports)
{
    return {"oper",
            R"({"Vantra-TALIN-controller-kestrel-ots-oper:ots-oper": {"ots-ports": {"ots-port": [)" + ports + "]}}}"};
}

leaves shown(std::string_view entry)
{
    leaves texts;
    for (const native_leaf &leaf : leaves_of(entry)) {
        texts.emplace_back(text_of(leaf.tag), leaf.value.value_or("(empty)"));
    }
    return texts;
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
    std::string text;
    std::vector<std::pair<std::string, std::vector<leaves>>> expected;
    for (const unsigned size : {0U, 1U, 255U, 256U, 257U, 1000U}) {
        // Names that begin alike: a port's records are not another one's.
        expected.emplace_back("Ots0/1/0/" + std::string(expected.size(), '1'), std::vector<leaves>());
        const auto &[port, slices] = spectrum(expected.back().first, size);
        expected.back().second = slices;
        text += (text.empty() ? "" : ",") + port;
    }
    load(device_, modules(), {ots_oper(text)});
    for (const auto &[name, slices] : expected) {
        const ostore::read_transaction txn(device_.database());
        const native_reader reader(txn);
        const auto port = reader.port(name);
        ASSERT_TRUE(port) << name;
        EXPECT_EQ(shown(port->entry), (leaves{{"name", name}}));
        EXPECT_EQ(port->slice_count, slices.size());
        EXPECT_EQ(txn.counts().records, 1U);
        EXPECT_EQ(slices_of(reader, *port), slices);
        EXPECT_EQ(txn.counts().records, 1 + (slices.size() + slices_per_record - 1) / slices_per_record);
    }
    const ostore::read_transaction txn(device_.database());
    std::size_t ports = 0;
    native_reader(txn).each_port([&](const ots_port &port) { EXPECT_EQ(port.name, expected.at(ports++).first); });
    EXPECT_EQ(ports, expected.size());
    EXPECT_EQ(txn.counts().records, expected.size());
    EXPECT_FALSE(native_reader(txn).port("Ots0/1/0/2"));
    EXPECT_FALSE(native_reader(txn).port(std::string(600, 'x')));

    load(device_, modules(), {ots_oper(spectrum("Ots0/1/0/1", 1).first)});
    unsigned records = 0;
    const ostore::read_transaction after(device_.database());
    for (ostore::cursor at(after, device_.database().table(slices_table)); at.next();)
        ++records;
    EXPECT_EQ(records, 1U) << "what was loaded before is gone, slices too";
}

// Each byte of each record changed and cut: a reader refuses, or gives as many slices as the port says.
TEST_F(store, refuses_damaged_records)
{
    load(device_, modules(), {ots_oper(spectrum("p", 3).first)});
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
