/* Stacks refuse what does not fit, and stay paired all the same. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <functional>

using namespace scripted;

namespace {

/* Nests `depth` nodes; counts the list updates that succeeded. */
std::size_t nest(walk &w, std::size_t depth, std::string schema_path)
{
    if (depth == 0)
        return 0;
    dtf_datatree node{};
    schema_path += "/l";
    dtf_map_add_to_node_hierarchy(w.ctx, &node, DTF_HIER_LIST);
    const bool updated = dtf_map_update_current_list_node(w.ctx, schema_path.substr(0, 24).c_str()) == FAULT_SUCCESS;
    const std::size_t below = nest(w, depth - 1, schema_path);
    dtf_map_remove_from_node_hierarchy(w.ctx, &node);
    return below + (updated ? 1 : 0);
}

TEST(limits, the_hierarchy_refuses_the_level_after_its_last)
{
    for (const std::size_t depth : {std::size_t{254}, std::size_t{255}, std::size_t{256}, std::size_t{300}}) {
        walk w;
        std::size_t updated = 0;
        const faultno result = w.run([&](walk &walking) {
            updated = nest(walking, depth, "");
            return FAULT_SUCCESS;
        });
        EXPECT_EQ(result, depth <= 255 ? FAULT_SUCCESS : framework::fault_hierarchy_full);
        EXPECT_EQ(updated, std::min<std::size_t>(depth, 255));
        EXPECT_TRUE(w.map.balanced());
    }
}

TEST(limits, the_output_list_and_the_instance_stack_refuse_and_stay_paired)
{
    walk w;
    std::vector<dtf_datatree> nodes(300);
    const faultno result = w.run([&](walk &walking) {
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const std::uint8_t before = walking.ctx->req_ctx->output_list_len;
            dtf_add_to_output_list_ctx(walking.ctx, &nodes[i], &walking.out);
            EXPECT_EQ(walking.ctx->req_ctx->output_list_len > before, i < 255);
            dtf_map_util_itree_stack_push(walking.ctx, &nodes[i], 1, nullptr);
        }
        for (std::size_t i = nodes.size(); i-- > 0;) {
            dtf_map_util_itree_stack_pop(walking.ctx);
            if (i < 255)
                dtf_remove_from_output_list_ctx(walking.ctx, &nodes[i], &walking.out);
        }
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(result, framework::fault_stack_full);
    EXPECT_TRUE(w.map.balanced());
}

TEST(limits, what_is_not_popped_in_order_counts_as_unbalanced)
{
    dtf_datatree a{};
    dtf_datatree b{};
    const auto balanced = [](const std::function<void(dtf_map_ctx)> &steps) {
        walk w;
        w.run([&](walk &walking) {
            steps(walking.ctx);
            return FAULT_SUCCESS;
        });
        return w.map.balanced();
    };
    const auto push = [](dtf_map_ctx ctx, const dtf_datatree &node) {
        dtf_map_add_to_node_hierarchy(ctx, &node, DTF_HIER_CONTAINER);
    };
    EXPECT_FALSE(balanced([&](dtf_map_ctx ctx) { push(ctx, a); }));
    EXPECT_FALSE(balanced([&](dtf_map_ctx ctx) { dtf_map_remove_from_node_hierarchy(ctx, &a); }));
    EXPECT_FALSE(balanced([&](dtf_map_ctx ctx) {
        push(ctx, a);
        push(ctx, b);
        dtf_map_remove_from_node_hierarchy(ctx, &a);
    }));
    EXPECT_FALSE(balanced([&](dtf_map_ctx ctx) { dtf_add_to_output_list_ctx(ctx, &a, nullptr); }));
    EXPECT_FALSE(balanced([&](dtf_map_ctx ctx) { dtf_map_util_itree_stack_push(ctx, &a, 1, nullptr); }));
}

} // namespace
