/*
 * The body of the two request list walkers, one call per list entry, and one for the whole list while a request is
 * expanded, then with the node above the list. It runs in named steps; walk_request_entry() at the end strings them
 * together.
 *
 * A list states its facts in a record of constants and functions, `List`:
 *
 *   path, keys               schema path; tags of the key leaves
 *   hook, augments           list hook and augment handler
 *   checks_keys              a keyed request needs its key once, with a value, and without delete operation
 *   reports_missing_keys     every entry without children is reported, not only one that fails for it
 *   reads_without_subtree    in a read, a node whose child array is missing counts as one without children
 *   deletes_expand           a delete of an entry without children is expanded, as a remove; else only a read is
 *   walks_keys, walk_key     whether this kind of request walks keys; the key's walker
 *   walk_below               the result of the walker of another child, or not_dispatched
 *   expand_named             calls the walkers of what an entry implies that is named by its keys alone
 *   expand_open              calls the walkers of what an entry without children implies, its keys first; what
 *   expand_open_state        a delete leaves as it is comes after, in expand_open_state
 */
#ifndef REQUEST_LIST_H
#define REQUEST_LIST_H

#include "oc_chmon.h"
#include "request_error.h"
#include "request_state.h"
#include "walk.h"

#include <algorithm>
#include <cstdint>

/* What a list walker learns about its entry, kept over both passes of a replace. */
struct entry_notes {
    /* 8 bits wide: they wrap. */
    uint8_t keys_seen = 0;
    uint8_t valued_keys = 0;
    bool key_without_value = false;
    bool other_children = false;
    /* The list hook ran in a delete walk that this walker started; and that walk is still to be ended. */
    bool started_delete_walk = false;
    bool owes_delete_walk_end = false;
    /* The instance-tree stack entry that the list hook left behind, by value: later pushes may move the stack. One
     * without an array is as good as none. */
    dtf_itree_entry stacked = {};

    bool key_was_seen() const { return 0 != keys_seen; }
    bool only_keys() const { return !key_without_value && !other_children && key_was_seen(); }
};

/* An entry's children as a list walker counts them: an array that is missing holds none. */
inline subtree entry_children(const dtf_datatree &entry)
{
    const subtree below = subtree_of(entry);
    return below.is_broken() ? subtree{NULL, 0} : below;
}

template <typename List> bool is_key_tag(const dtf_datatree &child)
{
    return std::ranges::any_of(List::keys, [&child](const char *key) { return tag_is(child, key); });
}

/* For an entry without children: reports it, and tells whether the request cannot do without its keys. */
template <typename List> bool lacks_needed_keys(const walk &at)
{
    const dtf_req_ctx &state = *at.ctx->req_ctx;
    if (List::reports_missing_keys) {
        DTF_ERR_AS(at.function, at.ctx, "No keys specified with a list node.");
    }
    if (is_expanding(state) || delete_walk_off != state.delete_walk || !is_keyed(at.ctx)) {
        return false;
    }
    DTF_ERR_AS(at.function, at.ctx, "No keys specified with a list node.");
    return true;
}

/* Looks through the entry's children for keys and marks them. Nonzero: the code of the leafref check that failed. */
template <typename List> faultno scan_keys(const walk &at, const dtf_datatree &node, entry_notes &notes)
{
    const dtf_req_ctx &state = *at.ctx->req_ctx;
    const subtree below = entry_children(node);
    for (uint32_t i = 0; i < below.count; ++i) {
        if (is_expanding(state) || delete_walk_off != state.delete_walk) {
            break;
        }
        dtf_datatree &child = below.children[i];
        if (!is_key_tag<List>(child)) {
            notes.other_children = true;
            continue;
        }
        if (is_keyed(at.ctx)) {
            const int mismatch = dtf_map_check_oc_leafref(at.ctx, List::path, "config", child.tag, &node);
            if (0 != mismatch) {
                DTF_ERR_AS(at.function, at.ctx, "leafref value check fail");
                return static_cast<faultno>(mismatch);
            }
        }
        ++notes.keys_seen;
        mark_as_key(child);
        if (has_flag(child, DTF_FLAG_HAS_VALUE)) {
            ++notes.valued_keys;
        } else {
            notes.key_without_value = true;
        }
    }
    return FAULT_SUCCESS;
}

