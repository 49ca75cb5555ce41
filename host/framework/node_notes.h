/* What the writers can put beside a node: XML attributes, JSON metadata (RFC 7952). */
#ifndef FRAMEWORK_NODE_NOTES_H
#define FRAMEWORK_NODE_NOTES_H

#include "dtf.h"
#include "edit_operations.h"

#include <functional>
#include <string_view>

namespace framework {

/* NETCONF has no annotation for the second one: it is of a namespace of our own, under the prefix "chmon". */
inline constexpr std::string_view source_namespace = "urn:chmon:plan";

/* Each empty where there is none. */
struct node_notes {
    std::string_view operation; /* nc:operation, in JSON ietf-netconf:operation */
    std::string_view source;    /* chmon:source: the node of a request that this one stands for */

    bool empty() const { return operation.empty() && source.empty(); }
};

/* Tells the notes of a node. The texts stay until it is called again. */
using note_teller = std::function<node_notes(const dtf_datatree &)>;

/* The edit operation that a node was given explicitly. */
inline node_notes explicit_operation(const dtf_datatree &node)
{
    return {(node.flags & DTF_FLAG_OP_SET) != 0 ? operation_word(node.operation) : std::string_view(), {}};
}

} // namespace framework

#endif
