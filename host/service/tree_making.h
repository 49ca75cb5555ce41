/* Making data trees. */
#ifndef SERVICE_TREE_MAKING_H
#define SERVICE_TREE_MAKING_H

#include "framework/arena.h"
#include "framework/tree.h"

#include <string_view>

namespace service {

/* Adds a child; tag and namespace are kept by reference. */
inline dtf_datatree &add_node(framework::arena &memory, dtf_datatree &parent, const char *tag, const char *ns)
{
    dtf_datatree &node = framework::add_child(memory, parent);
    node.tag = tag;
    node.ns = ns;
    return node;
}

/* Adds a leaf of its parent's namespace; the value is copied. */
inline void add_leaf(framework::arena &memory, dtf_datatree &parent, const char *tag, std::string_view value)
{
    dtf_datatree &leaf = add_node(memory, parent, tag, parent.ns);
    leaf.value = memory.copy(value);
    leaf.flags |= DTF_FLAG_HAS_VALUE;
}

} // namespace service

#endif
