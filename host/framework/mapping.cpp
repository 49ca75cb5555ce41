#include "mapping.h"

#include "error_path.h"
#include "faults.h"
#include "print_tree.h"
#include "tree.h"

#include <cstring>
#include <utility>

namespace framework {

namespace {

extern "C" faultno enter_request_instance(dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *, uint32_t)
{
    return mapping::of(ctx).enter_instance(node);
}

const char *value_of(const dtf_datatree *leaf)
{
    return leaf == nullptr || (leaf->flags & DTF_FLAG_HAS_VALUE) == 0 ? nullptr : leaf->value;
}

} // namespace

mapping::mapping(mapping_options options, arena &output_memory)
    : options_(std::move(options)),
      output_memory_(output_memory),
      log_(options_.log_stream),
      trace_(options_.trace_lines),
      paths_(output_memory),
      hierarchy_(state_),
      output_list_(state_),
      instances_(stack_)
{
    options_.packs_entries = options_.packs_entries && options_.way == direction::native_to_openconfig;
    request_ = {options_.request_kind, options_.option_bits, options_.scope};
    state_.req = &request_;
    context_.owner = this;
    context_.req_ctx = &state_;
    context_.debug_filter = filter_for(options_.log);
    context_.err_log = &log_;
    context_.trc_log = &log_;
    context_.trace_ring = &trace_;
    context_.trace_on = options_.trace ? 1 : 0;
}

mapping::~mapping() { plat_named_free(state_.error_tag); }

faultno mapping::run(walker top, const dtf_datatree &in, dtf_datatree &out)
{
    landing_ = std::make_unique<landing>(out, output_memory_);
    state_.root_node = const_cast<dtf_datatree *>(&in);
    finish(top(&context_, &in, &out));
    return result_;
}

void mapping::finish(faultno walked)
{
    landing_->finish(withdraws_keyless());
    result_ = walked != FAULT_SUCCESS ? walked : own_fault_;
    if (state_.error_tag != nullptr)
        error_tag_ = state_.error_tag;
    /* What failed in a part of the walk whose result nobody looks at is no error of the request. */
    if (result_ == FAULT_SUCCESS) {
        error_path_.clear();
        error_tag_.clear();
    }
}

bool mapping::balanced() const { return hierarchy_.balanced() && output_list_.balanced() && stack_.balanced(); }

const source_note *mapping::source_of(const dtf_datatree &added) const
{
    return added.source_index == 0 || added.source_index > sources_.size() ? nullptr
                                                                           : &sources_[added.source_index - 1];
}

void mapping::note_fault(faultno code)
{
    if (own_fault_ == FAULT_SUCCESS)
        own_fault_ = code;
}

/* ------------------------------------------------------------------------------------------------------- the walk --
 */

void mapping::push_node(const dtf_datatree *node, std::uint32_t kind)
{
    if (!hierarchy_.push(node, kind))
        note_fault(fault_hierarchy_full);
}

void mapping::pop_node(const dtf_datatree *node)
{
    if (hierarchy_.pop(node))
        landing_->close_frames_below(hierarchy_.size(), withdraws_keyless());
}

faultno mapping::update_current_list(const char *schema_path)
{
    if (own_fault_ != FAULT_SUCCESS)
        return own_fault_;
    const parsed_path *const schema = paths_.find(schema_path);
    if (schema == nullptr || schema->relative || schema->closing_slash)
        return fault_bad_path;
    return landing_->open_frame(*schema, hierarchy_.size(), withdraws_keyless()) ? FAULT_SUCCESS : fault_stack_full;
}

faultno mapping::add_path(dtf_datatree &tree, const char *text, addition &what, dtf_datatree **created)
{
    const parsed_path *const path = paths_.find(text);
    if (path == nullptr)
        return fault_bad_path;
    if (path->relative)
        return add_to_request(tree, *path, what, created);
    if (&tree != &landing_->out())
        return fault_bad_path;
    if (what.new_list_entry)
        paths_.mark_list(*path);
    if (what.source != nullptr)
        what.source_index = note_source(*what.source);
    if (options_.way == direction::openconfig_to_native && is_edit())
        what.entry_operation = context_.list_node_op;
    what.empty_is_valueless = options_.way == direction::openconfig_to_native && !is_edit();
    const landed added = landing_->add(*path, what);
    if (created != nullptr)
        *created = added.node;
    return added.keyed_entry == nullptr ? FAULT_SUCCESS : register_instance(*added.keyed_entry, added.node->value);
}

/*
 * A child of a node of the request itself. The child array may be one that a reader made, or that a walker has parked
 * and put back in the meantime, so its room is not known: it moves with every addition. These are few (a list's keys).
 */
faultno mapping::add_to_request(dtf_datatree &node, const parsed_path &path, const addition &what,
                                dtf_datatree **created)
{
    if (path.segments.size() != 1)
        return fault_bad_path;
    arena &memory = options_.request_memory != nullptr ? *options_.request_memory : own_memory_;
    const char *const value = what.value == nullptr ? nullptr : memory.copy(what.value);
    dtf_datatree *child = find_child(node, path.text);
    if (child == nullptr) {
        const char *const tag = memory.copy(path.text);
        node.child_room = 0;
        child = &add_child(memory, node);
        node.child_room = 0;
        child->tag = tag;
        child->ns = what.ns;
    }
    if (value != nullptr) {
        child->value = value;
        child->flags |= DTF_FLAG_HAS_VALUE;
    }
    if (created != nullptr)
        *created = child;
    return FAULT_SUCCESS;
}

/* The number of the note on `source` as it is now; consecutive additions mostly name the same one. */
std::uint32_t mapping::note_source(const dtf_datatree &source)
{
    const bool is_explicit = (source.flags & DTF_FLAG_OP_SET) != 0;
    const bool known = &source == last_source_ && sources_.back().operation == source.operation &&
                       sources_.back().operation_is_explicit == is_explicit;
    if (!known) {
        std::string path = instance_path(hierarchy_);
        if (hierarchy_.top() != &source)
            path.append("/").append(source.tag == nullptr ? "?" : source.tag);
        sources_.push_back({std::move(path), source.operation, is_explicit});
        last_source_ = &source;
    }
    return static_cast<std::uint32_t>(sources_.size());
}

/* ------------------------------------------------------------------------------- requests for a whole list -------- */

/*
 * A native entry got its key while the request names no entry of the list that is being walked: the native entry stands
 * for one entry of that list, which the request gets as an instance. Such lists have a single key, which the native key
 * maps to.
 */
faultno mapping::register_instance(const entry_place &native, const char *native_key)
{
    const parsed_path *const path = landing_->current_list();
    if (options_.way != direction::openconfig_to_native || !options_.request_key || path == nullptr)
        return FAULT_SUCCESS;
    const list_schema *const list = path->segments.back().list;
    if (list == nullptr || list->keys.size() != 1 || current_entry_is_named(*list))
        return FAULT_SUCCESS;
    const dtf_datatree *const above = hierarchy_.top();
    const std::string key = options_.request_key(native_key);
    const request_instances::names names{path->segments.back().tag(), list->keys.front(),
                                         above == nullptr ? nullptr : above->ns,
                                         hierarchy_.top_is_list() ? above : nullptr};
    return instances_.add(names, key, native, enter_request_instance) ? FAULT_SUCCESS : fault_stack_full;
}

/* In an expansion the list's entry is not on the hierarchy: then the request has none. Else the walk stands at the
 * entry or below it. */
bool mapping::current_entry_is_named(const list_schema &list) const
{
    const dtf_datatree *const entry = hierarchy_.innermost_list();
    return entry != nullptr && value_of(find_child(*entry, list.keys.front())) != nullptr;
}

faultno mapping::enter_instance(const dtf_datatree *instance)
{
    const entry_place *const native = instances_.native_of(instance);
    if (native == nullptr)
        return FAULT_INVALID_ARGS;
    landing_->make_current(*native);
    return FAULT_SUCCESS;
}

void mapping::push_itree(const dtf_itree_entry &entry)
{
    if (!stack_.push(entry))
        note_fault(fault_stack_full);
}

/* ---------------------------------------------------------------------------------------------- error replies ----- */

void mapping::note_error_path()
{
    /* Nobody looks at the result of an expansion, so what fails in it is no failure of the request. */
    if (state_.expand_mode == 0)
        error_path_ = instance_path(hierarchy_);
}

faultno mapping::check_leafref(const char *container, const char *key_tag, const dtf_datatree &entry)
{
    const char *const key = value_of(find_child(entry, key_tag));
    const dtf_datatree *const holder = find_child(entry, container);
    const char *const target = holder == nullptr ? nullptr : value_of(find_child(*holder, key_tag));
    if (key == nullptr || target == nullptr || std::strcmp(key, target) == 0)
        return FAULT_SUCCESS;
    error_path_ = instance_path(hierarchy_).append("/").append(container).append("/").append(key_tag);
    return fault_leafref_mismatch;
}

void mapping::print(const dtf_datatree *tree, const char *label)
{
    if (dtf_debug_should_log(&context_.debug_filter, DTF_LEVEL_TRC) != 0)
        print_tree(log_, tree, label);
}

} // namespace framework
