/*
 * The operations of dtf.h that concern a walk, each a call of its mapping. Exceptions end here: out of memory becomes a
 * fault where the operation has one to give, else a fault that the mapping reports when the walk is over.
 */
#include "faults.h"
#include "mapping.h"

#include <cstring>

using framework::mapping;

namespace {

template <typename operation> faultno guarded(operation &&work) noexcept
{
    try {
        return work();
    } catch (...) {
        return framework::fault_no_memory;
    }
}

template <typename operation> void guarded_for(dtf_map_ctx ctx, operation &&work) noexcept
{
    try {
        work(mapping::of(ctx));
    } catch (...) {
        mapping::of(ctx).note_fault(framework::fault_no_memory);
    }
}

} // namespace

extern "C" {

void dtf_oc_error_path(dtf_map_ctx ctx)
{
    guarded_for(ctx, [](mapping &walk) { walk.note_error_path(); });
}

void dtf_map_add_to_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node, uint32_t kind)
{
    mapping::of(ctx).push_node(node, kind);
}

void dtf_map_remove_from_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    mapping::of(ctx).pop_node(node);
}

faultno dtf_map_update_current_list_node(dtf_map_ctx ctx, const char *schema_path)
{
    if (schema_path == nullptr)
        return FAULT_INVALID_ARGS;
    return guarded([=] { return mapping::of(ctx).update_current_list(schema_path); });
}

void dtf_add_to_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *)
{
    mapping::of(ctx).entries().add(entry);
}

void dtf_remove_from_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *)
{
    mapping::of(ctx).entries().remove(entry);
}

int dtf_map_do_these_match(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr)
        return 0;
    /* Most names that differ do so in their first character. */
    return a == b || (*a == *b && std::strcmp(a, b) == 0);
}

faultno dtf_map_datatree_add_path_flagged(dtf_map_ctx ctx, struct dtf_datatree *tree, const char *path, const char *ns,
                                          const char *value, const struct dtf_datatree *source,
                                          struct dtf_datatree **created, uint32_t new_list_entry, uint32_t)
{
    if (created != nullptr)
        *created = nullptr;
    if (tree == nullptr || path == nullptr)
        return FAULT_INVALID_ARGS;
    return guarded([=] {
        mapping &walk = mapping::of(ctx);
        if (source == nullptr && created == nullptr && walk.add_packed(*tree, path, ns, value, new_list_entry != 0))
            return FAULT_SUCCESS;
        framework::addition what;
        what.ns = ns;
        what.value = value;
        what.source = source;
        what.new_list_entry = new_list_entry != 0;
        return walk.add_path(*tree, path, what, created);
    });
}

int dtf_map_is_request_delete(const struct dtf_datatree *node)
{
    return node != nullptr && (node->operation == 3 || node->operation == 4);
}

int dtf_map_is_request_add(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    return node != nullptr && mapping::of(ctx).is_edit() && node->operation <= 2;
}

int dtf_map_check_oc_leafref(dtf_map_ctx ctx, const char *, const char *container, const char *key_tag,
                             const struct dtf_datatree *entry)
{
    if (container == nullptr || key_tag == nullptr || entry == nullptr)
        return static_cast<int>(FAULT_INVALID_ARGS);
    return static_cast<int>(guarded([=] { return mapping::of(ctx).check_leafref(container, key_tag, *entry); }));
}

void dtf_map_util_itree_stack_push(dtf_map_ctx ctx, struct dtf_datatree *children, uint32_t count,
                                   dtf_itree_callback callback)
{
    mapping::of(ctx).push_itree({children, count, callback});
}

void dtf_map_util_itree_stack_pop(dtf_map_ctx ctx) { mapping::of(ctx).stack().pop(); }

void dtf_map_util_itree_stack_peak(dtf_map_ctx ctx, struct dtf_itree_entry **entry)
{
    if (entry != nullptr)
        *entry = mapping::of(ctx).stack().top();
}

uint32_t dtf_map_util_itree_stack_size(dtf_map_ctx ctx)
{
    return static_cast<uint32_t>(mapping::of(ctx).stack().size());
}

void dtf_map_print_datatree_internal(dtf_map_ctx ctx, const struct dtf_datatree *tree, const char *label)
{
    guarded_for(ctx, [=](mapping &walk) { walk.print(tree, label); });
}
}
