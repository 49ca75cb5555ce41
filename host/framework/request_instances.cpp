#include "request_instances.h"

#include "tree.h"

#include <algorithm>
#include <functional>

namespace framework {

namespace {

/* With all below it, for the walk marks and parks what it visits. Texts stay where they are. */
dtf_datatree copy_of(const dtf_datatree &node, arena &memory)
{
    dtf_datatree copy = node;
    copy.children = nullptr;
    copy.child_count = 0;
    copy.child_room = 0;
    copy.flags &= ~DTF_FLAG_HAS_SUBTREE;
    if ((node.flags & DTF_FLAG_HAS_SUBTREE) == 0)
        return copy;
    for (std::uint32_t i = 0; i < node.child_count; ++i) {
        const dtf_datatree child = copy_of(node.children[i], memory);
        add_child(memory, copy) = child;
    }
    return copy;
}

} // namespace

bool request_instances::add(const names &tags, std::string_view key, const entry_place &native,
                            dtf_itree_callback callback)
{
    group *const current = open_group(callback);
    if (current == nullptr)
        return false;
    const auto same_key = [key](const dtf_datatree &node) { return key == node.children[0].value; };
    const auto known = std::find_if(current->nodes.begin(), current->nodes.end(), same_key);
    if (known != current->nodes.end()) {
        current->natives[static_cast<std::size_t>(known - current->nodes.begin())] = native;
        return true;
    }
    current->natives.resize(current->nodes.size());
    current->natives.push_back(native);
    current->nodes.push_back(make_entry(tags, key));
    dtf_itree_entry &entry = stack_.at(current->stack_position);
    entry.children = current->nodes.data();
    entry.count = static_cast<std::uint32_t>(current->nodes.size());
    return true;
}

const entry_place *request_instances::native_of(const dtf_datatree *node) const
{
    for (const group &candidate : groups_) {
        const dtf_datatree *const first = candidate.nodes.data();
        const std::less<> before;
        if (!before(node, first) && before(node, first + candidate.nodes.size()))
            return &candidate.natives[static_cast<std::size_t>(node - first)];
    }
    return nullptr;
}

std::vector<const dtf_datatree *> request_instances::all() const
{
    std::vector<const dtf_datatree *> nodes;
    for (const group &one : groups_) {
        for (const dtf_datatree &node : one.nodes)
            nodes.push_back(&node);
    }
    return nodes;
}

/* The group that is on the stack, or a new one; null when the stack is full. */
request_instances::group *request_instances::open_group(dtf_itree_callback callback)
{
    if (!groups_.empty() && stack_.holds(groups_.back().stack_position, groups_.back().nodes.data()))
        return &groups_.back();
    groups_.emplace_back();
    groups_.back().stack_position = stack_.size();
    if (stack_.push({nullptr, 0, callback}))
        return &groups_.back();
    stack_.pop();
    groups_.pop_back();
    return nullptr;
}

dtf_datatree request_instances::make_entry(const names &tags, std::string_view key)
{
    dtf_datatree entry{};
    entry.tag = memory_.copy(tags.entry);
    entry.ns = tags.ns;
    entry.flags = DTF_FLAG_VALID;
    dtf_datatree &leaf = add_child(memory_, entry);
    leaf.tag = memory_.copy(tags.key);
    leaf.ns = tags.ns;
    leaf.value = memory_.copy(key);
    leaf.is_key = 1;
    leaf.flags |= DTF_FLAG_HAS_VALUE | DTF_FLAG_KEY;
    if (tags.request == nullptr || (tags.request->flags & DTF_FLAG_HAS_SUBTREE) == 0)
        return entry;
    for (std::uint32_t i = 0; i < tags.request->child_count; ++i) {
        const dtf_datatree &child = tags.request->children[i];
        if (child.tag != nullptr && tags.key == child.tag)
            continue;
        const dtf_datatree copy = copy_of(child, memory_);
        add_child(memory_, entry) = copy;
    }
    return entry;
}

} // namespace framework