/* Whether the keys found are those that a request of this kind may, or must, have. */
inline bool keys_pass(uint32_t kind, const entry_notes &notes)
{
    if (kind_edit == kind || kind_edit_15 == kind) {
        return 1 == notes.valued_keys && notes.keys_seen < 2;
    }
    const bool at_most_one = (notes.keys_seen | notes.valued_keys) <= 1;
    return at_most_one && (kind_edit_8 != kind || 1 == notes.valued_keys);
}

template <typename List>
faultno check_keys(const walk &at, const dtf_datatree &node, const entry_notes &notes, faultno rc)
{
    const dtf_req_ctx &state = *at.ctx->req_ctx;
    if (!List::checks_keys || is_expanding(state) || 0 == entry_children(node).count ||
        delete_walk_off != state.delete_walk || keys_pass(request_kind(at.ctx), notes)) {
        return rc;
    }
    DTF_ERR_AS(at.function, at.ctx, "List key node error.");
    return refuse_node(at.ctx, List::keys[0], FAULT_LIST_KEY_ERROR);
}

/* Calls the list hook, in a delete walk where the request deletes an entry by its key alone or a whole list. */
template <typename List> faultno call_list_hook(const walk &at, const dtf_datatree &node, entry_notes &notes)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    const bool starts_delete = deletes(node) && delete_walk_off == state.delete_walk;
    if (starts_delete && !notes.other_children && notes.key_was_seen()) {
        notes.started_delete_walk = true;
        state.delete_walk = delete_walk_by_key;
        const faultno rc = List::hook(at.ctx, &node, at.out);
        state.delete_walk = delete_walk_off;
        return rc;
    }
    if (starts_delete && 0 == entry_children(node).count && is_expanding(state)) {
        notes.started_delete_walk = true;
        notes.owes_delete_walk_end = true;
        state.delete_walk = delete_walk_expanding;
    }
    return List::hook(at.ctx, &node, at.out);
}

inline void end_owed_delete_walk(dtf_req_ctx &state, entry_notes &notes)
{
    if (notes.owes_delete_walk_end) {
        state.delete_walk = delete_walk_off;
        notes.owes_delete_walk_end = false;
    }
}

/* Depth of the instance-tree stack; compared in 16 bits. */
inline uint16_t stack_depth(dtf_map_ctx ctx) { return static_cast<uint16_t>(dtf_map_util_itree_stack_size(ctx)); }

/* Takes note of an instance-tree entry that the hook left behind. */
inline void peek_stack(dtf_map_ctx ctx, entry_notes &notes)
{
    dtf_itree_entry *top = NULL;
    dtf_map_util_itree_stack_peak(ctx, &top);
    if (NULL != top) {
        notes.stacked = *top;
    }
}

/* A key must have its value in a keyed request, and none can be deleted: the entry is. */
template <typename List> faultno check_key_child(const walk &at, const dtf_datatree &key)
{
    if (!List::checks_keys) {
        return FAULT_SUCCESS;
    }
    if (is_keyed(at.ctx) && !has_flag(key, DTF_FLAG_HAS_VALUE)) {
        DTF_ERR_AS(at.function, at.ctx, "Empty list key specified.");
        return refuse_node(at.ctx, key.tag, FAULT_LIST_KEY_ERROR);
    }
    if (deletes(key)) {
        DTF_ERR_AS(at.function, at.ctx, "The key node should not have delete operation.");
        dtf_oc_error_path(at.ctx);
        return FAULT_KEY_DELETE;
    }
    return FAULT_SUCCESS;
}

