/* The two sinks, fault texts and error paths. */
#include "faults.h"
#include "named_allocations.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace scripted;
using framework::log_level;

namespace {

TEST(reports, the_debug_log_gets_whole_lines_of_the_wanted_levels)
{
    for (const log_level level : {log_level::off, log_level::err, log_level::trc}) {
        std::ostringstream log;
        walk w({.log = level, .log_stream = &log});
        const std::string long_text(5000, 'x');
        w.run([&](walk &walking) {
            std::uint32_t site = UINT32_MAX;
            for (const std::uint32_t of : {DTF_LEVEL_ERR, DTF_LEVEL_TRC}) {
                if (dtf_debug_should_log(&walking.ctx->debug_filter, of) != 0)
                    _plat_dt_log_filter_adv(walking.ctx->err_log, 0, 0, 0, 0, 0, &site, "%u: %s%%", of,
                                            long_text.c_str());
            }
            dtf_datatree node{};
            dtf_map_print_datatree_internal(walking.ctx, &node, "tree");
            return FAULT_SUCCESS;
        });
        const std::string err = level == log_level::off ? "" : "0: " + long_text + "%\n";
        const std::string trc = level == log_level::trc ? "3: " + long_text + "%\ntree\n  (no tag)\n" : "";
        EXPECT_EQ(log.str(), err + trc);
    }
}

TEST(reports, the_trace_buffer_keeps_the_last_lines)
{
    for (const std::size_t capacity :
         {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{7}, std::size_t{9}}) {
        framework::trace_ring ring(capacity);
        for (int i = 0; i < 7; ++i)
            _ringlog(&ring, 0x10101000000, std::to_string(i).c_str());
        const auto lines = ring.lines();
        const std::size_t kept = std::min<std::size_t>(capacity, 7);
        ASSERT_EQ(lines.size(), kept);
        for (std::size_t i = 0; i < kept; ++i)
            EXPECT_EQ(lines[i], std::to_string(7 - kept + i));
        EXPECT_EQ(ring.lost(), capacity == 0 ? 0 : 7 - kept);
    }
    const std::uint32_t index = ret_nc_dtf_trace_index_incr();
    EXPECT_EQ(ret_nc_dtf_trace_index_incr(), index + 1);
}

TEST(reports, every_code_has_a_name_and_a_text)
{
    EXPECT_STREQ(framework::fault_name(FAULT_SKIP_ENTRY), "FAULT_SKIP_ENTRY");
    EXPECT_STREQ(framework::fault_name(framework::fault_bad_path), "FAULT_BAD_PATH");
    EXPECT_EQ(framework::fault_name(0x12345678), nullptr);
    EXPECT_STREQ(fault_strerror(0x12345678), "unknown fault 0x12345678");
    framework::register_fault(0x12345678, "FAULT_TEST", "a test's fault");
    framework::register_fault(0x12345678, "FAULT_OTHER", "another");
    EXPECT_STREQ(framework::fault_name(0x12345678), "FAULT_TEST");
    EXPECT_STREQ(fault_strerror(0x12345678), "a test's fault");
}

/* An entry of /channel-monitors/channel-monitor with the given key, in a walk that ends with `result`. */
std::string error_path_with(const char *name, faultno result, std::uint32_t expand_mode)
{
    framework::arena memory;
    dtf_datatree top{};
    top.tag = "channel-monitors";
    dtf_datatree entry{};
    entry.tag = "channel-monitor";
    dtf_datatree &key = framework::add_child(memory, entry);
    key.tag = "name";
    key.value = name;
    key.flags |= DTF_FLAG_HAS_VALUE;
    walk w;
    w.run([&](walk &walking) {
        walking.ctx->req_ctx->expand_mode = expand_mode;
        walking.ctx->req_ctx->error_tag = dtf_strdup("bad", "DTF MAP");
        dtf_map_add_to_node_hierarchy(walking.ctx, &top, DTF_HIER_CONTAINER);
        walking.entry(monitor, entry, [&] { dtf_oc_error_path(walking.ctx); });
        dtf_map_remove_from_node_hierarchy(walking.ctx, &top);
        return result;
    });
    EXPECT_EQ(w.map.error_tag(), result == FAULT_SUCCESS ? "" : "bad");
    return w.map.error_path();
}

TEST(reports, the_error_path_names_the_entry_by_its_key)
{
    const std::size_t before = framework::live_named_allocations();
    const std::string monitors = "/channel-monitors/channel-monitor";
    EXPECT_EQ(error_path_with("0/1-CHMON-PRE", 1, 0), monitors + "[name='0/1-CHMON-PRE']");
    EXPECT_EQ(error_path_with("it's", 1, 0), monitors + "[name=\"it's\"]");
    EXPECT_EQ(error_path_with("'\"", 1, 0), monitors);
    EXPECT_EQ(error_path_with("A", FAULT_SUCCESS, 0), "");
    EXPECT_EQ(error_path_with("A", 1, 1), "");
    EXPECT_EQ(framework::live_named_allocations(), before);
}

} // namespace
