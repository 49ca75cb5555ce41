// A device's store: what was loaded comes back, all of it or nothing, and no more is fetched than was asked for.
#include "device/inventory.h"
#include "device/load.h"
#include "device/native_reader.h"
#include "device/native_writer.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>

using namespace device;

namespace {

const schema &modules()
{
    static const schema loaded;
    return loaded;
}

document example(const std::string &file)
{
    return read_document(std::filesystem::path(CHMON_SOURCE) / "examples/device" / file);
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
    /// Every record of every table: equal fingerprints, equal stores.
    std::vector<std::string> contents()
    {
        std::vector<std::string> all;
        const ostore::read_transaction txn(device_.database());
        for (const char *table : {ostore::database::items_table, interfaces_table, ports_table, slices_table}) {
            for (ostore::cursor at(txn, txn.store().table(table)); at.next();) {
                all.push_back(std::string(table) + ' ' + std::string(at.key()) + ' ' + std::string(at.value()));
            }
        }
        return all;
    }

    void change(const std::function<void(ostore::write_transaction &)> &what)
    {
        ostore::write_transaction txn(device_.database());
        what(txn);
        txn.commit();
    }

    leaves interface(const char *name)
    {
        const ostore::read_transaction txn(device_.database());
        return shown(native_reader(txn).interface("act", name).value_or(std::string_view()));
    }

    struct scratch {
        std::filesystem::path path =
            std::filesystem::path(testing::TempDir()) / ("device-" + std::to_string(::getpid()));
        ~scratch() { std::filesystem::remove_all(path); }
    };
    scratch folder_;
    folder device_ = folder::create(folder_.path);
};

TEST_F(store, holds_the_example_device_the_same_from_either_format)
{
    load(device_, modules(), {example("inventory.json"), example("interfaces.xml"), example("ots-oper.xml")});
    const auto from_xml = contents();
    const auto summary = load(device_, modules(), {example("ots-oper.json"), example("interfaces.json")});
    EXPECT_EQ(contents(), from_xml);
    EXPECT_FALSE(summary.monitors);
    EXPECT_EQ(summary.interfaces, 12U);
    EXPECT_EQ(summary.ports, 7U);
    EXPECT_EQ(summary.slices, 384U);
    EXPECT_EQ(interface("HundredGigE0/0/0/1"),
              (leaves{{"active", "act"}, {"interface-name", "HundredGigE0/0/0/1"}, {"shutdown", "(empty)"}}));
    EXPECT_EQ(interface("HundredGigE0/0/0/0").at(2), (leaves::value_type{"description", "client <east>"}));
    EXPECT_EQ(interface("HundredGigE0/0/0"), leaves());
    EXPECT_EQ(list_monitors(ostore::read_transaction(device_.database())).size(), 6U);
}

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
    EXPECT_EQ(contents().size(), 2U) << "what was loaded before is gone, slices too";
}

TEST_F(store, is_unchanged_by_a_load_of_which_one_document_is_bad)
{
    load(device_, modules(), {example("inventory.json"), example("interfaces.xml"), example("ots-oper.xml")});
    const auto before = contents();
    const std::string channel_monitors = R"({"openconfig-channel-monitor:channel-monitors": {}})";
    const document bad[] = {{"empty", " \n"},
                            {"text", "Ots0/1/0/0"},
                            {"nothing", "{}"},
                            ots_oper("{\"name\": 1"),
                            ots_oper(""),
                            {"openconfig", channel_monitors},
                            {"inventory", R"({"inventory": [""]})"},
                            {"second", R"({"inventory": []})"}};
    for (const document &second : bad) {
        try {
            const auto first = second.name == "oper" ? ots_oper("") : document{"first", R"({"inventory": []})"};
            load(device_, modules(), {first, second});
            ADD_FAILURE() << second.name << " was taken";
        } catch (const invalid_document &error) {
            EXPECT_EQ(std::string(error.what()).rfind(second.name + ": ", 0), 0U) << error.what();
        }
        EXPECT_EQ(contents(), before);
    }
}

