/* From a subtree filter (RFC 6241, section 6) to the request that the plug-in walks. */
#ifndef SERVICE_FILTER_REQUEST_H
#define SERVICE_FILTER_REQUEST_H

#include "dtf.h"

#include "framework/arena.h"

#include <vector>

namespace service {

/*
 * The channel-monitors containers that a filter asks for, each a request of its own; none where the filter can select
 * nothing of them. `filter` is a root without a tag; it is left as it is, for a walk marks and changes what it visits,
 * and the reply is cut to the filter afterwards.
 *
 * A request asks for at least what the filter selects:
 *   - Elements without namespace stand for any (6.2.1), hence for ours; those of another model's select nothing and are
 *     left out, with what consists of nothing else.
 *   - A content match that stands in a container of a list entry narrows what is fetched to the entries that match.
 *     That is right only as long as nothing else is asked of the others: beside a sibling, the container is asked for
 *     as a whole.
 *   - An entry that names no monitor is a request of its own, for only such a request is one for all monitors.
 */
std::vector<dtf_datatree> requests_of(const dtf_datatree &filter, framework::arena &memory);

/* The request for everything. */
dtf_datatree whole_request();

} // namespace service

#endif
