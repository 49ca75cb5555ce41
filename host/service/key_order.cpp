#include "service/key_order.h"

#include "service/tree_access.h"

#include "framework/packed_entries.h"
#include "framework/schema_facts.h"

#include <algorithm>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

namespace service {

namespace {

using framework::schema_kind;
using framework::schema_node;

/* Returns where a node is once the one at `key` has moved to `place`, before those that were between. */
dtf_datatree *moved(dtf_datatree *node, dtf_datatree *place, dtf_datatree *key)
{
    if (node == key)
        return place;
    return std::greater_equal<>()(node, place) && std::less<>()(node, key) ? node + 1 : node;
}

/* `leaves`: pointers to nodes below, which are kept true. */
void order_entry(dtf_datatree &entry, const schema_node &list, std::span<dtf_datatree *> leaves = {})
{
    const auto children = children_of(entry);
    auto place = children.begin();
    for (const schema_node &leaf : list.children) {
        if (!leaf.is_key)
            continue;
        const auto key =
            std::find_if(place, children.end(), [&leaf](const dtf_datatree &child) { return leaf.tag == child.tag; });
        if (key == children.end())
            continue;
        std::rotate(place, key, key + 1);
        for (dtf_datatree *&below : leaves)
            below = moved(below, &*place, &*key);
        ++place;
    }
}

/* Packed entries have no lists below them. Runs share shapes; one that has its order keeps it. */
void order_shapes(const dtf_datatree &packed, const schema_node &list)
{
    const auto &entries = framework::packed_in(packed);
    for (framework::packed_run *run = entries.first; run != nullptr; run = run->next)
        order_entry(run->shape->entry, list, run->shape->leaves);
}

void order_below(dtf_datatree &node, const schema_node *facts)
{
    for (dtf_datatree &child : children_of(node)) {
        /* Most children are like the one before, and only lists and what holds them is of interest. */
        if (children_of(child).empty() && !framework::is_packed(child))
            continue;
        const schema_node *const below = framework::schema_of(child, node, facts);
        if (below == nullptr)
            continue;
        if (framework::is_packed(child)) {
            order_shapes(child, *below);
            continue;
        }
        if (below->kind == schema_kind::list)
            order_entry(child, *below);
        order_below(child, below);
    }
}

} // namespace

void put_keys_first(dtf_datatree &root) { order_below(root, nullptr); }

} // namespace service
