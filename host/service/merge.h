/* Two trees of channel monitors become one. */
#ifndef SERVICE_MERGE_H
#define SERVICE_MERGE_H

#include "dtf.h"
#include "framework/arena.h"

namespace service {

/*
 * Adds the top containers below `from` to those below `into`, both roots without a tag. There is one entry for each
 * monitor then, also where `from` had several: it has the parts and channels of all of them, and where two speak of the
 * same leaf, that of the first. The nodes of `from` are shared, so it must live as long and not be used on its own
 * afterwards. What is below a monitor costs something only where two have the same part.
 */
void merge_monitors(framework::arena &memory, dtf_datatree &into, const dtf_datatree &from);

} // namespace service

#endif