/* Dispatches one child of an entry. The removal pass of a replace walks keys only. */
template <typename List> faultno walk_entry_child(const walk &at, dtf_datatree &child, entry_notes &notes)
{
    if (NULL == child.tag) {
        DTF_ERR_AS(at.function, at.ctx, "Tag name is not available!");
        return FAULT_TREE_ERROR;
    }
    if (List::walks_keys(at.ctx) && is_key_tag<List>(child)) {
        const faultno refusal = check_key_child<List>(at, child);
        if (FAULT_SUCCESS != refusal) {
            return refusal;
        }
        const faultno rc = List::walk_key(at.ctx, child, at.out);
        mark_as_key(child);
        if (has_flag(child, DTF_FLAG_HAS_VALUE)) {
            ++notes.keys_seen;
        }
        return rc;
    }
    if (0 != (at.ctx->req_ctx->req_flags & replace_removal_pass)) {
        return FAULT_SUCCESS;
    }
    if (const dispatched result = List::walk_below(at.ctx, child, at.out)) {
        notes.other_children = true;
        return *result;
    }
    if (0 != dtf_map_do_these_match(CHMON_NS_OPENCONFIG_CHANNEL_MONITOR, child.ns)) {
        DTF_ERR_AS(at.function, at.ctx, "Unsupported tag `%s`is specified in the request.", child.tag);
        return refuse_unsupported(at.ctx, child);
    }
    notes.other_children = true;
    return List::augments(at.ctx, &child, at.out);
}

/*
 * Walks what an entry implies that is named by its keys alone. Its keys wait on the instance-tree stack meanwhile. The
 * entry of a delete stays a remove afterwards.
 */
template <typename List>
void expand_named_entry(const walk &at, const dtf_datatree &node, dtf_datatree &entry, const entry_notes &notes)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    const subtree below = entry_children(entry);
    {
        const expansion expanding(state);
        const delete_expansion deleting(state, notes.started_delete_walk);
        if (deletes(node)) {
            set_operation(entry, operation_remove);
        }
        dtf_map_util_itree_stack_push(at.ctx, below.children, below.count, NULL);
        detach_children(entry);
        List::expand_named(at.ctx, entry, at.out);
        (void)List::augments(at.ctx, &entry, at.out);
    }
    attach_children(entry, below);
    dtf_map_util_itree_stack_pop(at.ctx);
}

/* Walks what an entry without children implies: the whole of the list. */
template <typename List> void expand_open_entry(const walk &at, dtf_datatree &node, entry_notes &notes)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    {
        const expansion expanding(state);
        const delete_expansion deleting(state, List::deletes_expand && deletes(node));
        {
            const delete_as_remove removing(node, List::deletes_expand);
            List::expand_open(at.ctx, node, at.out);
        }
        List::expand_open_state(at.ctx, node, at.out);
        (void)List::augments(at.ctx, &node, at.out);
    }
    end_owed_delete_walk(state, notes);
}

/* Walks one entry's children, and what it implies. `entry` is the list node or an element of the stack entry's array;
 * whether the request deletes is always the list node's matter. */
template <typename List>
faultno walk_entry(const walk &at, dtf_datatree &node, dtf_datatree &entry, entry_notes &notes, faultno rc)
{
    const subtree below = entry_children(entry);
    for (uint32_t i = 0; i < below.count && FAULT_SUCCESS == rc; ++i) {
        rc = walk_entry_child<List>(at, below.children[i], notes);
    }
    if (FAULT_SUCCESS == rc && notes.only_keys() && implies_content(at.ctx, node)) {
        expand_named_entry<List>(at, node, entry, notes);
    }
    if (0 == below.count && (List::deletes_expand ? implies_content(at.ctx, node) : is_read(at.ctx))) {
        expand_open_entry<List>(at, node, notes);
    }
    return rc;
}

/* Walks the entries that the hook left on the instance-tree stack in the list node's place. The first stands where the
 * list node was recorded; the others are recorded one by one, even while the content of the list is expanded. */
template <typename List>
faultno walk_stacked_entries(const walk &at, dtf_datatree &node, entry_notes &notes, faultno rc)
{
    for (uint32_t i = 0; i < notes.stacked.count; ++i) {
        dtf_datatree &entry = notes.stacked.children[i];
        const bool goes_on = FAULT_SUCCESS == rc;
        const bool recorded = goes_on && 0 != i;
        if (recorded) {
            dtf_map_add_to_node_hierarchy(at.ctx, &entry, DTF_HIER_LIST);
            rc = dtf_map_update_current_list_node(at.ctx, List::path);
        }
        if (goes_on && NULL != notes.stacked.callback) {
            if (deletes(node)) {
                set_operation(entry, operation_remove);
            }
            (void)notes.stacked.callback(at.ctx, &entry, at.out, 0);
        }
        rc = walk_entry<List>(at, node, entry, notes, rc);
        if (recorded) {
            dtf_map_remove_from_node_hierarchy(at.ctx, &entry);
        }
    }
    return rc;
}

