/* The instance-tree stack: arrays of list entries that a request walker is to walk in place of its own node. */
#ifndef FRAMEWORK_ITREE_STACK_H
#define FRAMEWORK_ITREE_STACK_H

#include "dtf.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framework {

class itree_stack
{
  public:
    /* As deep as the hierarchy: each level of a walk pushes one entry at most. */
    static constexpr std::size_t max_size = DTF_HIERARCHY_MAX;

    itree_stack();

    /* False when the stack is full; the matching pop then does nothing. */
    bool push(const dtf_itree_entry &entry);
    void pop();

    /* The top entry, null when there is none. Entries do not move while they are on the stack. */
    dtf_itree_entry *top() { return entries_.empty() ? nullptr : &entries_.back(); }

    /* Entry by position from the bottom, 0 <= position < size(). */
    dtf_itree_entry &at(std::size_t position) { return entries_.at(position); }

    /* Whether the entry at that position is still the one of that array. */
    bool holds(std::size_t position, const dtf_datatree *children) const
    {
        return position < entries_.size() && entries_[position].children == children;
    }

    std::size_t size() const { return entries_.size(); }
    bool balanced() const { return entries_.empty() && refused_ == 0; }

  private:
    std::vector<dtf_itree_entry> entries_;
    std::uint32_t refused_ = 0;
};

} // namespace framework

#endif
