/* Trees of channel monitors become one. */
#ifndef SERVICE_MERGE_H
#define SERVICE_MERGE_H

#include "dtf.h"
#include "framework/arena.h"

#include <vector>

namespace service {

/*
 * Gives `into` the children of all `parents`. Containers of one name become one, and so do list entries with the same
 * keys, with all that the single ones have, in the order in which it comes; of two leaves the first one stays. The
 * nodes are shared with the parents, which must live as long and not be used on their own afterwards. Linear in the
 * monitors, and in what is below those that there are several of.
 */
void merge(framework::arena &memory, dtf_datatree &into, const std::vector<dtf_datatree *> &parents);

} // namespace service

#endif
