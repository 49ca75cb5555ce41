#include "service/merge.h"

#include "service/tree_access.h"

#include "framework/packed_entries.h"
#include "framework/tree.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace service {

namespace {

/* Nodes that are one. */
using group = std::vector<dtf_datatree *>;

/* What a node is among its siblings: its tag, and the keys of a list entry. Empty for one that lacks a key. */
std::string identity_of(const dtf_datatree &node)
{
    using keys = std::initializer_list<std::string_view>;
    const std::string_view tag = node.tag;
    std::string identity(tag);
    for (const std::string_view key : tag == "channel-monitor" ? keys{"name"}
                                      : tag == "channel"       ? keys{"lower-frequency", "upper-frequency"}
                                                               : keys{}) {
        const std::string_view value = leaf_value(node, key);
        if (value.empty())
            return {};
        identity.append(1, '\0').append(value);
    }
    return identity;
}

/* The children of all these nodes, those that are one together, in the order of their first. */
std::vector<group> grouped_children(framework::arena &memory, const group &parents)
{
    std::vector<group> groups;
    std::unordered_map<std::string, std::size_t> known;
    for (dtf_datatree *const parent : parents) {
        framework::unpack_children(memory, *parent);
        for (dtf_datatree &child : children_of(*parent)) {
            const std::string identity = identity_of(child);
            const auto [found, is_new] = known.emplace(identity, groups.size());
            if (is_new || identity.empty())
                groups.push_back({&child});
            else
                groups[found->second].push_back(&child);
        }
    }
    return groups;
}

} // namespace

void merge(framework::arena &memory, dtf_datatree &into, const group &parents)
{
    for (const group &same : grouped_children(memory, parents)) {
        dtf_datatree &child = framework::add_child(memory, into);
        child = *same.front();
        /* A single node has nothing to merge, but for the monitors, of which two entries may be one. */
        if (same.size() == 1 && child.tag != std::string_view(monitors_tag))
            continue;
        child.children = nullptr;
        child.child_count = child.child_room = 0;
        child.flags &= ~DTF_FLAG_HAS_SUBTREE;
        merge(memory, child, same);
    }
}

} // namespace service
