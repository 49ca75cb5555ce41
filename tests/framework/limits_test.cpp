/* Stacks that refuse what does not fit and stay paired; the two sinks, fault texts and error paths. */
#include "faults.h"
#include "named_allocations.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

using namespace scripted;
using framework::log_level;

namespace {

TEST(limits, stacks_refuse_what_does_not_fit_and_stay_paired)
{
    for (const std::size_t depth : {std::size_t{255}, std::size_t{256}, std::size_t{300}}) {
        walk levels, others;
        std::vector<dtf_datatree> nodes(depth);
        std::size_t updated = 0, added = 0;
        EXPECT_EQ(levels.run([&](walk &w) {
            std::string path;
            for (dtf_datatree &node : nodes) {
                path += "/l";
                dtf_map_add_to_node_hierarchy(w.ctx, &node, DTF_HIER_LIST);
                updated += dtf_map_update_current_list_node(w.ctx, path.substr(0, 24).c_str()) == FAULT_SUCCESS;
            }
            for (std::size_t i = depth; i-- > 0;)
                dtf_map_remove_from_node_hierarchy(w.ctx, &nodes[i]);
            return FAULT_SUCCESS;
        }),
                  depth == 255 ? FAULT_SUCCESS : framework::fault_hierarchy_full);
        EXPECT_EQ(others.run([&](walk &w) {
            for (dtf_datatree &node : nodes) {
                const std::uint8_t before = w.ctx->req_ctx->output_list_len;
                dtf_add_to_output_list_ctx(w.ctx, &node, &w.out);
                added += w.ctx->req_ctx->output_list_len > before;
                dtf_map_util_itree_stack_push(w.ctx, &node, 1, nullptr);
            }
            for (std::size_t i = depth; i-- > 0;) {
                dtf_map_util_itree_stack_pop(w.ctx);
                if (i < 255)
                    dtf_remove_from_output_list_ctx(w.ctx, &nodes[i], &w.out);
            }
            return FAULT_SUCCESS;
        }),
                  depth == 255 ? FAULT_SUCCESS : framework::fault_stack_full);
        EXPECT_TRUE(updated == 255 && added == 255 && levels.map.balanced() && others.map.balanced()) << depth;
    }
}

TEST(limits, what_is_not_popped_in_order_counts_as_unbalanced)
{
    dtf_datatree a{}, b{};
    const auto balanced = [](const std::function<void(dtf_map_ctx)> &steps) {
        walk w;
        w.run([&](walk &walking) {
            steps(walking.ctx);
            return FAULT_SUCCESS;
        });
        return w.map.balanced();
    };
    EXPECT_FALSE(balanced([&](auto ctx) { dtf_map_add_to_node_hierarchy(ctx, &a, DTF_HIER_CONTAINER); }));
    EXPECT_FALSE(balanced([&](auto ctx) { dtf_map_remove_from_node_hierarchy(ctx, &a); }));
    EXPECT_FALSE(balanced([&](auto ctx) { dtf_add_to_output_list_ctx(ctx, &a, nullptr); }));
    EXPECT_FALSE(balanced([&](auto ctx) { dtf_map_util_itree_stack_push(ctx, &a, 1, nullptr); }));
    EXPECT_FALSE(balanced([&](auto ctx) {
        dtf_map_add_to_node_hierarchy(ctx, &a, DTF_HIER_CONTAINER);
        dtf_map_add_to_node_hierarchy(ctx, &b, DTF_HIER_CONTAINER);
        dtf_map_remove_from_node_hierarchy(ctx, &a);
    }));
}

TEST(reports, the_debug_log_gets_whole_lines_of_the_wanted_levels)
{
    for (const log_level level : {log_level::off, log_level::err, log_level::trc}) {
        std::ostringstream log;
        walk w({.log = level, .log_stream = &log});
        const std::string long_text(5000, 'x');
        w.run([&](walk &walking) {
            std::uint32_t site = UINT32_MAX;
            for (const std::uint32_t of : {DTF_LEVEL_ERR, DTF_LEVEL_TRC})
                if (dtf_debug_should_log(&walking.ctx->debug_filter, of) != 0)
                    _plat_dt_log_filter_adv(walking.ctx->err_log, 0, 0, 0, 0, 0, &site, "%u: %s%%", of,
                                            long_text.c_str());
            dtf_datatree node{};
            give(walking.memory, node, "a", "1");
            dtf_map_print_datatree_internal(walking.ctx, &node, "tree");
            return FAULT_SUCCESS;
        });
        std::string expected = level == log_level::off ? "" : "0: " + long_text + "%\n";
        expected += level == log_level::trc ? "3: " + long_text + "%\ntree\n  (no tag)\n    a = 1\n" : "";
        EXPECT_EQ(log.str(), expected);
    }
}

TEST(reports, the_trace_buffer_keeps_the_last_lines)
{
    for (const std::size_t capacity : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{9}}) {
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
    EXPECT_STREQ(framework::fault_name(framework::fault_bad_path), "FAULT_BAD_PATH");
    EXPECT_EQ(framework::fault_name(0x12345678), nullptr);
    EXPECT_STREQ(fault_strerror(0x12345678), "unknown fault 0x12345678");
    framework::register_fault(0x12345678, "FAULT_TEST", "a test's fault");
    framework::register_fault(0x12345678, "FAULT_OTHER", "another");
    EXPECT_STREQ(framework::fault_name(0x12345678), "FAULT_TEST");
    EXPECT_STREQ(fault_strerror(0x12345678), "a test's fault");
}

TEST(reports, the_error_path_names_the_entry_by_its_key)
{
    const std::size_t before = framework::live_named_allocations();
    const std::string monitors = "/channel-monitors/channel-monitor";
    struct {
        const char *name;
        faultno result;
        std::uint32_t expand_mode;
        std::string path;
    } const rows[] = {{"0/1-CHMON-PRE", 1, 0, monitors + "[name='0/1-CHMON-PRE']"},
                      {"it's", 1, 0, monitors + "[name=\"it's\"]"},
                      {"'\"", 1, 0, monitors},
                      {"A", FAULT_SUCCESS, 0, ""},
                      {"A", 1, 1, ""}};
    for (const auto &row : rows) {
        walk w;
        dtf_datatree top{}, entry{};
        top.tag = "channel-monitors";
        entry.tag = "channel-monitor";
        give(w.memory, entry, "name", row.name);
        w.run([&](walk &walking) {
            walking.ctx->req_ctx->expand_mode = row.expand_mode;
            walking.ctx->req_ctx->error_tag = dtf_strdup("bad", "DTF MAP");
            dtf_map_add_to_node_hierarchy(walking.ctx, &top, DTF_HIER_CONTAINER);
            walking.entry('M', entry, [&] { dtf_oc_error_path(walking.ctx); });
            dtf_map_remove_from_node_hierarchy(walking.ctx, &top);
            return row.result;
        });
        EXPECT_EQ(w.map.error_tag(), row.result == FAULT_SUCCESS ? "" : "bad");
        EXPECT_EQ(w.map.error_path(), row.path);
    }
    EXPECT_EQ(framework::live_named_allocations(), before);
}

} // namespace
