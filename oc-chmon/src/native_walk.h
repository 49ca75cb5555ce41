/*
 * The body of the native-to-OpenConfig walkers, once per kind of schema node. A walker states its own facts: namespace,
 * list path, keys, hook, augment handler, and how a child's tag leads to the child's walker.
 *
 * These are templates over the hook so that each walker has site words of its own; reports carry `function`, the name
 * of the exported walker.
 */
#ifndef NATIVE_WALK_H
#define NATIVE_WALK_H

#include "walk.h"

#include <iterator>

/* Request state flag: a node marked as XPath error was met. */
constexpr uint32_t req_xpath_error = 0x100;
/* error_kind of such a node. */
constexpr uint32_t error_kind_xpath = 5;

/* A list entry that does not map is dropped; the walk over its siblings goes on. */
inline faultno unless_skipped(faultno rc) { return FAULT_SKIP_ENTRY == rc ? FAULT_SUCCESS : rc; }

/* Walks the children in array order until one fails. `dispatch` takes a child and answers its walker's result, or
 * not_dispatched for a tag that the mapping does not know here. */
template <auto Augments, typename Dispatch>
faultno walk_native_children(const walk &at, const subtree &below, const char *ns, Dispatch dispatch)
{
    faultno rc = FAULT_SUCCESS;
    for (uint32_t i = 0; i < below.count && FAULT_SUCCESS == rc; ++i) {
        dtf_datatree &child = below.children[i];
        if (NULL == child.tag) {
            DTF_ERR_AS(at.function, at.ctx, "Tag name is not available!");
            rc = FAULT_TREE_ERROR;
        } else if (const dispatched result = dispatch(child)) {
            rc = *result;
        } else if (0 != dtf_map_do_these_match(ns, child.ns)) {
            DTF_TRC_AS(at.function, at.ctx, "Unsupported tag `%s`. Ignoring.", child.tag);
        } else {
            rc = Augments(at.ctx, &child, at.out);
        }
    }
    return rc;
}

template <auto Hook, auto Augments, typename Dispatch>
faultno walk_native_container(const walk &at, const char *ns, Dispatch dispatch)
{
    const subtree below = subtree_of(*at.in);
    if (below.is_broken()) {
        DTF_ERR_AS(at.function, at.ctx, "Failed to get subtrees!");
        return FAULT_TREE_ERROR;
    }
    dtf_map_add_to_node_hierarchy(at.ctx, at.in, DTF_HIER_CONTAINER);
    faultno rc = Hook(at.ctx, at.in, below.count, at.out);
    if (FAULT_SUCCESS == rc) {
        rc = walk_native_children<Augments>(at, below, ns, dispatch);
    }
    dtf_map_remove_from_node_hierarchy(at.ctx, at.in);
    return rc;
}

/* Marks the children whose tag is one of the list's keys. */
template <typename Keys> void mark_native_keys(const subtree &below, const Keys &keys)
{
    for (uint32_t i = 0; i < below.count; ++i) {
        for (const char *key : keys) {
            if (tag_is(below.children[i], key)) {
                mark_as_key(below.children[i]);
                break;
            }
        }
    }
}

/* A list without keys. */
struct no_keys {
    static const char *const *begin() { return nullptr; }
    static const char *const *end() { return nullptr; }
};

/*
 * One list entry. It is in the framework's output list while its children are walked, and withdrawn again only where
 * this walker's registration grew the list. An entry that its list hook drops never gets there.
 */
template <auto Hook, auto Augments, typename Keys, typename Dispatch>
faultno walk_native_entry(const walk &at, const char *ns, const char *list_path, const Keys &keys, Dispatch dispatch)
{
    const subtree below = subtree_of(*at.in);
    if (below.is_broken()) {
        DTF_ERR_AS(at.function, at.ctx, "Failed to get subtrees!");
        return FAULT_TREE_ERROR;
    }
    if (0 == below.count) {
        DTF_ERR_AS(at.function, at.ctx, "No keys specified with a list node.");
    }
    dtf_map_add_to_node_hierarchy(at.ctx, at.in, DTF_HIER_LIST);
    faultno rc = dtf_map_update_current_list_node(at.ctx, list_path);
    if (FAULT_SUCCESS == rc) {
        mark_native_keys(below, keys);
        rc = Hook(at.ctx, at.in, at.out);
        if (FAULT_SKIP_ENTRY == rc) {
            dtf_map_remove_from_node_hierarchy(at.ctx, at.in);
            return rc;
        }
    }
    const uint8_t length_before = at.ctx->req_ctx->output_list_len;
    dtf_add_to_output_list_ctx(at.ctx, at.in, at.out);
    const uint8_t length_after = at.ctx->req_ctx->output_list_len;
    if (FAULT_SUCCESS == rc) {
        rc = walk_native_children<Augments>(at, below, ns, dispatch);
    }
    dtf_map_remove_from_node_hierarchy(at.ctx, at.in);
    if (length_before < length_after) {
        dtf_remove_from_output_list_ctx(at.ctx, at.in, at.out);
    }
    return rc;
}

/* A node that the framework marked as XPath error is noted and mapped like any other. */
template <auto Hook> faultno walk_native_leaf(const walk &at)
{
    if (has_flag(*at.in, DTF_FLAG_ERROR_KIND) && error_kind_xpath == at.in->error_kind) {
        DTF_TRC_AS(at.function, at.ctx, "got xpath error node ");
        at.ctx->req_ctx->req_flags |= req_xpath_error;
    }
    return Hook(at.ctx, at.in, at.out);
}

#endif
