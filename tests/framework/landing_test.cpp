/* Where added paths land, and what the operations do for requests. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace scripted;
using framework::direction;

namespace {

framework::mapping_options request(std::uint32_t kind, direction way = direction::openconfig_to_native)
{
    return {
        .way = way, .request_kind = kind, .request_key = [](std::string_view key) { return "M" + std::string(key); }};
}

struct scenario {
    direction way;
    const char *steps, *expected;
    std::size_t instances = 0; /* of a whole list */
};

constexpr direction up = direction::native_to_openconfig, down = direction::openconfig_to_native;
const scenario scenarios[] = {
    /* each entry gets what is added for it, on two list levels, its key last */
    {up,
     "(P +M (S +C C/lower-frequency=1 C/state/lower-frequency=1 ) (S +C C/lower-frequency=2 ) M/name=A ) (P +M "
     "M/name=B ) (P +M (S +C C/upper-frequency=3 ) (S +C C/a=4 ) (S +C C/a=5 ) (S +C C/a=6 ) (S +C C/a=7 ) M/name=C )",
     "{channel-monitors{channel-monitor{channels{channel{lower-frequency=1 state{lower-frequency=1}} "
     "channel{lower-frequency=2}} name=A} channel-monitor{name=B} channel-monitor{channels{channel{upper-frequency=3} "
     "channel{a=4} channel{a=5} channel{a=6} channel{a=7}} name=C}}}"},
    /* an entry that nobody added is created once per native entry */
    {up, "(I M/name=A M/config/name=A ) (I ) (I M/name=B )",
     "{channel-monitors{channel-monitor{name=A config{name=A}} channel-monitor{name=B}}}"},
    /* an entry left without its key is withdrawn with all below, wherever it stands */
    {up, "(P +M (S +C C/a=1 ) )", ""},
    {up, "(P +M (S +C C/a=1 ) ) (P +M M/name=A )", "{channel-monitors{channel-monitor{name=A}}}"},
    {up, "(P +M M/name=A ) (P +M (S +C ) ) (P +M ) (P +M M/name=B )",
     "{channel-monitors{channel-monitor{name=A} channel-monitor{name=B}}}"},
    /* what exists is used and gets the new value; a closing slash names the entry, and a value is not the entry's */
    {up, "(P M/name=old M/name=new M/=none M ) (P M/=none M/name=B )",
     "{channel-monitors{channel-monitor{name=new} channel-monitor{name=B}}}"},
    /* a list below a new entry starts anew */
    {down, "(M=x +P P/name=A S/rx-power S/lower-frequency +P P/name=B S/rx-power )",
     "{ots-oper{ots-ports{ots-port{name=A ots-spectrum-info{spectrum-slice-power-info{rx-power lower-frequency}}} "
     "ots-port{name=B ots-spectrum-info{spectrum-slice-power-info{rx-power}}}}}}"},
    /* a whole list has an instance per native entry, even where an array moves; a second pass binds them anew */
    {down, "(M +P P/name=1 +P P/name=2 +P P/name=3 +P P/name=4 +P P/name=5 @ )",
     "{ots-oper{ots-ports{ots-port{name=1 rx-power=M1} ots-port{name=2 rx-power=M2} ots-port{name=3 rx-power=M3} "
     "ots-port{name=4 rx-power=M4} ots-port{name=5 rx-power=M5}}}}",
     5},
    {down, "(M +P P/name=1 +P P/name=2 +P P/name=1 +P P/name=2 @ )",
     "{ots-oper{ots-ports{ots-port{name=1} ots-port{name=2} ots-port{name=1 rx-power=M1} ots-port{name=2 "
     "rx-power=M2}}}}",
     2},
    /* instances are those of an entry without a name, for the first key, of the monitors' list, in requests */
    {down, "(M +I I/interface-name=1 I/active=act @ )",
     "{interface-configurations{interface-configuration{interface-name=1 active=act}} "
     "ots-oper{ots-ports{ots-port{rx-power=M1}}}}",
     1},
    {down, "(M=x +I I/interface-name=1 )", "{interface-configurations{interface-configuration{interface-name=1}}}"},
    {down, "(C +I I/interface-name=1 )", "{interface-configurations{interface-configuration{interface-name=1}}}"},
    {up, "(M +I I/interface-name=1 )", "{interface-configurations{interface-configuration{interface-name=1}}}"},
};

TEST(landing, paths_land_where_the_walk_stands)
{
    for (const scenario &row : scenarios)
        for (const bool poison : {false, true}) {
            walk w(request(10, row.way));
            w.memory.set_poison(poison);
            std::istringstream steps(row.steps);
            w.play(steps);
            EXPECT_EQ(text_of(w.out), row.expected) << row.steps;
            EXPECT_EQ(w.map.instances().size(), row.instances) << row.steps;
            EXPECT_TRUE(w.map.balanced()) << row.steps;
            for (const dtf_datatree *instance : w.map.instances())
                EXPECT_STREQ(instance->children[0].ns, "urn:request");
        }
}

TEST(landing, a_path_that_names_nothing_changes_nothing_and_one_is_known_by_its_text)
{
    walk w;
    std::string deep;
    for (std::size_t i = 0; i <= framework::path_table::max_segments; ++i)
        deep += "/a";
    char path[] = "/a/b";
    w.run([&](walk &walking) {
        for (const std::string &bad : {std::string(), std::string("/"), std::string("//a"), std::string("/a//b"),
                                       std::string("/a//"), std::string("a/b"), std::string("a/"), deep})
            EXPECT_EQ(walking.add(bad, "1"), framework::fault_bad_path) << bad;
        dtf_datatree other{};
        EXPECT_EQ(dtf_map_datatree_add_path_flagged(walking.ctx, &other, "/a", "", "", nullptr, nullptr, 0, 0),
                  framework::fault_bad_path);
        for (const char last : {'b', 'c'}) {
            path[3] = last; /* at the same address */
            dtf_map_datatree_add_path_flagged(walking.ctx, &walking.out, path, "", "", nullptr, nullptr, 0, 0);
        }
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(w.out), "{a{b= c=}}");
}

/* Seconds and bytes of mapping `count` channels below one monitor. */
std::pair<double, std::size_t> cost_of(std::size_t count)
{
    std::stringstream steps;
    steps << "(P +M ";
    for (std::size_t i = 0; i < count; ++i)
        steps << "(S +C C/lower-frequency=191350000 ) ";
    steps << "M/name=A ) ";
    walk w;
    const auto start = std::chrono::steady_clock::now();
    w.play(steps);
    EXPECT_EQ(w.out.children[0].children[0].children[0].child_count, count);
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

TEST(request, an_empty_value_is_a_value_except_in_the_request_of_a_read)
{
    for (const direction way : {up, down})
        for (const std::uint32_t kind : {0u, 1u, 10u}) {
            walk w(request(kind, way));
            w.run([](walk &walking) { return walking.add("/a", ""); });
            EXPECT_EQ(text_of(w.out), way == up || kind == 1 ? "{a=}" : "{a}");
        }
}

} // namespace