/* A read that asks for content of an entry without its keys gets them added to the request: the reply needs them. The
 * children may move with each addition. */
template <typename List> faultno add_missing_keys(const walk &at, dtf_datatree &node, const entry_notes &notes)
{
    if (!is_read(at.ctx) || is_expanding(*at.ctx->req_ctx) || !notes.other_children || notes.key_was_seen()) {
        return FAULT_SUCCESS;
    }
    faultno rc = FAULT_SUCCESS;
    for (const char *key : List::keys) {
        dtf_datatree *created = NULL;
        rc = dtf_map_datatree_add_path_flagged(at.ctx, &node, key, node.ns, NULL, NULL, &created, 0, 0);
        if (NULL != created) {
            mark_as_key(*created);
        }
    }
    return rc;
}

/* Hook, entries, missing keys. An earlier failure leaves only the expansion of an entry without children. */
template <typename List> faultno walk_entry_pass(const walk &at, dtf_datatree &node, entry_notes &notes, faultno rc)
{
    if (FAULT_SUCCESS == rc) {
        const uint16_t depth = stack_depth(at.ctx);
        rc = call_list_hook<List>(at, node, notes);
        if (FAULT_SKIP_ENTRY == rc) {
            end_owed_delete_walk(*at.ctx->req_ctx, notes);
            return FAULT_SUCCESS;
        }
        if (stack_depth(at.ctx) > depth) {
            peek_stack(at.ctx, notes);
        }
        if (FAULT_SUCCESS == rc) {
            at.ctx->list_node_op = has_flag(node, DTF_FLAG_OP_SET) ? node.operation : 0;
        }
    }
    if (NULL != notes.stacked.children && 0 != notes.stacked.count) {
        rc = walk_stacked_entries<List>(at, node, notes, rc);
    } else {
        rc = walk_entry<List>(at, node, node, notes, rc);
    }
    return FAULT_SUCCESS == rc ? add_missing_keys<List>(at, node, notes) : rc;
}

/* The one pass of an entry, or the two of a replaced one. */
template <typename List> faultno walk_entry_passes(const walk &at, dtf_datatree &node, entry_notes &notes, faultno rc)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    if (operation_replace != node.operation) {
        return walk_entry_pass<List>(at, node, notes, rc);
    }
    begin_replace(state, node);
    notes.key_without_value = false;
    notes.other_children = false;
    for (int pass = 0; pass < 2; ++pass) {
        rc = walk_entry_pass<List>(at, node, notes, rc);
        set_operation(node, operation_merge);
        state.req_flags &= ~replace_removal_pass;
    }
    end_replace(state, node);
    return rc;
}

template <typename List> faultno walk_request_entry(const walk &at)
{
    dtf_req_ctx &state = *at.ctx->req_ctx;
    dtf_datatree &node = writable(at.in);
    if (subtree_of(node).is_broken() && !(List::reads_without_subtree && is_read(at.ctx))) {
        DTF_ERR_AS(at.function, at.ctx, "Failed to get subtrees!");
        return FAULT_TREE_ERROR;
    }
    if (0 == entry_children(node).count && lacks_needed_keys<List>(at)) {
        return FAULT_TREE_ERROR;
    }
    const bool recorded = !is_expanding(state);
    if (recorded) {
        record_node(at.ctx, node, DTF_HIER_LIST, kind_list_entry);
    }
    faultno rc = dtf_map_update_current_list_node(at.ctx, List::path);
    entry_notes notes;
    if (FAULT_SUCCESS == rc) {
        const faultno mismatch = scan_keys<List>(at, node, notes);
        if (FAULT_SUCCESS != mismatch) {
            dtf_map_remove_from_node_hierarchy(at.ctx, &node);
            return mismatch;
        }
    }
    rc = check_keys<List>(at, node, notes, rc);
    rc = walk_entry_passes<List>(at, node, notes, rc);
    end_owed_delete_walk(state, notes);
    if (NULL != notes.stacked.children) {
        dtf_map_util_itree_stack_pop(at.ctx);
    }
    if (recorded) {
        dtf_map_remove_from_node_hierarchy(at.ctx, &node);
    }
    return rc;
}

#endif
