/*
 * One walk of a plug-in over one tree: the mapping context it is given, the state behind the operations it calls, and
 * what is known when it is over.
 */
#ifndef FRAMEWORK_MAPPING_H
#define FRAMEWORK_MAPPING_H

#include "arena.h"
#include "dtf.h"
#include "hierarchy.h"
#include "itree_stack.h"
#include "landing.h"
#include "path_table.h"
#include "request_instances.h"
#include "sinks.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace framework {

/* A top walker of a plug-in; any other function of that form can be run as well. */
using walker = faultno (*)(dtf_map_ctx ctx, const dtf_datatree *in, dtf_datatree *out);

enum class direction { native_to_openconfig, openconfig_to_native };

struct mapping_options {
    direction way = direction::native_to_openconfig;

    /* The request descriptor (dtf_request). */
    std::uint32_t request_kind = 10;
    std::uint32_t option_bits = 0;
    std::uint32_t scope = 0;

    /* Native to OpenConfig: entries of inner lists are kept packed (packed_entries.h). */
    bool packs_entries = false;

    /* Debug log: what is wanted, and where it goes; null drops it. The stream must outlive the mapping. */
    log_level log = log_level::off;
    std::ostream *log_stream = nullptr;

    /* Trace buffer: whether reports go there, and how many of the last ones are kept. */
    bool trace = false;
    std::size_t trace_lines = 4096;

    /*
     * Where nodes added to a request's own tree (its key leaves) live: the memory of that tree. Null: the mapping's
     * own, and then that tree must not be used once the mapping is gone.
     */
    arena *request_memory = nullptr;

    /*
     * The request key of the entry that a native list key names (a controller's monitor, say). Without it, a request
     * for a whole list gets its native entries but none of them is filled in.
     */
    std::function<std::string(std::string_view native_key)> request_key = {};
};

/* The input node that an added node stands for, as it was when the node was added. */
struct source_note {
    /* Instance path with keys. */
    std::string path;
    std::uint32_t operation = 0;
    bool operation_is_explicit = false;
};

class mapping
{
  public:
    /* The output tree's nodes are made in `output_memory`, which must outlive that tree. */
    mapping(mapping_options options, arena &output_memory);
    mapping(const mapping &) = delete;
    mapping &operator=(const mapping &) = delete;
    ~mapping();

    /*
     * Walks `in` and adds what it maps to below `out`, a root without a tag. Once per mapping. The plug-in marks nodes
     * of `in` in place, and may add key leaves to it. Returns result().
     */
    faultno run(walker top, const dtf_datatree &in, dtf_datatree &out);

    /* The walker's result, or the framework's own fault where the walker did not see it. */
    faultno result() const { return result_; }

    /* For the error reply, set only when the result is a fault: the path of the failure, and the tag that caused it. */
    const std::string &error_path() const { return error_path_; }
    const std::string &error_tag() const { return error_tag_; }

    /* Whether every push of the walk was popped: node hierarchy, output list and instance-tree stack. */
    bool balanced() const;

    /* The source of a node of the output; null where the plug-in named none. */
    const source_note *source_of(const dtf_datatree &added) const;

    /* The request entries that stand for a whole list, each with its key and what the request asks of the list, in the
     * order of their native entries. */
    std::vector<const dtf_datatree *> instances() const { return instances_.all(); }

    const trace_ring &trace() const { return trace_; }

    /* ------------------------------------------------------------------ behind the operations of dtf.h ------------ */

    /* The mapping that made the context. Null or another framework's context is a programming error. */
    static mapping &of(dtf_map_ctx ctx) { return *static_cast<bound_context *>(ctx)->owner; }

    void push_node(const dtf_datatree *node, std::uint32_t kind);
    void pop_node(const dtf_datatree *node);
    faultno update_current_list(const char *schema_path);
    faultno add_path(dtf_datatree &tree, const char *path, addition &what, dtf_datatree **created);
    /* Adds a new list entry, or a node below one, in packed form. False, and nothing done, where that cannot be. */
    bool add_packed(const dtf_datatree &tree, const char *path, const char *ns, const char *value, bool is_entry)
    {
        if (!options_.packs_entries || &tree != &landing_->out())
            return false;
        const parsed_path *const parsed = paths_.find(path);
        if (parsed == nullptr)
            return false;
        return is_entry ? landing_->add_packed_entry(*parsed, ns) : landing_->add_packed_value(*parsed, ns, value);
    }
    void push_itree(const dtf_itree_entry &entry);
    void note_error_path();
    faultno check_leafref(const char *container, const char *key_tag, const dtf_datatree &entry);
    faultno enter_instance(const dtf_datatree *instance);
    bool is_edit() const { return request_.data_input != 0 && request_.data_input != 10; }
    void print(const dtf_datatree *tree, const char *label);

    output_list &entries() { return output_list_; }
    itree_stack &stack() { return stack_; }

    /* Keeps a fault that the plug-in is not told of; the first one counts. */
    void note_fault(faultno code);

  private:
    /* The context a plug-in gets; being the base, it leads back to the mapping. */
    struct bound_context : dtf_map_context {
        mapping *owner;
    };

    bool withdraws_keyless() const { return options_.way == direction::native_to_openconfig; }
    faultno add_to_request(dtf_datatree &node, const parsed_path &path, const addition &what, dtf_datatree **created);
    faultno register_instance(const entry_place &native, const char *native_key);
    bool current_entry_is_named(const list_schema &list) const;
    std::uint32_t note_source(const dtf_datatree &source);
    void finish(faultno walked);

    mapping_options options_;
    arena &output_memory_;
    arena own_memory_;
    dtf_request request_{};
    dtf_req_ctx state_{};
    bound_context context_{};
    debug_log log_;
    trace_ring trace_;
    path_table paths_;
    node_hierarchy hierarchy_;
    output_list output_list_;
    itree_stack stack_;
    request_instances instances_;
    /* There from run() on. */
    std::unique_ptr<landing> landing_;
    std::vector<source_note> sources_;
    const dtf_datatree *last_source_ = nullptr;
    faultno result_ = FAULT_SUCCESS;
    faultno own_fault_ = FAULT_SUCCESS;
    std::string error_path_;
    std::string error_tag_;
};

} // namespace framework

#endif
