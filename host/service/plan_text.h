/*
 * A native request as text, with what is known of each node beside it: the edit operation, and the node of the
 * OpenConfig request that it stands for. The latter is known to the walk that made the tree, which may be null.
 */
#ifndef SERVICE_PLAN_TEXT_H
#define SERVICE_PLAN_TEXT_H

#include "framework/mapping.h"

#include <string>

namespace service {

/*
 * Attributes nc:operation and chmon:source. There is one top element per native model; where that is not exactly one,
 * they are in NETCONF's <data>.
 */
std::string plan_xml(const dtf_datatree &native, const framework::mapping *walk);

/* One object, with the metadata ietf-netconf:operation and chmon:source (RFC 7952, 5.2). */
std::string plan_json(const dtf_datatree &native, const framework::mapping *walk);

} // namespace service

#endif
