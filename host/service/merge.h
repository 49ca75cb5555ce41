/* Two trees of channel monitors become one. */
#ifndef SERVICE_MERGE_H
#define SERVICE_MERGE_H

#include "dtf.h"
#include "framework/arena.h"

namespace service {

/*
 * Adds the top containers below `from` to those below `into`, both roots without a tag. An entry for a monitor that
 * `into` knows already gives it what it lacks, the others follow behind it. The nodes of `from` are shared, so it must
 * live as long and not be used on its own afterwards. Costs the number of monitors, not of what is below them.
 */
void merge_monitors(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from);

} // namespace service

#endif
