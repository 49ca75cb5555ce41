#include "packed_entries.h"

#include <algorithm>
#include <limits>
#include <new>

namespace framework {

namespace {

std::span<dtf_datatree> children_of(const dtf_datatree &node)
{
    if ((node.flags & DTF_FLAG_HAS_SUBTREE) == 0)
        return {};
    return {node.children, node.child_count};
}

std::span<dtf_datatree> new_nodes(arena &memory, std::size_t count)
{
    return {static_cast<dtf_datatree *>(memory.allocate(count * sizeof(dtf_datatree))), count};
}

dtf_datatree copy_tree(arena &memory, const dtf_datatree &node)
{
    dtf_datatree copy = node;
    const std::span<dtf_datatree> below = children_of(node);
    if (below.empty())
        return copy;
    const std::span<dtf_datatree> copies = new_nodes(memory, below.size());
    std::ranges::transform(below, copies.begin(),
                           [&memory](const dtf_datatree &child) { return copy_tree(memory, child); });
    copy.children = copies.data();
    copy.child_room = copy.child_count;
    return copy;
}

} // namespace

void packed_cursor::enter_run()
{
    if (shape_ != nullptr)
        run_ = run_->next;
    shape_ = run_->shape;
    left_in_run_ = run_->count;
    at_ = run_->values;
    values_.resize(shape_->leaves.size());
}

std::span<dtf_datatree> unpack(arena &memory, const dtf_datatree &packed)
{
    const std::span<dtf_datatree> entries = new_nodes(memory, packed_in(packed).count);
    packed_cursor cursor(packed);
    for (dtf_datatree &entry : entries) {
        cursor.next();
        entry = copy_tree(memory, cursor.entry());
    }
    return entries;
}

void unpack_children(arena &memory, dtf_datatree &parent)
{
    const std::span<dtf_datatree> children = children_of(parent);
    if (std::ranges::none_of(children, is_packed))
        return;
    std::size_t count = 0;
    for (const dtf_datatree &child : children)
        count += is_packed(child) ? packed_in(child).count : 1;
    if (count > std::numeric_limits<std::uint32_t>::max())
        throw std::bad_alloc();
    const std::span<dtf_datatree> unpacked = new_nodes(memory, count);
    auto to = unpacked.begin();
    for (const dtf_datatree &child : children) {
        if (is_packed(child))
            to = std::ranges::copy(unpack(memory, child), to).out;
        else
            *to++ = child;
    }
    parent.children = unpacked.data();
    parent.child_count = parent.child_room = static_cast<std::uint32_t>(count);
}

void unpack_all(arena &memory, dtf_datatree &root)
{
    unpack_children(memory, root);
    for (dtf_datatree &child : children_of(root))
        unpack_all(memory, child);
}

} // namespace framework