TEST_F(store, changes_single_entries)
{
    load(device_, modules(), {example("interfaces.xml")});
    const auto entry = [](const char *name) {
        return std::vector<native_leaf>{{native_tag::interface_name, name}, {native_tag::active, "act"}};
    };
    const leaves bare = {{"active", "act"}, {"interface-name", "Ots0/1/0/0"}};
    leaves described = bare;
    described.emplace_back("description", "line to Zürich, booster");

    change([&](auto &txn) { native_writer(txn).merge_interface(entry("Ots0/1/0/0")); });
    EXPECT_EQ(interface("Ots0/1/0/0"), described);
    change([&](auto &txn) { native_writer(txn).put_interface(entry("Ots0/1/0/0")); });
    EXPECT_EQ(interface("Ots0/1/0/0"), bare);
    change([&](auto &txn) { native_writer(txn).merge_interface(entry("Ots0/3/0/1")); });
    EXPECT_EQ(interface("Ots0/3/0/1").size(), 2U);
    change([&](auto &txn) { EXPECT_TRUE(native_writer(txn).remove_interface("act", "Ots0/3/0/1")); });
    change([&](auto &txn) { EXPECT_FALSE(native_writer(txn).remove_interface("act", "Ots0/3/0/1")); });
    EXPECT_EQ(contents().size(), 12U);
    const native_leaf keyless[] = {{native_tag::active, "act"}};
    change([&](auto &txn) { EXPECT_THROW(native_writer(txn).put_interface(keyless), std::invalid_argument); });

    change([&](auto &txn) { EXPECT_TRUE(add_monitor(txn, "0/2-CHMON-PRE")); });
    change([&](auto &txn) { EXPECT_FALSE(add_monitor(txn, "0/2-CHMON-PRE")); });
    EXPECT_EQ(list_monitors(ostore::read_transaction(device_.database())), std::vector<std::string>{"0/2-CHMON-PRE"});
    change([&](auto &txn) { EXPECT_TRUE(remove_monitor(txn, "0/2-CHMON-PRE")); });
    change([&](auto &txn) { EXPECT_FALSE(remove_monitor(txn, "0/2-CHMON-PRE")); });
    change([&](auto &txn) { EXPECT_THROW(add_monitor(txn, "Ots0/2/0/1"), std::invalid_argument); });
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
            const auto port = reader.port("p");
            EXPECT_EQ(slices_of(reader, port.value()).size(), port->slice_count);
        } catch (const damaged_record &) {
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

TEST_F(store, is_made_once_and_opened_where_it_is)
{
    const auto message = [](const std::function<void()> &call) -> std::string {
        try {
            call();
            return "no error";
        } catch (const std::runtime_error &error) {
            return error.what();
        }
    };
    const auto elsewhere = folder_.path / "elsewhere";
    EXPECT_NE(message([&] { folder::open(elsewhere); }).find("chmon init"), std::string::npos);
    EXPECT_NE(message([&] { folder::create(folder_.path / "store.mdb"); }).find("cannot be made"), std::string::npos);
    std::filesystem::create_directory(elsewhere);
    std::ofstream(elsewhere / "store.mdb").put(' ');
    EXPECT_EQ(message([&] { folder::create(elsewhere); }).rfind("store " + elsewhere.string(), 0), 0U);
    std::filesystem::resize_file(elsewhere / "store.mdb", 0); // making it was broken off here
    EXPECT_EQ(message([&] { folder::create(elsewhere); }), "no error");
    EXPECT_EQ(message([&] { folder::open(elsewhere); }), "no error");
    EXPECT_NE(message([&] { folder::create(elsewhere); }).find("already"), std::string::npos);
    EXPECT_NE(message([&] { read_document(elsewhere); }).find("regular"), std::string::npos);
    EXPECT_NE(message([&] { read_document(elsewhere / "none"); }).find("No such file"), std::string::npos);
}

} // namespace
