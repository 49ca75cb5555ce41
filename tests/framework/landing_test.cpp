/* Where added paths land. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace scripted;

namespace {

const std::string monitor_path = monitor;
const std::string channel_path = channel;

void add_channel(walk &w, const char *frequency)
{
    w.entry(ots_slice, [&] {
        EXPECT_EQ(w.add_entry(channel), FAULT_SUCCESS);
        w.add((channel_path + "/lower-frequency").c_str(), frequency);
        w.add((channel_path + "/state/lower-frequency").c_str(), frequency);
    });
}

void add_port(walk &w, const char *name, std::initializer_list<const char *> channels)
{
    w.entry(ots_port, [&] {
        w.add_entry(monitor);
        for (const char *frequency : channels)
            add_channel(w, frequency);
        /* After the channels: their frames are closed again. */
        if (name != nullptr)
            w.add((monitor_path + "/name").c_str(), name);
    });
}

TEST(landing, each_entry_gets_what_is_added_for_it_on_two_list_levels)
{
    for (const bool poison : {false, true}) {
        walk w;
        w.memory.set_poison(poison);
        EXPECT_EQ(w.run([](walk &walking) {
            add_port(walking, "A", {"1", "2"});
            add_port(walking, "B", {});
            add_port(walking, "C", {"3", "4", "5", "6", "7"});
            return FAULT_SUCCESS;
        }),
                  FAULT_SUCCESS);
        const auto one = [](const std::string &f) {
            return "channel{lower-frequency=" + f + " state{lower-frequency=" + f + "}}";
        };
        EXPECT_EQ(text_of(w.out), "{channel-monitors{channel-monitor{channels{" + one("1") + " " + one("2") +
                                      "} name=A} channel-monitor{name=B} channel-monitor{channels{" + one("3") + " " +
                                      one("4") + " " + one("5") + " " + one("6") + " " + one("7") + "} name=C}}}");
        EXPECT_TRUE(w.map.balanced());
    }
}

