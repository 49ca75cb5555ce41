#include "service/key_order.h"

#include "service/tree_access.h"

#include "framework/schema_facts.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace service {

namespace {

using framework::schema_kind;
using framework::schema_node;

void order_entry(dtf_datatree &entry, const schema_node &list)
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
        ++place;
    }
}

void order_below(dtf_datatree &node, const schema_node *facts)
{
    for (dtf_datatree &child : children_of(node)) {
        /* Most children are like the one before, and only lists and what holds them is of interest. */
        if (children_of(child).empty())
            continue;
        const schema_node *const below = framework::schema_of(child, node, facts);
        if (below == nullptr)
            continue;
        if (below->kind == schema_kind::list)
            order_entry(child, *below);
        order_below(child, below);
    }
}

} // namespace

void put_keys_first(dtf_datatree &root) { order_below(root, nullptr); }

} // namespace service
