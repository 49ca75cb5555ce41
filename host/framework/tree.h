/* Building data trees in an arena. */
#ifndef FRAMEWORK_TREE_H
#define FRAMEWORK_TREE_H

#include "arena.h"
#include "dtf.h"

#include <cstdint>
#include <string_view>

namespace framework {

/*
 * Appends a zeroed child (DTF_FLAG_VALID set) to `parent` and sets its DTF_FLAG_HAS_SUBTREE. The child array grows
 * geometrically, so adding n children costs O(n); growing moves it, and then all pointers to the parent's children are
 * void.
 */
inline dtf_datatree &add_child(arena &memory, dtf_datatree &parent);

/* Makes room for `room` children at least, without adding one. */
void reserve_children(arena &memory, dtf_datatree &parent, std::uint32_t room);

/* The first child with that tag, or null. */
dtf_datatree *find_child(const dtf_datatree &parent, std::string_view tag);

/* Gives `parent` a child array with room for one more child. */
void grow_children(arena &memory, dtf_datatree &parent);

inline dtf_datatree &add_child(arena &memory, dtf_datatree &parent)
{
    const bool has_room = (parent.flags & DTF_FLAG_HAS_SUBTREE) != 0 && parent.child_count < parent.child_room;
    if (!has_room || memory.poison())
        grow_children(memory, parent);
    dtf_datatree &child = parent.children[parent.child_count++];
    child = dtf_datatree{};
    child.flags = DTF_FLAG_VALID;
    return child;
}

} // namespace framework

#endif