TEST(landing, an_entry_that_nobody_added_is_created_once_per_native_entry)
{
    walk w;
    w.run([](walk &walking) {
        for (const char *name : {"A", "B"}) {
            walking.entry(interface_entry, [&] {
                walking.add((monitor_path + "/name").c_str(), name);
                walking.add((monitor_path + "/config/name").c_str(), name);
            });
            walking.entry(interface_entry, [] {});
        }
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(w.out),
              "{channel-monitors{channel-monitor{name=A config{name=A}} channel-monitor{name=B config{name=B}}}}");
    const dtf_datatree &key = w.out.children[0].children[0].children[0];
    EXPECT_EQ(key.is_key, 1);
    EXPECT_EQ(key.flags, DTF_FLAG_VALID | DTF_FLAG_HAS_VALUE | DTF_FLAG_KEY);
    EXPECT_STREQ(key.ns, "urn:test");
}

TEST(landing, an_entry_left_without_its_key_is_withdrawn_with_all_below)
{
    for (const std::initializer_list<const char *> ports :
         {std::initializer_list<const char *>{nullptr}, {nullptr, "A"}, {"A", nullptr}, {"A", nullptr, nullptr, "B"}}) {
        walk w;
        w.run([&](walk &walking) {
            for (const char *name : ports)
                add_port(walking, name, {"1"});
            return FAULT_SUCCESS;
        });
        std::string expected;
        for (const char *name : ports) {
            if (name != nullptr)
                expected += (expected.empty() ? "" : " ") +
                            ("channel-monitor{channels{channel{lower-frequency=1 state{lower-frequency=1}}} name=" +
                             std::string(name) + "}");
        }
        EXPECT_EQ(text_of(w.out), expected.empty() ? "" : "{channel-monitors{" + expected + "}}");
    }
}

TEST(landing, what_exists_is_used_and_gets_the_new_value)
{
    walk w;
    w.run([](walk &walking) {
        walking.entry(ots_port, [&] {
            dtf_datatree *first = nullptr;
            dtf_datatree *again = nullptr;
            walking.add((monitor_path + "/name").c_str(), "old", false, nullptr, &first);
            walking.add((monitor_path + "/name").c_str(), "new", false, nullptr, &again);
            EXPECT_EQ(first, again);
            /* A closing slash names the entry; the value is not the entry's. */
            walking.add((monitor_path + "/").c_str(), "none");
            walking.add(monitor);
        });
        walking.entry(ots_port, [&] {
            walking.add((monitor_path + "/").c_str(), "none");
            walking.add((monitor_path + "/name").c_str(), "B");
        });
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(w.out), "{channel-monitors{channel-monitor{name=new} channel-monitor{name=B}}}");
}

TEST(landing, a_list_below_a_new_entry_starts_anew)
{
    walk w({.way = framework::direction::openconfig_to_native});
    const std::string slice = ots_slice;
    w.run([&](walk &walking) {
        walking.entry(monitor, [&] {
            for (const char *name : {"A", "B"}) {
                walking.add_entry(ots_port);
                walking.add("/ots-oper/ots-ports/ots-port/name", name);
                walking.add((slice + "/rx-power").c_str());
                walking.add((slice + "/lower-frequency").c_str());
            }
        });
        return FAULT_SUCCESS;
    });
    const std::string below = "ots-spectrum-info{spectrum-slice-power-info{rx-power lower-frequency}}";
    EXPECT_EQ(text_of(w.out), "{ots-oper{ots-ports{ots-port{name=A " + below + "} ots-port{name=B " + below + "}}}}");
}

TEST(landing, an_added_node_takes_over_the_operation_of_its_source)
{
    walk w({.way = framework::direction::openconfig_to_native, .request_kind = 1});
    framework::arena memory;
    dtf_datatree entry{};
    entry.tag = "channel-monitor";
    dtf_datatree &name = framework::add_child(memory, entry);
    name.tag = "name";
    name.value = "0/1-CHMON-PRE";
    name.is_key = 1;
    name.flags |= DTF_FLAG_HAS_VALUE | DTF_FLAG_OP_SET;
    name.operation = 2;
    w.run([&](walk &walking) {
        walking.entry(monitor, entry, [&] {
            walking.add_entry(interface_entry);
            walking.add("/interface-configurations/interface-configuration/interface-name", "Ots", false, &name);
        });
        return FAULT_SUCCESS;
    });
    const dtf_datatree &list_entry = w.out.children[0].children[0];
    const dtf_datatree &leaf = list_entry.children[0];
    EXPECT_EQ(leaf.operation, 2U);
    EXPECT_NE(leaf.flags & DTF_FLAG_OP_SET, 0U);
    ASSERT_NE(w.map.source_of(leaf), nullptr);
    EXPECT_EQ(w.map.source_of(leaf)->path, "/channel-monitor[name='0/1-CHMON-PRE']/name");
    EXPECT_EQ(w.map.source_of(list_entry), nullptr);
    EXPECT_EQ(list_entry.flags & DTF_FLAG_OP_SET, 0U);
}

TEST(landing, a_path_that_names_nothing_is_refused_and_changes_nothing)
{
    walk w;
    const std::string deep = [] {
        std::string path;
        for (std::size_t i = 0; i <= framework::path_table::max_segments; ++i)
            path += "/a";
        return path;
    }();
    w.run([&](walk &walking) {
        for (const char *path : {"", "/", "//a", "/a//b", "/a//", "a/b", "a/", deep.c_str()})
            EXPECT_EQ(walking.add(path, "1"), framework::fault_bad_path) << path;
        dtf_datatree other{};
        EXPECT_EQ(dtf_map_datatree_add_path_flagged(walking.ctx, &other, "/a", "", "", nullptr, nullptr, 0, 0),
                  framework::fault_bad_path);
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(w.out), "");
}

TEST(landing, a_path_is_known_by_its_text_not_by_its_address)
{
    walk w;
    char path[] = "/channel-monitors/channel-monitor/name";
    w.run([&](walk &walking) {
        walking.entry(ots_port, [&] {
            walking.add(path, "A");
            path[sizeof path - 2] = 'X';
            walking.add(path, "B");
        });
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(w.out), "{channel-monitors{channel-monitor{name=A namX=B}}}");
}

/* Seconds and bytes of mapping `count` channels below one monitor. */
std::pair<double, std::size_t> cost_of(std::size_t count)
{
    walk w;
    const auto start = std::chrono::steady_clock::now();
    w.run([&](walk &walking) {
        walking.entry(ots_port, [&] {
            walking.add_entry(monitor);
            walking.add("/channel-monitors/channel-monitor/name", "A");
            for (std::size_t i = 0; i < count; ++i)
                add_channel(walking, "191350000");
        });
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(w.out.children[0].children[0].children[1].child_count, count);
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), w.memory.used()};
}

TEST(landing, time_and_memory_grow_with_the_entries)
{
    const auto [small_time, small_bytes] = cost_of(10'000);
    const auto [large_time, large_bytes] = cost_of(100'000);
    /* Ten times the entries; a search among them would cost a hundred times the time. The machine may be busy. */
    EXPECT_LT(large_time, 40 * small_time);
    EXPECT_LT(large_bytes, 15 * small_bytes);
}

} // namespace
