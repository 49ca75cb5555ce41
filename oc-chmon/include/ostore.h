/*
 * The system-database client. The database is a tree of items addressed by path
 * ("/oper/inventory/gl/entity/<key>/..."); an item is a parcel (parcel.h).
 *
 * Compiles alone as C11 and as C++20.
 */
#ifndef OSTORE_H
#define OSTORE_H

#include "dtf.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Binds to the subtree at `path` (absolute, with its closing "/"). options: 0. On 0, *handle is a handle that
 * _ostore_unbind() releases, or null where the database has no such subtree to serve; on a fault *handle is null.
 */
faultno _ostore_bind(void **handle, const char *path, uint32_t options);

/*
 * Reads one item. item: its path relative to the bound subtree. *word: 7 on the way in, the client's own after that.
 * options: 0. On 0, *data is a parcel of *length bytes that the caller owns and releases with the standard free(); on a
 * fault both are untouched.
 */
faultno ostore_item_get(void *handle, const char *item, uint32_t *word, void **data, uint32_t *length,
                        uint32_t options);

/* Releases a binding. */
void _ostore_unbind(void *handle);

#ifdef __cplusplus
}
#endif

#endif
