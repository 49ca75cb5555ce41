/* Stacks that refuse what does not fit and stay paired, the trace buffer, and when there is an error path. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

using namespace scripted;

namespace {

TEST(limits, stacks_refuse_what_does_not_fit_and_stay_paired)
{
    for (const std::size_t depth : {std::size_t{255}, std::size_t{256}, std::size_t{300}}) {
        std::vector<dtf_datatree> nodes(depth);
        std::size_t updated = 0, added = 0;
        walk levels;
        const faultno hierarchy = levels.run([&](walk &w) {
            std::string path;
            for (dtf_datatree &node : nodes) {
                path += "/l";
                dtf_map_add_to_node_hierarchy(w.ctx, &node, DTF_HIER_LIST);
                updated += dtf_map_update_current_list_node(w.ctx, path.substr(0, 24).c_str()) == FAULT_SUCCESS;
            }
            for (std::size_t i = depth; i-- > 0;)
                dtf_map_remove_from_node_hierarchy(w.ctx, &nodes[i]);
            return FAULT_SUCCESS;
        });
        walk others;
        const faultno stacks = others.run([&](walk &w) {
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
        });
        EXPECT_EQ(hierarchy, depth == 255 ? FAULT_SUCCESS : framework::fault_hierarchy_full);
        EXPECT_EQ(stacks, depth == 255 ? FAULT_SUCCESS : framework::fault_stack_full);
        EXPECT_TRUE(updated == 255 && added == 255 && levels.map.balanced() && others.map.balanced()) << depth;
    }
}

TEST(limits, what_is_not_popped_in_order_counts_as_unbalanced)
{
    static dtf_datatree a{}, b{};
    constexpr void (*unpaired[])(dtf_map_ctx) = {
        [](dtf_map_ctx ctx) { dtf_map_add_to_node_hierarchy(ctx, &a, DTF_HIER_CONTAINER); },
        [](dtf_map_ctx ctx) { dtf_map_remove_from_node_hierarchy(ctx, &a); },
        [](dtf_map_ctx ctx) { dtf_add_to_output_list_ctx(ctx, &a, nullptr); },
        [](dtf_map_ctx ctx) { dtf_map_util_itree_stack_push(ctx, &a, 1, nullptr); },
        [](dtf_map_ctx ctx) {
            dtf_map_add_to_node_hierarchy(ctx, &a, DTF_HIER_CONTAINER);
            dtf_map_add_to_node_hierarchy(ctx, &b, DTF_HIER_CONTAINER);
            dtf_map_remove_from_node_hierarchy(ctx, &a);
        }};
    for (const auto steps : unpaired) {
        walk w;
        w.run([steps](walk &walking) { return steps(walking.ctx), FAULT_SUCCESS; });
        EXPECT_FALSE(w.map.balanced());
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

TEST(reports, there_is_no_error_path_while_the_plug_in_expands)
{
    for (const std::uint32_t expanding : {0U, 1U}) {
        walk w;
        w.run([expanding](walk &walking) {
            walking.ctx->req_ctx->expand_mode = expanding;
            dtf_oc_error_path(walking.ctx);
            return faultno{1};
        });
        EXPECT_EQ(w.map.error_path(), expanding == 0 ? "/" : "");
    }
}

} // namespace
