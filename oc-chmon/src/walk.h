/* What the walkers of both directions share: the arguments of one call, a node's subtree, tags and key marks. */
#ifndef WALK_H
#define WALK_H

#include "dtf.h"
#include "entry.h"

#include <cstddef>
#include <cstdint>
#include <optional>

/* One call of an exported walker, past its argument check. `function`: its bare name, for the reports. */
struct walk {
    dtf_map_ctx ctx;
    const dtf_datatree *in;
    dtf_datatree *out;
    const char *function;
};

/* The result of a child's walker, or not_dispatched where no walker is meant for the child. */
using dispatched = std::optional<faultno>;
constexpr std::nullopt_t not_dispatched = std::nullopt;

/* A node's children as its flags tell them. */
struct subtree {
    dtf_datatree *children;
    uint32_t count;

    /* The tree claims children that are not there. */
    bool is_broken() const { return 0 != count && NULL == children; }
};

inline bool has_flag(const dtf_datatree &node, uint32_t flag) { return 0 != (node.flags & flag); }

inline subtree subtree_of(const dtf_datatree &node)
{
    if (!has_flag(node, DTF_FLAG_HAS_SUBTREE)) {
        return {NULL, 0};
    }
    return {node.children, node.child_count};
}

inline bool tag_is(const dtf_datatree &node, const char *tag) { return 0 != dtf_map_do_these_match(node.tag, tag); }

inline void mark_as_key(dtf_datatree &node)
{
    node.is_key = 1;
    node.flags |= DTF_FLAG_KEY;
}

#endif
