#include "service/merge.h"

#include "service/tree_access.h"

#include "framework/tree.h"

#include <string_view>
#include <unordered_map>

namespace service {

namespace {

/* Makes `node` a child of `parent`, with all below it. */
void append(framework::arena &memory, dtf_datatree &parent, const dtf_datatree &node)
{
    framework::add_child(memory, parent) = node;
}

/* The parts of one monitor that only `from` has; both have the key leaf. */
void merge_entry(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from)
{
    for (const dtf_datatree &part : children_of(from)) {
        if (framework::find_child(into, part.tag) == nullptr)
            append(memory, into, part);
    }
}

void merge_list(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from)
{
    /* By index, since entries move when others are added behind them. */
    std::unordered_map<std::string_view, std::uint32_t> by_name;
    for (std::uint32_t i = 0; i < into.child_count; ++i)
        by_name.emplace(leaf_value(into.children[i], "name"), i);
    for (const dtf_datatree &entry : children_of(from)) {
        const auto known = by_name.find(leaf_value(entry, "name"));
        if (known == by_name.end())
            append(memory, into, entry);
        else
            merge_entry(memory, into.children[known->second], entry);
    }
}

} // namespace

void merge_monitors(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from)
{
    for (const dtf_datatree &top : children_of(from)) {
        if (dtf_datatree *const known = framework::find_child(into, top.tag))
            merge_list(memory, *known, top);
        else
            append(memory, into, top);
    }
}

} // namespace service
