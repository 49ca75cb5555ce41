/* How a request is refused: what the error reply needs is noted, and the result code comes back. Nothing is reported
 * here; the report is the caller's. */
#ifndef REQUEST_ERROR_H
#define REQUEST_ERROR_H

#include "dtf.h"
#include "request_kind.h"

#include <cstddef>

/* Keeps a copy of the tag that fails the request; error_tag holds null or one copy at any time. */
inline void set_error_tag(dtf_map_ctx ctx, const char *tag)
{
    dtf_req_ctx *state = ctx->req_ctx;
    if (NULL == state) {
        return;
    }
    if (NULL != state->error_tag) {
        plat_named_free(state->error_tag);
        state->error_tag = NULL;
    }
    state->error_tag = dtf_strdup(tag, "DTF MAP");
}

inline faultno refuse_node(dtf_map_ctx ctx, const char *tag, faultno code)
{
    set_error_tag(ctx, tag);
    dtf_oc_error_path(ctx);
    return code;
}

/* An element of the own namespace that the mapping does not know: reads pass over it. */
inline faultno refuse_unsupported(dtf_map_ctx ctx, const dtf_datatree &node)
{
    return is_read(ctx) ? FAULT_SUCCESS : refuse_node(ctx, node.tag, FAULT_UNSUPPORTED_TAG);
}

/* A node of a foreign namespace: only a request that adds it is refused. */
inline faultno refuse_foreign_addition(dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *)
{
    return 0 == dtf_map_is_request_add(ctx, node) ? FAULT_SUCCESS
                                                  : refuse_node(ctx, node->tag, FAULT_UNSUPPORTED_AUGMENT);
}

#endif
