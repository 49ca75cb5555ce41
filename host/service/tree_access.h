/* Looking at data trees, and what is known of them. */
#ifndef SERVICE_TREE_ACCESS_H
#define SERVICE_TREE_ACCESS_H

#include "framework/schema_facts.h"
#include "framework/tree.h"

#include <span>
#include <string_view>

namespace service {

/* The children of a node; none where its flags say so, whatever the count. */
inline std::span<dtf_datatree> children_of(const dtf_datatree &node)
{
    if ((node.flags & DTF_FLAG_HAS_SUBTREE) == 0)
        return {};
    return {node.children, node.child_count};
}

/* The value of a node, empty where it has none. */
inline std::string_view value_of(const dtf_datatree &node)
{
    return (node.flags & DTF_FLAG_HAS_VALUE) == 0 || node.value == nullptr ? std::string_view() : node.value;
}

/* The value of the child of that name, empty where there is none. */
inline std::string_view leaf_value(const dtf_datatree &parent, std::string_view tag)
{
    const dtf_datatree *const leaf = framework::find_child(parent, tag);
    return leaf == nullptr ? std::string_view() : value_of(*leaf);
}

/* Whether the schema knows a node as a leaf. */
inline bool is_leaf(const framework::schema_node &schema)
{
    return schema.kind != framework::schema_kind::container && schema.kind != framework::schema_kind::list;
}

/* The top container of the model that clients speak, and its path. */
inline constexpr const char *monitors_path = "/channel-monitors";
inline constexpr const char *monitors_tag = monitors_path + 1;

} // namespace service

#endif
