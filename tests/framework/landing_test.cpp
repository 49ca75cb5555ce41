/* Where added paths land, and what the operations do for requests. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

using namespace scripted;
using framework::direction;

namespace {

TEST(landing, paths_land_where_the_walk_stands)
{
    std::ifstream file(CHMON_LANDING);
    int scenarios = 0;
    for (std::string line, steps; std::getline(file, line);) {
        if (!line.starts_with('#') && !line.starts_with('='))
            steps = line;
        if (!line.starts_with('='))
            continue;
        ++scenarios;
        for (const int how : {0, 1, 2, 3}) {
            walk w({.way = steps.starts_with("up") ? direction::native_to_openconfig : direction::openconfig_to_native,
                    .request_kind = steps.starts_with("edit") ? 1U : 10U,
                    .packs_entries = (how & 2) != 0,
                    .request_key = [](std::string_view key) { return "M" + std::string(key); }});
            w.memory.set_poison((how & 1) != 0);
            std::istringstream script(steps.substr(steps.find('(')));
            w.play(script);
            framework::unpack_all(w.memory, w.out);
            const std::string tree = text_of(w.out);
            const std::size_t instances = w.map.instances().size();
            EXPECT_EQ("= " + (tree.empty() ? "nothing" : tree) +
                          (instances == 0 ? "" : ' ' + std::to_string(instances)),
                      line)
                << steps;
            EXPECT_TRUE(w.map.balanced()) << steps;
            for (const dtf_datatree *instance : w.map.instances())
                EXPECT_STREQ(instance->children[0].ns, "urn:request");
        }
    }
    EXPECT_GE(scenarios, 16);
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

TEST(landing, objects_are_aligned_wherever_texts_leave_a_block)
{
    for (std::size_t size = 1; size < 100; ++size) {
        framework::arena memory;
        for (std::size_t text = 0; text < 3000; ++text) {
            memory.copy(std::string(text % 37, 'x'));
            const auto address = reinterpret_cast<std::uintptr_t>(memory.allocate(size));
            ASSERT_EQ(address % alignof(std::max_align_t), 0U) << size << ' ' << text;
        }
    }
}

/* Seconds and bytes of mapping `count` channels below one monitor. */
std::pair<double, std::size_t> cost_of(std::size_t count, bool packed)
{
    std::stringstream steps;
    steps << "(P +M ";
    for (std::size_t i = 0; i < count; ++i)
        steps << "(S +C C/lower-frequency=191350000 ) ";
    steps << "M/name=A ) ";
    walk w({.packs_entries = packed});
    const auto start = std::chrono::steady_clock::now();
    w.play(steps);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const std::size_t bytes = w.memory.used();
    EXPECT_EQ(w.out.children[0].children[0].children[0].child_count, packed ? 2 : count);
    framework::unpack_all(w.memory, w.out);
    EXPECT_EQ(w.out.children[0].children[0].children[0].child_count, count);
    return {seconds, bytes};
}

TEST(landing, time_and_memory_grow_with_the_entries)
{
    for (const bool packed : {false, true}) {
        const auto [small_time, small_bytes] = cost_of(10'000, packed);
        const auto [large_time, large_bytes] = cost_of(100'000, packed);
        /* Ten times the entries; a search among them would cost a hundred times the time. The machine may be busy. */
        EXPECT_LT(large_time, 40 * small_time);
        EXPECT_LT(large_bytes, 15 * small_bytes);
        EXPECT_TRUE(!packed || large_bytes < 16U * 100'000) << large_bytes << " for values of nine characters";
    }
}

} // namespace
