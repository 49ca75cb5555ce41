/* What is printed beside a native node. */
#ifndef SERVICE_PLAN_NOTES_H
#define SERVICE_PLAN_NOTES_H

#include "service/tree_access.h"

#include "framework/edit_operations.h"
#include "framework/mapping.h"

#include <algorithm>
#include <string_view>

namespace service {

/* Where the annotation of a source is named: our own, for NETCONF has none. */
inline constexpr std::string_view plan_namespace = "urn:chmon:plan";

struct plan_notes {
    /* Empty where there is none. */
    std::string_view operation;
    std::string_view source;

    bool empty() const { return operation.empty() && source.empty(); }
};

inline plan_notes notes_of(const framework::mapping *walk, const dtf_datatree &node)
{
    plan_notes notes;
    if ((node.flags & DTF_FLAG_OP_SET) != 0 || node.operation != 0)
        notes.operation = framework::operation_word(node.operation);
    if (const framework::source_note *const source = walk == nullptr ? nullptr : walk->source_of(node))
        notes.source = source->path;
    return notes;
}

/* Whether the node or anything below it has notes. */
inline bool has_notes(const framework::mapping *walk, const dtf_datatree &node)
{
    return !notes_of(walk, node).empty() ||
           std::ranges::any_of(children_of(node), [walk](const dtf_datatree &child) { return has_notes(walk, child); });
}

} // namespace service

#endif
