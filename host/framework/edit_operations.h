/* The edit operations of NETCONF (RFC 6241, 7.2), as documents spell them and as request trees carry them. */
#ifndef FRAMEWORK_EDIT_OPERATIONS_H
#define FRAMEWORK_EDIT_OPERATIONS_H

#include "dtf.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace framework {

inline constexpr std::string_view netconf_namespace = "urn:ietf:params:xml:ns:netconf:base:1.0";

/* The number of "merge", "replace", "create", "delete" or "remove" (dtf_datatree.operation); none for another word. */
std::optional<std::uint32_t> operation_of(std::string_view word);

/* The word of a number; "merge" for one that is none. */
std::string_view operation_word(std::uint32_t operation);

/* Gives the node an explicit operation (DTF_FLAG_OP_SET). */
void set_operation(dtf_datatree &node, std::uint32_t operation);

/*
 * Passes operations down: a node without one of its own takes create, delete or remove from its parent, without
 * DTF_FLAG_OP_SET, for those concern the whole subtree; a list key leaf does not, since it only names its entry.
 */
void inherit_operations(dtf_datatree &root);

} // namespace framework

#endif
