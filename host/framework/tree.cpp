#include "tree.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace framework {

namespace {

/* Most nodes with children have two to four of them. */
constexpr std::uint32_t first_room = 4;

bool has_children(const dtf_datatree &node)
{
    return (node.flags & DTF_FLAG_HAS_SUBTREE) != 0 && node.children != nullptr && node.child_count != 0;
}

/* Makes every use of a left array show: as garbage in any build, as an error under the address sanitizer. */
void poison(dtf_datatree *nodes, std::uint32_t count)
{
    std::memset(static_cast<void *>(nodes), 0xdb, count * sizeof *nodes);
#if defined(__SANITIZE_ADDRESS__)
    __asan_poison_memory_region(nodes, count * sizeof *nodes);
#endif
}

/*
 * Without the flag, count and room say nothing: a walker may have parked the array elsewhere. An array that was
 * reserved and not used yet stays.
 */
void forget_void_array(dtf_datatree &parent)
{
    if ((parent.flags & DTF_FLAG_HAS_SUBTREE) != 0 && parent.children != nullptr)
        return;
    parent.child_count = 0;
    if (parent.children == nullptr)
        parent.child_room = 0;
}

void move_children(arena &memory, dtf_datatree &parent, std::uint32_t room)
{
    auto *const fresh = static_cast<dtf_datatree *>(memory.allocate(room * sizeof(dtf_datatree)));
    dtf_datatree *const left = parent.children;
    const std::uint32_t count = parent.child_count;
    if (count != 0)
        std::memcpy(static_cast<void *>(fresh), left, count * sizeof *left);
    parent.children = fresh;
    parent.child_room = room;
    if (memory.poison() && count != 0)
        poison(left, count);
}

} // namespace

void reserve_children(arena &memory, dtf_datatree &parent, std::uint32_t room)
{
    forget_void_array(parent);
    if (room > parent.child_room)
        move_children(memory, parent, room);
}

void grow_children(arena &memory, dtf_datatree &parent)
{
    forget_void_array(parent);
    parent.flags |= DTF_FLAG_HAS_SUBTREE;
    const std::uint32_t count = parent.child_count;
    constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    if (count == most)
        throw std::bad_alloc();
    if (count >= parent.child_room || memory.poison())
        move_children(memory, parent, std::max(first_room, count > most / 2 ? most : count * 2));
}

dtf_datatree *find_child(const dtf_datatree &parent, std::string_view tag)
{
    if (!has_children(parent))
        return nullptr;
    dtf_datatree *const end = parent.children + parent.child_count;
    dtf_datatree *const found = std::find_if(
        parent.children, end, [tag](const dtf_datatree &child) { return child.tag != nullptr && tag == child.tag; });
    return found == end ? nullptr : found;
}

} // namespace framework
