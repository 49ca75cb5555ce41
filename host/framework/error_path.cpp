#include "error_path.h"

#include "schema_facts.h"

#include <cstring>

namespace framework {

namespace {

bool is_key_leaf(const dtf_datatree &leaf, const schema_node *list)
{
    const schema_node *const known = list == nullptr || leaf.tag == nullptr ? nullptr : list->child(leaf.tag);
    return leaf.is_key != 0 || (known != nullptr && known->is_key);
}

/* A predicate such as [name='x']. XPath literals have no escapes: a value with both kinds of quotes is left out. */
void append_predicate(std::string &path, const dtf_datatree &key)
{
    const bool single = std::strchr(key.value, '\'') != nullptr;
    if (single && std::strchr(key.value, '"') != nullptr)
        return;
    const char quote = single ? '"' : '\'';
    path.append("[").append(key.tag).append("=");
    path.push_back(quote);
    path.append(key.value);
    path.push_back(quote);
    path.push_back(']');
}

void append_keys(std::string &path, const dtf_datatree &entry, const schema_node *list)
{
    if ((entry.flags & DTF_FLAG_HAS_SUBTREE) == 0 || entry.children == nullptr)
        return;
    for (std::uint32_t i = 0; i < entry.child_count; ++i) {
        const dtf_datatree &leaf = entry.children[i];
        if (leaf.tag != nullptr && leaf.value != nullptr && (leaf.flags & DTF_FLAG_HAS_VALUE) != 0 &&
            is_key_leaf(leaf, list))
            append_predicate(path, leaf);
    }
}

} // namespace

std::string instance_path(const node_hierarchy &hierarchy)
{
    std::string path;
    std::string schema_path;
    for (std::uint8_t level = 0; level < hierarchy.size(); ++level) {
        const dtf_datatree *const node = hierarchy.node(level);
        const char *const tag = node == nullptr || node->tag == nullptr ? "?" : node->tag;
        path.append("/").append(tag);
        schema_path.append("/").append(tag);
        if (node != nullptr && hierarchy.is_list(level))
            append_keys(path, *node, find_schema_node(schema_path));
    }
    return path.empty() ? "/" : path;
}

} // namespace framework
