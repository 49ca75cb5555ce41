#include "service/merge.h"

#include "service/tree_access.h"

#include "framework/packed_entries.h"
#include "framework/tree.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace service {

namespace {

/* Nodes that are one. */
using group = std::vector<dtf_datatree *>;

/* The keys of a list entry, none for other nodes. */
std::span<const std::string_view> keys_of(std::string_view tag)
{
    static constexpr std::array<std::string_view, 1> monitor = {"name"};
    static constexpr std::array<std::string_view, 2> channel = {"lower-frequency", "upper-frequency"};
    if (tag == "channel-monitor")
        return monitor;
    return tag == "channel" ? std::span<const std::string_view>(channel) : std::span<const std::string_view>();
}

/* What a node is among its siblings: its tag, and the keys of a list entry. Empty for one that lacks a key. */
std::string identity_of(const dtf_datatree &node)
{
    std::string identity = node.tag;
    for (const std::string_view key : keys_of(node.tag)) {
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
