/*
 * The state that request walkers keep in the request context and in the nodes of the request, and the steps in which it
 * changes. What a step changes for the time of a call it puts back itself.
 */
#ifndef REQUEST_STATE_H
#define REQUEST_STATE_H

#include "dtf.h"
#include "request_kind.h"
#include "walk.h"

#include <cstddef>
#include <cstdint>

/* Edit operations that the walkers read or write (RFC 6241, 7.2; the order of the record). */
constexpr uint32_t operation_merge = 0;
constexpr uint32_t operation_replace = 1;
constexpr uint32_t operation_delete = 3;
constexpr uint32_t operation_remove = 4;

/* node_kind, and the bit of kind_flags that goes with it. */
constexpr uint32_t kind_leaf = 1;
constexpr uint32_t kind_container = 3;
constexpr uint32_t kind_list_entry = 4;
constexpr uint32_t kind_content_match_leaf = 6;
constexpr uint8_t kind_is_set = 0x04;

/* req_flags: which pass of a replace runs. */
constexpr uint32_t replace_removal_pass = 0x40;
constexpr uint32_t replace_write_pass = 0x80;

/* filter_flags: subtree filter of a read (RFC 6241, 6.2), for the siblings being walked and for the whole request. */
constexpr uint32_t filter_all_selected = 0x1;
constexpr uint32_t filter_selection_seen = 0x2;
constexpr uint32_t filter_content_match_seen = 0x4;
constexpr uint32_t filter_request_matches_content = 0x10000;
/* What is left of filter_flags where a new set of siblings begins. The mask keeps one bit of each digit but the last,
 * not all but the lowest bit: the framework's own bits live there too. */
constexpr uint32_t filter_new_siblings = 0x11111110;

/* delete_walk */
constexpr uint32_t delete_walk_off = 0;
constexpr uint32_t delete_walk_expanding = 1;
constexpr uint32_t delete_walk_by_key = 2;

/* The walkers take read-only nodes by their calling form, and change the documented fields of the request's nodes. */
inline dtf_datatree &writable(const dtf_datatree *node) { return *const_cast<dtf_datatree *>(node); }

inline bool is_expanding(const dtf_req_ctx &state) { return 1 == state.expand_mode; }

inline bool deletes(const dtf_datatree &node) { return 0 != dtf_map_is_request_delete(&node); }

/* A read asks for, and a delete takes away, what a request leaves open below a node. */
inline bool implies_content(dtf_map_ctx ctx, const dtf_datatree &node) { return is_read(ctx) || deletes(node); }

inline void set_operation(dtf_datatree &node, uint32_t operation)
{
    node.operation = operation;
    node.flags |= DTF_FLAG_OP_SET;
}

inline void set_kind(dtf_datatree &node, uint32_t kind)
{
    node.node_kind = kind;
    node.kind_flags |= kind_is_set;
}

/* Records a container or list entry of the request; its children are a new set of siblings. */
inline void record_node(dtf_map_ctx ctx, dtf_datatree &node, uint32_t hierarchy_kind, uint32_t kind)
{
    dtf_map_add_to_node_hierarchy(ctx, &node, hierarchy_kind);
    set_kind(node, kind);
    if (is_read(ctx)) {
        ctx->req_ctx->filter_flags &= filter_new_siblings;
    }
}

/* Siblings that only match content are all selected; one selection node among them, and only those are. */
inline void select_siblings(dtf_req_ctx &state)
{
    if (0 != (state.filter_flags & filter_content_match_seen) && 0 == (state.filter_flags & filter_selection_seen)) {
        state.filter_flags |= filter_all_selected;
        state.filter_flags &= ~(filter_content_match_seen | filter_selection_seen);
    }
}

/* Expansion of a node that the request names but whose content it leaves open. */
struct expansion {
    dtf_req_ctx &state;
    const bool began_here;

    explicit expansion(dtf_req_ctx &request_state) : state(request_state), began_here(!is_expanding(request_state))
    {
        state.expand_mode = 1;
    }
    ~expansion()
    {
        if (began_here) {
            state.expand_mode = 0;
        }
    }
    expansion(const expansion &) = delete;
    expansion &operator=(const expansion &) = delete;
};

/* An expanding delete walk, where `wanted` and none runs yet. */
struct delete_expansion {
    dtf_req_ctx &state;
    const bool began_here;

    delete_expansion(dtf_req_ctx &request_state, bool wanted)
        : state(request_state), began_here(wanted && delete_walk_off == request_state.delete_walk)
    {
        if (began_here) {
            state.delete_walk = delete_walk_expanding;
        }
    }
    ~delete_expansion()
    {
        if (began_here) {
            state.delete_walk = delete_walk_off;
        }
    }
    delete_expansion(const delete_expansion &) = delete;
    delete_expansion &operator=(const delete_expansion &) = delete;
};

/* A delete counts as a remove while the content it implies is walked: what is not there is no error. */
struct delete_as_remove {
    dtf_datatree &node;
    const bool switched;

    delete_as_remove(dtf_datatree &deleted, bool wanted)
        : node(deleted), switched(wanted && deletes(deleted) && operation_delete == deleted.operation)
    {
        if (switched) {
            set_operation(node, operation_remove);
        }
    }
    ~delete_as_remove()
    {
        if (switched) {
            set_operation(node, operation_delete);
        }
    }
    delete_as_remove(const delete_as_remove &) = delete;
    delete_as_remove &operator=(const delete_as_remove &) = delete;
};

inline void detach_children(dtf_datatree &node)
{
    node.children = NULL;
    node.child_count = 0;
    node.flags &= ~DTF_FLAG_HAS_SUBTREE;
}

inline void attach_children(dtf_datatree &node, const subtree &below)
{
    node.children = below.children;
    node.child_count = below.count;
    node.flags |= DTF_FLAG_HAS_SUBTREE;
}

/* A replace walks its node twice, first to remove and then to write. */
inline void begin_replace(dtf_req_ctx &state, dtf_datatree &node)
{
    set_operation(node, operation_remove);
    state.req_flags |= replace_removal_pass;
    state.replace_pending = 1;
}

/* A nested replace has ended the pending one: the enclosing node then does not become a replace again. */
inline void end_replace(dtf_req_ctx &state, dtf_datatree &node)
{
    state.req_flags &= ~(replace_removal_pass | replace_write_pass);
    if (1 == state.replace_pending) {
        set_operation(node, operation_replace);
    }
    state.replace_pending = 0;
}

#endif
