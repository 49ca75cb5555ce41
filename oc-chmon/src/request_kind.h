/* The groups of request kinds (data_input of the request descriptor) that the mapping tells apart. */
#ifndef REQUEST_KIND_H
#define REQUEST_KIND_H

#include "dtf.h"

#include <cstdint>

/* Configuration and state are read; the only kind under which the native operational tree and state are walked. */
constexpr uint32_t kind_get = 10;
/* Configuration is read. */
constexpr uint32_t kind_get_config = 0;
/* An edit whose list entries need exactly one valued key; kind 1 and kind 15 have one key rule, kind 8 its own. */
constexpr uint32_t kind_edit = 1;
constexpr uint32_t kind_edit_8 = 8;
constexpr uint32_t kind_edit_15 = 15;

inline uint32_t request_kind(dtf_map_ctx ctx) { return ctx->req_ctx->req->data_input; }

inline bool is_get(dtf_map_ctx ctx) { return kind_get == request_kind(ctx); }

inline bool is_read(dtf_map_ctx ctx) { return is_get(ctx) || kind_get_config == request_kind(ctx); }

/* Kinds whose list entries must carry their keys. */
inline bool is_keyed(dtf_map_ctx ctx)
{
    const uint32_t kind = request_kind(ctx);
    return kind_edit == kind || kind_edit_8 == kind || kind_edit_15 == kind;
}

/* Kinds that map to the interface configuration and not to the operational model. */
inline bool is_configuration(dtf_map_ctx ctx) { return is_keyed(ctx) || kind_get_config == request_kind(ctx); }

#endif
