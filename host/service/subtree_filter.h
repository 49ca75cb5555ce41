/* Subtree filters (RFC 6241, section 6). */
#ifndef SERVICE_SUBTREE_FILTER_H
#define SERVICE_SUBTREE_FILTER_H

#include "dtf.h"

#include "framework/arena.h"

namespace service {

/*
 * What of `data` the filter selects; both are roots without a tag.
 *
 * A filter node is a containment node where it has children, a content match where it has a value, else a selection
 * node. Content matches among siblings must all hold, else nothing of these siblings is selected; where they are the
 * only siblings, everything below their parent is. White space around a value was taken away when it was read. A node
 * without namespace stands for that name in any. Where several filter nodes are for the same data, the reply holds
 * what any of them selects. Entries of which something is selected come with their key leaves, in whatever place.
 *
 * The nodes of the result are in `memory`, and share texts and whole subtrees with `data`.
 */
dtf_datatree cut_to_filter(const dtf_datatree &data, const dtf_datatree &filter, framework::arena &memory);

/*
 * Takes the white space around the filter's texts away, which is none of them (6.2.5); what has no other text selects.
 * XML comes without it already.
 */
void trim_texts(dtf_datatree &filter, framework::arena &memory);

} // namespace service

#endif
