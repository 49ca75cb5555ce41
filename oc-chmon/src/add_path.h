/* The forms in which the mapping adds paths to an output tree; what they answer is the framework's result. */
#ifndef ADD_PATH_H
#define ADD_PATH_H

#include "dtf.h"

#include <cstddef>

/* A node along the path. source: the request node it stands for, or null. */
inline faultno add_path(dtf_map_ctx ctx, dtf_datatree *out, const char *ns, const char *path, const char *value,
                        const dtf_datatree *source = NULL)
{
    return dtf_map_datatree_add_path_flagged(ctx, out, path, ns, value, source, NULL, 0, 0);
}

/* A new list entry at the end of the path. */
inline faultno add_list_entry(dtf_map_ctx ctx, dtf_datatree *out, const char *ns, const char *path,
                              const dtf_datatree *source = NULL)
{
    return dtf_map_datatree_add_path_flagged(ctx, out, path, ns, NULL, source, NULL, 1, 0);
}

/* A key leaf of an entry that stands for one controller of a whole-list request. */
inline faultno add_entry_key(dtf_map_ctx ctx, dtf_datatree *out, const char *ns, const char *path, const char *value,
                             const dtf_datatree *source = NULL)
{
    return dtf_map_datatree_add_path_flagged(ctx, out, path, ns, value, source, NULL, 0, 1);
}

#endif
