/*
 * The body of the request walkers' containers and leaves (request_list.h has the lists). A walker states its own facts:
 * hook, augment handler, how a child's tag leads to the child's walker, which walkers an expansion calls.
 *
 * Templates over the hook, so that each walker has site words of its own; reports carry the exported walker's name.
 */
#ifndef REQUEST_WALK_H
#define REQUEST_WALK_H

#include "oc_chmon.h"
#include "request_error.h"
#include "request_state.h"
#include "walk.h"

#include <cstdint>

/* The two sorts of containers. State cannot be deleted: it has no delete check, and only reads expand it. */
enum class content { configuration, state };

/* Walks `count` children in array order until one fails. */
template <auto Hook, auto Augments, typename Dispatch>
faultno walk_request_children(const walk &at, dtf_datatree *children, uint32_t count, Dispatch dispatch)
{
    faultno rc = FAULT_SUCCESS;
    for (uint32_t i = 0; i < count && FAULT_SUCCESS == rc; ++i) {
        dtf_datatree &child = children[i];
        if (NULL == child.tag) {
            DTF_ERR_AS(at.function, at.ctx, "Tag name is not available!");
            rc = FAULT_TREE_ERROR;
        } else if (const dispatched result = dispatch(child)) {
            rc = *result;
        } else if (0 != dtf_map_do_these_match(CHMON_NS_OPENCONFIG_CHANNEL_MONITOR, child.ns)) {
            DTF_ERR_AS(at.function, at.ctx, "Unsupported tag `%s` is specified in the request.", child.tag);
            rc = refuse_unsupported(at.ctx, child);
        } else {
            rc = Augments(at.ctx, &child, at.out);
        }
    }
    return rc;
}

/* Walks what the request implies below a container: the child walkers and the augment handler get the container's own
 * node. What they answer does not matter. */
template <auto Augments, typename Expand>
void expand_container(const walk &at, dtf_datatree &node, uint32_t count, content sort, Expand expand)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    if (0 != count && 0 == (state.filter_flags & filter_all_selected)) {
        return;
    }
    if (content::state == sort ? !is_read(at.ctx) : !implies_content(at.ctx, node)) {
        return;
    }
    {
        const expansion expanding(state);
        expand(node);
        (void)Augments(at.ctx, &node, at.out);
    }
    state.filter_flags &= filter_new_siblings & ~(filter_content_match_seen | filter_selection_seen);
}

/*
 * One container. A replaced one is walked twice: without its children for the removal, with them for the write.
 * `expand` calls the walkers of what the container implies, with the container's node.
 */
template <auto Hook, auto Augments, typename Dispatch, typename Expand>
faultno walk_request_container(const walk &at, content sort, Dispatch dispatch, Expand expand)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    dtf_datatree &node = writable(at.in);
    subtree below = subtree_of(node);
    if (below.is_broken()) {
        DTF_ERR_AS(at.function, at.ctx, "Failed to get subtrees!");
        return FAULT_TREE_ERROR;
    }
    const bool recorded = !is_expanding(state);
    if (content::configuration == sort && recorded && 0 != below.count && delete_walk_off == state.delete_walk &&
        deletes(node)) {
        DTF_TRC_AS(at.function, at.ctx, "Delete request with subtree present");
        return FAULT_INVALID_ARGS;
    }
    if (!recorded && 0 != (state.filter_flags & filter_all_selected)) {
        below.count = 0;
    }
    if (recorded) {
        record_node(at.ctx, node, DTF_HIER_CONTAINER, kind_container);
    }
    const bool replacing = operation_replace == node.operation;
    if (replacing) {
        begin_replace(state, node);
        detach_children(node);
    }
    faultno rc = FAULT_SUCCESS;
    for (int pass = replacing ? 0 : 1; pass < 2; ++pass) {
        const uint32_t count = 0 == pass ? 0 : below.count;
        if (FAULT_SUCCESS == rc) {
            rc = Hook(at.ctx, &node, count, at.out);
            if (FAULT_SUCCESS == rc) {
                rc = walk_request_children<Hook, Augments>(at, below.children, count, dispatch);
            }
        }
        select_siblings(state);
        expand_container<Augments>(at, node, count, sort, expand);
        if (replacing) {
            set_operation(node, operation_merge);
            state.req_flags |= replace_write_pass;
            state.req_flags &= ~replace_removal_pass;
            attach_children(node, below);
        }
    }
    if (replacing) {
        end_replace(state, node);
    }
    if (recorded) {
        dtf_map_remove_from_node_hierarchy(at.ctx, &node);
    }
    return rc;
}

/* A leaf with a value is a content-match node of a read, a leaf without one a selection node (RFC 6241, 6.2.5, 6.2.4).
 */
inline void classify_for_filter(dtf_req_ctx &state, dtf_datatree &leaf)
{
    if (has_flag(leaf, DTF_FLAG_HAS_VALUE)) {
        state.filter_flags |= filter_content_match_seen;
        leaf.node_kind = kind_content_match_leaf;
        state.filter_flags |= filter_request_matches_content;
    } else {
        state.filter_flags |= filter_selection_seen;
    }
}

/* One key leaf: a key selects its entry and is not classified. */
template <auto Hook> faultno walk_request_key_leaf(const walk &at)
{
    const dtf_req_ctx &state = *at.ctx->req_ctx;
    const faultno rc = Hook(at.ctx, at.in, at.out);
    if (!is_expanding(state) && delete_walk_off == state.delete_walk) {
        set_kind(writable(at.in), kind_leaf);
    }
    return rc;
}

/* One leaf that is no key. */
template <auto Hook> faultno walk_request_leaf(const walk &at)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    const faultno rc = walk_request_key_leaf<Hook>(at);
    if (!is_expanding(state) && delete_walk_off == state.delete_walk && is_read(at.ctx)) {
        classify_for_filter(state, writable(at.in));
    }
    return rc;
}

#endif
