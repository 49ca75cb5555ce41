/*
 * A walk over an OpenConfig request told a second time, plainly, one step after the other, on the recording double: the
 * account that the plug-in's walkers are compared with. Hooks are the plug-in's own; tables of their own test those.
 */
#pragma once
#include "recording_host.h"
#include "request_nodes.h"

namespace request {

#define SHORT_NAME(short_name, ...) short_name,
enum node_id { REQUEST_CONTAINERS(SHORT_NAME) REQUEST_LISTS(SHORT_NAME) REQUEST_LEAVES(SHORT_NAME) node_ids };
#undef SHORT_NAME

using plain_function = faultno (*)(dtf_map_ctx, const dtf_datatree *, dtf_datatree *);
using counting_function = faultno (*)(dtf_map_ctx, const dtf_datatree *, unsigned, dtf_datatree *);

struct node_facts {
    std::string function, tag;
    std::vector<node_id> children;
    plain_function walk, hook, augment;
    counting_function count_hook;
};

#define PREFIX "ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_"
#define CONTAINER(short_name, path, tag, ...)                                                                          \
    {PREFIX #path,                                                                                                     \
     tag,                                                                                                              \
     {__VA_ARGS__},                                                                                                    \
     REQUEST_FUNCTION(lvla_##path),                                                                                    \
     nullptr,                                                                                                          \
     REQUEST_FUNCTION(lvla_##path##_parse_augments),                                                                   \
     REQUEST_FUNCTION(cont_lvla_##path)},
#define LIST(short_name, path, tag, ...)                                                                               \
    {PREFIX #path,                                                                                                     \
     tag,                                                                                                              \
     {__VA_ARGS__},                                                                                                    \
     REQUEST_FUNCTION(lvla_##path),                                                                                    \
     REQUEST_FUNCTION(list_lvla_##path),                                                                               \
     REQUEST_FUNCTION(lvla_##path##_parse_augments),                                                                   \
     nullptr},
#define LEAF(short_name, path, tag)                                                                                    \
    {PREFIX #path, tag, {}, REQUEST_FUNCTION(lvla_##path), REQUEST_FUNCTION(leaf_lvla_##path), nullptr, nullptr},
inline const std::vector<node_facts> all_nodes = {REQUEST_CONTAINERS(CONTAINER) REQUEST_LISTS(LIST)
                                                      REQUEST_LEAVES(LEAF)};
#undef CONTAINER
#undef LIST
#undef LEAF
#undef PREFIX

inline bool is_list_key(node_id n) { return n == name || n == lower || n == upper; }

class model
{
  public:
    explicit model(recording::host &host) : h(host) {}

    faultno walk(node_id n, dtf_datatree *in)
    {
        say("TRC", n, "Start");
        const faultno rc = all_nodes[n].count_hook != nullptr ? container(n, in)
                           : all_nodes[n].augment != nullptr  ? list(n, in)
                                                              : leaf(n, in);
        say("TRC", n, "End");
        return rc;
    }

  private:
    recording::host &h;
    dtf_req_ctx &r = h.state;
    const dtf_map_ctx ctx = &h.context;
    const uint32_t kind = h.request.data_input;
    const bool read = kind == 0 || kind == 10, keyed = kind == 1 || kind == 8 || kind == 15;

    void say(const std::string &level, node_id n, const std::string &text)
    {
        h.note(level + ' ' + all_nodes[n].function + ": " + text);
    }
    static bool deletes(const dtf_datatree *node) { return node->operation == 3 || node->operation == 4; }
    static void set_operation(dtf_datatree *node, uint32_t operation)
    {
        node->operation = operation;
        node->flags |= DTF_FLAG_OP_SET;
    }
    static void set_kind(dtf_datatree *node, uint32_t node_kind)
    {
        node->node_kind = node_kind;
        node->kind_flags |= 0x04;
    }
    static void mark_key(dtf_datatree *node)
    {
        node->is_key = 1;
        node->flags |= DTF_FLAG_KEY;
    }
    static void detach(dtf_datatree *node)
    {
        node->children = nullptr;
        node->child_count = 0;
        node->flags &= ~DTF_FLAG_HAS_SUBTREE;
    }
    static void attach(dtf_datatree *node, dtf_datatree *children, uint32_t count)
    {
        node->children = children;
        node->child_count = count;
        node->flags |= DTF_FLAG_HAS_SUBTREE;
    }
    faultno fail_with_tag(const char *tag, faultno code)
    {
        if (r.error_tag != nullptr)
            plat_named_free(r.error_tag);
        r.error_tag = nullptr;
        r.error_tag = dtf_strdup(tag, "DTF MAP");
        dtf_oc_error_path(ctx);
        return code;
    }
    faultno augment(const dtf_datatree *in)
    {
        return dtf_map_is_request_add(ctx, in) == 0 ? 0 : fail_with_tag(in->tag, FAULT_UNSUPPORTED_AUGMENT);
    }
    static bool own(const dtf_datatree *child)
    {
        return child->ns != nullptr && std::string(CHMON_NS_OPENCONFIG_CHANNEL_MONITOR) == child->ns;
    }
    faultno unsupported(node_id n, const dtf_datatree *child, const char *blank)
    {
        say("ERR", n, "Unsupported tag `" + std::string(child->tag) + '`' + blank + "is specified in the request.");
        return read ? 0 : fail_with_tag(child->tag, FAULT_UNSUPPORTED_TAG);
    }
    faultno no_tag(node_id n)
    {
        say("ERR", n, "Tag name is not available!");
        return FAULT_TREE_ERROR;
    }

    faultno leaf(node_id n, dtf_datatree *in)
    {
        const faultno rc = all_nodes[n].hook(ctx, in, &h.out);
        if (r.expand_mode == 1 || r.delete_walk != 0)
            return rc;
        set_kind(in, 1);
        if (read && !is_list_key(n)) {
            const bool content_match = (in->flags & DTF_FLAG_HAS_VALUE) != 0;
            r.filter_flags |= content_match ? 0x10004u : 0x2u;
            in->node_kind = content_match ? 6 : 1;
        }
        return rc;
    }

    faultno container(node_id n, dtf_datatree *in)
    {
        // 1 to 3: subtree, delete check, effective count
        const bool subtree = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0, is_state = n == state || n == channel_state;
        dtf_datatree *const children = subtree ? in->children : nullptr;
        const uint32_t count = subtree ? in->child_count : 0;
        if (children == nullptr && count != 0)
            return say("ERR", n, "Failed to get subtrees!"), FAULT_TREE_ERROR;
        if (!is_state && r.expand_mode != 1 && count != 0 && r.delete_walk == 0 && deletes(in))
            return say("TRC", n, "Delete request with subtree present"), FAULT_INVALID_ARGS;
        const uint32_t wanted = r.expand_mode == 1 && (r.filter_flags & 1) != 0 ? 0 : count;
        // 4
        if (r.expand_mode != 1) {
            dtf_map_add_to_node_hierarchy(ctx, in, DTF_HIER_CONTAINER);
            set_kind(in, 3);
            r.filter_flags &= read ? 0x11111110 : 0xffffffff;
        }
        // 5
        const bool replace = in->operation == 1;
        if (replace) {
            begin_replace(in);
            detach(in);
        }
        uint32_t effective = replace ? 0 : wanted;
        faultno rc = 0;
        for (int pass = 0; pass < (replace ? 2 : 1); ++pass) {
            // 6
            if (rc == 0)
                rc = all_nodes[n].count_hook(ctx, in, effective, &h.out);
            for (uint32_t i = 0; i < effective && rc == 0; ++i)
                rc = container_child(n, &children[i]);
            // 7
            if ((r.filter_flags & 6) == 4)
                r.filter_flags = (r.filter_flags | 1) & ~6u;
            // 8
            if ((effective == 0 || (r.filter_flags & 1) != 0) && (read || (!is_state && deletes(in)))) {
                expand_container(n, in);
                r.filter_flags &= 0x11111110;
            }
            // 9
            if (replace) {
                set_operation(in, 0);
                r.req_flags = (r.req_flags | 0x80) & ~0x40u;
                attach(in, children, effective = wanted);
            }
        }
        // 10, 11
        if (replace)
            end_replace(in);
        if (r.expand_mode != 1)
            dtf_map_remove_from_node_hierarchy(ctx, in);
        return rc;
    }

    faultno container_child(node_id n, dtf_datatree *child)
    {
        if (child->tag == nullptr)
            return no_tag(n);
        for (const node_id known : all_nodes[n].children)
            if (all_nodes[known].tag == child->tag)
                return walk(known, child);
        return own(child) ? unsupported(n, child, " ") : augment(child);
    }

    void expand_container(node_id n, dtf_datatree *in)
    {
        const bool set = r.expand_mode != 1, switched = (n == top || n == config) && deletes(in) && in->operation == 3;
        r.expand_mode = 1;
        if (switched)
            set_operation(in, 4);
        if (n == top || n == config || kind == 10)
            for (const node_id child : all_nodes[n].children)
                walk(child, in);
        if (switched)
            set_operation(in, 3);
        augment(in);
        if (set)
            r.expand_mode = 0;
    }

    void begin_replace(dtf_datatree *in)
    {
        set_operation(in, 4);
        r.req_flags |= 0x40;
        r.replace_pending = 1;
    }
    void end_replace(dtf_datatree *in)
    {
        r.req_flags &= ~0xc0u;
        if (r.replace_pending == 1)
            set_operation(in, 1);
        r.replace_pending = 0;
    }

    /* What a list walker has noted so far; shared by its passes and by all entries it walks. */
    struct notes {
        uint8_t keys = 0, valued = 0;
        bool empty_key = false, others = false, delete_started = false, put_back = false;
    };

    faultno list(node_id n, dtf_datatree *in)
    {
        const char *const path =
            n == monitor ? "/channel-monitors/channel-monitor" : "/channel-monitors/channel-monitor/channels/channel";
        // 1
        const bool subtree = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0;
        const bool lost = subtree && in->children == nullptr && in->child_count != 0;
        if (lost && (n == monitor || !read))
            return say("ERR", n, "Failed to get subtrees!"), FAULT_TREE_ERROR;
        const uint32_t count = subtree && !lost ? in->child_count : 0;
        // 2
        const bool needs_keys = count == 0 && r.expand_mode != 1 && r.delete_walk == 0 && keyed;
        if (n == monitor && count == 0)
            say("ERR", n, "No keys specified with a list node.");
        if (needs_keys)
            return say("ERR", n, "No keys specified with a list node."), FAULT_TREE_ERROR;
        // 3, 4
        if (r.expand_mode != 1) {
            dtf_map_add_to_node_hierarchy(ctx, in, DTF_HIER_LIST);
            set_kind(in, 4);
            r.filter_flags &= read ? 0x11111110 : 0xffffffff;
        }
        faultno rc = dtf_map_update_current_list_node(ctx, path);
        // 5
        notes seen;
        for (uint32_t i = 0; rc == 0 && i < count && r.expand_mode != 1 && r.delete_walk == 0; ++i) {
            dtf_datatree *const child = &in->children[i];
            if (!is_key_tag(n, child)) {
                seen.others = true;
                continue;
            }
            rc = keyed ? static_cast<faultno>(dtf_map_check_oc_leafref(ctx, path, "config", child->tag, in)) : 0;
            if (rc != 0) {
                say("ERR", n, "leafref value check fail");
                dtf_map_remove_from_node_hierarchy(ctx, in);
                return rc;
            }
            ++seen.keys;
            mark_key(child);
            const bool valued = (child->flags & DTF_FLAG_HAS_VALUE) != 0;
            seen.valued = static_cast<uint8_t>(seen.valued + valued);
            seen.empty_key = seen.empty_key || !valued;
        }
        // 6
        const bool one_valued = seen.valued == 1;
        const bool keys_pass = kind == 1 || kind == 15 ? one_valued && seen.keys < 2
                                                       : (seen.keys | seen.valued) <= 1 && (kind != 8 || one_valued);
        if (n == monitor && r.expand_mode != 1 && count != 0 && r.delete_walk == 0 && !keys_pass) {
            say("ERR", n, "List key node error.");
            rc = fail_with_tag("name", FAULT_LIST_KEY_ERROR);
        }
        // 7, 8
        const bool replace = in->operation == 1;
        if (replace) {
            begin_replace(in);
            seen.empty_key = seen.others = false;
        }
        std::optional<dtf_itree_entry> peeked;
        for (int pass = 0; pass < (replace ? 2 : 1); ++pass) {
            list_pass(n, in, path, count, seen, peeked, rc);
            if (replace) {
                set_operation(in, 0);
                r.req_flags &= ~0x40u;
            }
        }
        // 10 to 12
        if (replace)
            end_replace(in);
        if (seen.put_back)
            r.delete_walk = 0;
        if (peeked && peeked->children != nullptr)
            dtf_map_util_itree_stack_pop(ctx);
        if (r.expand_mode != 1)
            dtf_map_remove_from_node_hierarchy(ctx, in);
        return rc;
    }

    static bool is_key_tag(node_id list, const dtf_datatree *child)
    {
        const std::string tag = child->tag == nullptr ? "" : child->tag;
        return list == monitor ? tag == "name" : tag == "lower-frequency" || tag == "upper-frequency";
    }

    void list_pass(node_id n, dtf_datatree *in, const char *path, uint32_t count, notes &seen,
                   std::optional<dtf_itree_entry> &peeked, faultno &rc)
    {
        if (rc == 0) { // a to c
            const auto depth = static_cast<uint16_t>(dtf_map_util_itree_stack_size(ctx));
            rc = list_hook(n, in, count, seen);
            if (rc == FAULT_SKIP_ENTRY) {
                rc = 0;
                return;
            }
            if (static_cast<uint16_t>(dtf_map_util_itree_stack_size(ctx)) > depth) {
                dtf_itree_entry *entry = nullptr;
                dtf_map_util_itree_stack_peak(ctx, &entry);
                peeked = *entry;
            }
            if (rc == 0)
                h.context.list_node_op = (in->flags & DTF_FLAG_OP_SET) != 0 ? in->operation : 0;
        }
        // d
        const bool entries = peeked && peeked->count != 0;
        for (uint32_t i = 0; i < (entries ? peeked->count : 1); ++i) {
            dtf_datatree *const entry = entries ? &peeked->children[i] : in;
            const bool recorded = i > 0 && rc == 0, called = entries && peeked->callback != nullptr && rc == 0;
            if (recorded) {
                dtf_map_add_to_node_hierarchy(ctx, entry, DTF_HIER_LIST);
                rc = dtf_map_update_current_list_node(ctx, path);
            }
            if (called) {
                if (deletes(in))
                    set_operation(entry, 4);
                peeked->callback(ctx, entry, &h.out, 0);
            }
            const uint32_t of_entry = (entry->flags & DTF_FLAG_HAS_SUBTREE) != 0 ? entry->child_count : 0;
            list_iteration(n, in, entry, entries ? of_entry : count, seen, rc);
            if (recorded)
                dtf_map_remove_from_node_hierarchy(ctx, entry);
        }
        // e
        if (rc == 0 && read && r.expand_mode != 1 && seen.others && seen.keys == 0)
            for (const char *tag :
                 n == monitor ? std::vector{"name"} : std::vector{"lower-frequency", "upper-frequency"}) {
                dtf_datatree *created = nullptr;
                rc = dtf_map_datatree_add_path_flagged(ctx, in, tag, in->ns, nullptr, nullptr, &created, 0, 0);
                if (created != nullptr)
                    mark_key(created);
            }
    }

    faultno list_hook(node_id n, dtf_datatree *in, uint32_t count, notes &seen)
    {
        const auto hook = all_nodes[n].hook;
        faultno rc;
        if (deletes(in) && !seen.others && seen.keys != 0 && r.delete_walk == 0) {
            seen.delete_started = true;
            r.delete_walk = 2;
            rc = hook(ctx, in, &h.out);
            r.delete_walk = 0;
        } else if (count == 0 && deletes(in) && r.delete_walk == 0 && r.expand_mode == 1) {
            seen.delete_started = seen.put_back = true;
            r.delete_walk = 1;
            rc = hook(ctx, in, &h.out);
            if (rc == FAULT_SKIP_ENTRY)
                r.delete_walk = 0;
        } else {
            rc = hook(ctx, in, &h.out);
        }
        return rc;
    }

    void list_iteration(node_id n, dtf_datatree *in, dtf_datatree *entry, uint32_t count, notes &seen, faultno &rc)
    {
        for (uint32_t i = 0; i < count && rc == 0; ++i)
            rc = list_child(n, &entry->children[i], seen);
        if (rc == 0 && !seen.empty_key && !seen.others && seen.keys != 0 && (read || deletes(in))) {
            const bool set_expand = r.expand_mode != 1, set_delete = seen.delete_started && r.delete_walk == 0;
            r.expand_mode = 1;
            r.delete_walk = set_delete ? 1 : r.delete_walk;
            if (deletes(in))
                set_operation(entry, 4);
            dtf_datatree *const children = entry->children;
            const uint32_t parked = entry->child_count;
            dtf_map_util_itree_stack_push(ctx, children, parked, nullptr);
            detach(entry);
            expand_below(n, entry);
            augment(entry);
            r.expand_mode = set_expand ? 0 : r.expand_mode;
            r.delete_walk = set_delete ? 0 : r.delete_walk;
            attach(entry, children, parked);
            dtf_map_util_itree_stack_pop(ctx);
        }
        if (count == 0 && (read || (n == monitor && deletes(in)))) {
            const bool set_expand = r.expand_mode != 1, monitor_delete = n == monitor && deletes(in);
            const bool set_delete = monitor_delete && r.delete_walk == 0,
                       switched = monitor_delete && in->operation == 3;
            r.expand_mode = 1;
            if (switched)
                set_operation(in, 4);
            r.delete_walk = set_delete ? 1 : r.delete_walk;
            expand_without_children(n, in, switched);
            augment(in);
            r.expand_mode = set_expand ? 0 : r.expand_mode;
            if (set_delete || seen.put_back)
                r.delete_walk = 0;
        }
    }

    void expand_below(node_id n, dtf_datatree *node)
    {
        if (n == monitor)
            walk(config, node);
        if (kind == 10)
            walk(n == monitor ? state : channel_state, node);
        if (n == monitor)
            walk(channels, node);
    }

    void expand_without_children(node_id n, dtf_datatree *in, bool switched)
    {
        if (n == channel) {
            for (const node_id child : {lower, upper, channel_state})
                if (kind == 10)
                    walk(child, in);
            return;
        }
        for (const node_id child : {name, config, channels})
            walk(child, in);
        if (switched)
            set_operation(in, 3);
        if (kind == 10)
            walk(state, in);
    }

    faultno list_child(node_id n, dtf_datatree *child, notes &seen)
    {
        if (child->tag == nullptr)
            return no_tag(n);
        const std::string tag = child->tag;
        const bool removal = (r.req_flags & 0x40) != 0, valued = (child->flags & DTF_FLAG_HAS_VALUE) != 0;
        if (is_key_tag(n, child) && (n == monitor || kind == 10)) {
            if (n == monitor && keyed && !valued) {
                say("ERR", n, "Empty list key specified.");
                return fail_with_tag(child->tag, FAULT_LIST_KEY_ERROR);
            }
            if (n == monitor && deletes(child)) {
                say("ERR", n, "The key node should not have delete operation.");
                dtf_oc_error_path(ctx);
                return FAULT_KEY_DELETE;
            }
            const faultno rc = walk(n == monitor ? name : tag == "lower-frequency" ? lower : upper, child);
            mark_key(child);
            seen.keys = static_cast<uint8_t>(seen.keys + valued);
            return rc;
        }
        if (removal)
            return 0;
        for (const node_id known : all_nodes[n].children)
            if (!is_list_key(known) && all_nodes[known].tag == tag &&
                (kind == 10 || known == config || known == channels)) {
                seen.others = true;
                return walk(known, child);
            }
        if (own(child))
            return unsupported(n, child, "");
        seen.others = true;
        return augment(child);
    }
};

} // namespace request
