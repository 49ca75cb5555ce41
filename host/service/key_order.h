/* The order of a list entry's children. */
#ifndef SERVICE_KEY_ORDER_H
#define SERVICE_KEY_ORDER_H

#include "dtf.h"

namespace service {

/*
 * Puts the key leaves of every list entry first and in the order of the schema, as XML wants them (RFC 7950, 7.8.5);
 * everything else keeps its order. `root` has no tag; its child arrays are changed in place.
 */
void put_keys_first(dtf_datatree &root);

} // namespace service

#endif
