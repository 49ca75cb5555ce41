/*
 * What a walk has open: the node hierarchy and the output list. Both are stacks with 8-bit lengths that the plug-in
 * reads in the request state; a push beyond their room is refused, and its pop then does nothing.
 */
#ifndef FRAMEWORK_HIERARCHY_H
#define FRAMEWORK_HIERARCHY_H

#include "dtf.h"

#include <array>
#include <cstdint>

namespace framework {

/* The nodes from the root of the walk to the current one. Lives in the request state; this adds what the record lacks.
 */
class node_hierarchy
{
  public:
    explicit node_hierarchy(dtf_req_ctx &request) : request_(request) {}

    /* False when the hierarchy is full. */
    bool push(const dtf_datatree *node, std::uint32_t kind);

    /* Pops `node`; true when the length changed. A node that is not on top is an imbalance; it is popped with all
     * above. */
    bool pop(const dtf_datatree *node);

    std::uint8_t size() const { return request_.hierarchy_len; }
    const dtf_datatree *node(std::uint8_t level) const { return request_.hierarchy[level].node_data; }
    bool is_list(std::uint8_t level) const { return kinds_[level] == DTF_HIER_LIST; }

    /* The innermost node; null when nothing is open. */
    const dtf_datatree *top() const { return size() == 0 ? nullptr : node(static_cast<std::uint8_t>(size() - 1)); }
    bool top_is_list() const { return size() != 0 && is_list(static_cast<std::uint8_t>(size() - 1)); }

    /* The list entry that the walk stands at or is below of; null when it is in none. */
    const dtf_datatree *innermost_list() const
    {
        std::uint8_t level = size();
        while (level != 0)
            if (is_list(--level))
                return node(level);
        return nullptr;
    }

    /* True when nothing is open and every pop named the node pushed last. */
    bool balanced() const { return size() == 0 && refused_ == 0 && mismatches_ == 0; }

  private:
    dtf_req_ctx &request_;
    std::array<std::uint8_t, DTF_HIERARCHY_MAX> kinds_{};
    std::uint32_t refused_ = 0;
    std::uint32_t mismatches_ = 0;
};

/* The native list entries whose children are being walked. Its length is output_list_len of the request state. */
class output_list
{
  public:
    explicit output_list(dtf_req_ctx &request) : request_(request) {}

    /* False, and nothing registered, when the list is full. */
    bool add(const dtf_datatree *entry);
    void remove(const dtf_datatree *entry);

    bool balanced() const { return request_.output_list_len == 0 && mismatches_ == 0; }

  private:
    dtf_req_ctx &request_;
    std::array<const dtf_datatree *, 255> entries_{};
    std::uint32_t mismatches_ = 0;
};

} // namespace framework

#endif
