#include "service/merge.h"

#include "service/tree_access.h"

#include "framework/packed_entries.h"
#include "framework/tree.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace service {

namespace {

/* What a node is among its siblings: its tag, and the keys of a list entry. */
std::string identity_of(const dtf_datatree &node)
{
    std::string identity = node.tag;
    const bool is_monitor = identity == "channel-monitor", is_channel = identity == "channel";
    if (is_monitor)
        identity.append(1, '/').append(leaf_value(node, "name"));
    if (is_channel)
        identity.append(1, '/').append(leaf_value(node, "lower-frequency"));
    if (is_channel)
        identity.append(1, '/').append(leaf_value(node, "upper-frequency"));
    return identity;
}

/* Gives `into` the children of `from`. What both have is merged in turn; of two leaves the first one stays. */
void merge(framework::arena &memory, dtf_datatree &into, dtf_datatree &from)
{
    framework::unpack_children(memory, into);
    framework::unpack_children(memory, from);
    /* By index, since children move when others are added behind them. */
    std::unordered_map<std::string, std::uint32_t> known;
    for (const dtf_datatree &child : children_of(into))
        known.emplace(identity_of(child), static_cast<std::uint32_t>(&child - into.children));
    for (dtf_datatree &child : children_of(from)) {
        const auto [found, is_new] = known.emplace(identity_of(child), into.child_count);
        if (is_new)
            framework::add_child(memory, into) = child;
        else
            merge(memory, into.children[found->second], child);
    }
}

} // namespace

void merge_monitors(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from)
{
    for (dtf_datatree &top : children_of(from)) {
        dtf_datatree *known = framework::find_child(into, top.tag);
        if (known == nullptr) {
            known = &framework::add_child(memory, into);
            *known = top;
            known->children = nullptr;
            known->child_count = known->child_room = 0;
            known->flags &= ~DTF_FLAG_HAS_SUBTREE;
        }
        merge(memory, *known, top);
    }
}

} // namespace service
