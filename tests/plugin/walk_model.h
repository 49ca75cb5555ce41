/*
 * A walk over a request or a native tree told a second time, plainly, one step after the other, on the recording
 * double: the account that the plug-in's walkers are compared with.
 */
#pragma once
#include "reference.h"

namespace reference {

struct model {
    explicit model(recording::host &host) : h(host) {}

    faultno walk(id n, dtf_datatree *in)
    {
        say("TRC", n, "Start");
        const char kind_of = nodes[n].kind;
        const faultno rc = !is_request(n)   ? native(n, in)
                           : kind_of == 'c' ? container(n, in)
                           : kind_of == 'l' ? list(n, in)
                                            : leaf(n, in);
        say("TRC", n, "End");
        return rc;
    }
    faultno augment(const dtf_datatree *in)
    {
        return dtf_map_is_request_add(ctx, in) == 0 ? 0 : fail_with_tag(in->tag, FAULT_UNSUPPORTED_AUGMENT);
    }

    /* What a list walker has noted so far; shared by its passes and by all entries it walks. */
    struct notes {
        uint8_t keys = 0, valued = 0;
        bool empty_key = false, others = false, delete_started = false, put_back = false;
    };

    recording::host &h;
    dtf_req_ctx &r = h.state;
    const dtf_map_ctx ctx = &h.context;
    const uint32_t kind = h.request.data_input;
    const bool read = is_read(), keyed = is_keyed();

    static void say(const char *level, id n, const string &text) { report(level, function_name(n), text); }
    static void set_operation(dtf_datatree *n, uint32_t to) { n->operation = to, n->flags |= DTF_FLAG_OP_SET; }
    static void set_kind(dtf_datatree *n, uint32_t to) { n->node_kind = to, n->kind_flags |= 0x04; }
    static void mark_key(dtf_datatree *n) { n->is_key = 1, n->flags |= DTF_FLAG_KEY; }
    static bool valued(const dtf_datatree *n) { return (n->flags & DTF_FLAG_HAS_VALUE) != 0; }
    static void set_subtree(dtf_datatree *node, dtf_datatree *children, uint32_t count, bool attached)
    {
        node->children = children;
        node->child_count = count;
        node->flags = (node->flags & ~DTF_FLAG_HAS_SUBTREE) | (attached ? DTF_FLAG_HAS_SUBTREE : 0);
    }
    void record(dtf_datatree *in, uint32_t hierarchy_kind, uint32_t node_kind)
    {
        dtf_map_add_to_node_hierarchy(ctx, in, hierarchy_kind);
        set_kind(in, node_kind);
        r.filter_flags &= read ? 0x11111110 : 0xffffffff;
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
    static faultno fail_structure(id n, const char *text) { return say("ERR", n, text), FAULT_TREE_ERROR; }
    static bool is_foreign(const dtf_datatree *n) { return n->ns == nullptr || string(ns_of(top)) != n->ns; }
    /* A child the walker does not dispatch: unsupported in the own namespace, else for the augment handler. */
    faultno other_child(id n, const dtf_datatree *child)
    {
        if (is_foreign(child))
            return augment(child);
        const char *blank = nodes[n].kind == 'c' ? " " : "";
        say("ERR", n, "Unsupported tag `" + string(child->tag) + '`' + blank + "is specified in the request.");
        return read ? 0 : fail_with_tag(child->tag, FAULT_UNSUPPORTED_TAG);
    }

    faultno leaf(id n, dtf_datatree *in)
    {
        const faultno rc = hook(n, in);
        if (r.expand_mode == 1 || r.delete_walk != 0)
            return rc;
        const bool classified = read && n != name && n != lower && n != upper;
        set_kind(in, classified && valued(in) ? 6 : 1);
        if (classified)
            r.filter_flags |= valued(in) ? 0x10004 : 0x2;
        return rc;
    }

    faultno native(id n, dtf_datatree *in)
    {
        const facts &f = nodes[n];
        if (f.kind == 'f') {
            if ((in->flags & DTF_FLAG_ERROR_KIND) != 0 && in->error_kind == 5) {
                say("TRC", n, "got xpath error node ");
                r.req_flags |= 0x100;
            }
            return hook(n, in);
        }
        const bool is_entry = f.kind == 'l';
        const uint32_t count = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0 ? in->child_count : 0;
        if (count > 0 && in->children == nullptr)
            return fail_structure(n, "Failed to get subtrees!");
        if (is_entry && count == 0)
            say("ERR", n, "No keys specified with a list node.");
        dtf_map_add_to_node_hierarchy(ctx, in, is_entry ? DTF_HIER_LIST : DTF_HIER_CONTAINER);
        const faultno code = is_entry ? dtf_map_update_current_list_node(ctx, f.path) : 0;
        for (uint32_t i = 0; code == 0 && i < count; ++i)
            if (is_key(n, in->children[i]))
                mark_key(&in->children[i]);
        faultno rc = code != 0 ? code : hook(n, in);
        if (is_entry && code == 0 && rc == FAULT_SKIP_ENTRY)
            return dtf_map_remove_from_node_hierarchy(ctx, in), rc;
        const uint8_t before = r.output_list_len;
        if (is_entry)
            dtf_add_to_output_list_ctx(ctx, in, &h.out);
        const bool grew = before < r.output_list_len;
        for (uint32_t i = 0; rc == 0 && i < count; ++i)
            rc = native_child(n, &in->children[i]);
        dtf_map_remove_from_node_hierarchy(ctx, in);
        if (grew)
            dtf_remove_from_output_list_ctx(ctx, in, &h.out);
        return rc;
    }

    /* Operational data is walked for kind 10 alone; a container passes over entries that are skipped. */
    faultno native_child(id n, dtf_datatree *child)
    {
        if (child->tag == nullptr)
            return fail_structure(n, "Tag name is not available!");
        for (const id known : nodes[n].children)
            if (string(nodes[known].tag) == child->tag && (n >= interfaces || kind == 10)) {
                const faultno rc = walk(known, child);
                return nodes[known].kind == 'l' && rc == FAULT_SKIP_ENTRY ? 0 : rc;
            }
        if (child->ns != nullptr && string(ns_of(n)) == child->ns)
            say("TRC", n, string("Unsupported tag `") + child->tag + "`. Ignoring.");
        return 0;
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

    faultno container(id n, dtf_datatree *in)
    {
        // subtree, delete check, effective count
        const bool subtree = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0, is_state = n == state || n == channel_state;
        dtf_datatree *const children = subtree ? in->children : nullptr;
        const uint32_t count = subtree ? in->child_count : 0;
        if (children == nullptr && count != 0)
            return fail_structure(n, "Failed to get subtrees!");
        if (!is_state && r.expand_mode != 1 && count != 0 && r.delete_walk == 0 && deletes(in)) {
            say("TRC", n, "Delete request with subtree present");
            return FAULT_INVALID_ARGS;
        }
        const uint32_t wanted = r.expand_mode == 1 && (r.filter_flags & 1) != 0 ? 0 : count;
        // recorded; a replace begins
        if (r.expand_mode != 1)
            record(in, DTF_HIER_CONTAINER, 3);
        const bool replace = in->operation == 1;
        if (replace) {
            begin_replace(in);
            set_subtree(in, nullptr, 0, false);
        }
        uint32_t effective = replace ? 0 : wanted;
        faultno rc = 0;
        for (int pass = 0; pass < (replace ? 2 : 1); ++pass) {
            // hook and children
            rc = rc != 0 ? rc : hook(n, in);
            for (uint32_t i = 0; i < effective && rc == 0; ++i)
                rc = container_child(n, &children[i]);
            // sibling selection and expansion
            if ((r.filter_flags & 6) == 4)
                r.filter_flags = (r.filter_flags | 1) & ~6u;
            if ((effective == 0 || (r.filter_flags & 1) != 0) && (read || (!is_state && deletes(in))))
                expand_container(n, in);
            // end of a replace pass
            if (replace) {
                set_operation(in, 0);
                r.req_flags = (r.req_flags | 0x80) & ~0x40u;
                set_subtree(in, children, effective = wanted, true);
            }
        }
        if (replace)
            end_replace(in);
        if (r.expand_mode != 1)
            dtf_map_remove_from_node_hierarchy(ctx, in);
        return rc;
    }

    faultno container_child(id n, dtf_datatree *child)
    {
        if (child->tag == nullptr)
            return fail_structure(n, "Tag name is not available!");
        for (const id known : nodes[n].children)
            if (string(nodes[known].tag) == child->tag)
                return walk(known, child);
        return other_child(n, child);
    }

    void expand_container(id n, dtf_datatree *in)
    {
        const bool set = r.expand_mode != 1, switched = (n == top || n == config) && in->operation == 3;
        r.expand_mode = 1;
        if (switched)
            set_operation(in, 4);
        for (const id child : nodes[n].children)
            if (n == top || n == config || kind == 10)
                walk(child, in);
        if (switched)
            set_operation(in, 3);
        augment(in);
        r.expand_mode = set ? 0 : 1;
        r.filter_flags &= 0x11111110 & ~6u;
    }

    faultno list(id n, dtf_datatree *in)
    {
        const char *const path = nodes[n].path;
        // subtree; none at all
        const bool subtree = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0;
        const bool lost = subtree && in->children == nullptr && in->child_count != 0;
        if (lost && (n == monitor || !read))
            return fail_structure(n, "Failed to get subtrees!");
        const uint32_t count = subtree && !lost ? in->child_count : 0;
        if (n == monitor && count == 0)
            say("ERR", n, "No keys specified with a list node.");
        if (count == 0 && r.expand_mode != 1 && r.delete_walk == 0 && keyed)
            return fail_structure(n, "No keys specified with a list node.");
        // recorded, and the current list node
        if (r.expand_mode != 1)
            record(in, DTF_HIER_LIST, 4);
        faultno rc = dtf_map_update_current_list_node(ctx, path);
        // key scan
        notes seen;
        for (uint32_t i = 0; rc == 0 && i < count && r.expand_mode != 1 && r.delete_walk == 0; ++i) {
            dtf_datatree *const child = &in->children[i];
            if (!is_key(n, *child)) {
                seen.others = true;
                continue;
            }
            rc = keyed ? static_cast<faultno>(dtf_map_check_oc_leafref(ctx, path, "config", child->tag, in)) : 0;
            if (rc != 0) {
                say("ERR", n, "leafref value check fail");
                dtf_map_remove_from_node_hierarchy(ctx, in);
                return rc;
            }
            mark_key(child);
            ++seen.keys;
            seen.valued = static_cast<uint8_t>(seen.valued + valued(child));
            seen.empty_key = seen.empty_key || !valued(child);
        }
        // key check
        const bool pass_1_15 = seen.valued == 1 && seen.keys < 2;
        const bool pass_others = (seen.keys | seen.valued) <= 1 && (kind != 8 || seen.valued == 1);
        if (n == monitor && r.expand_mode != 1 && count != 0 && r.delete_walk == 0 &&
            !(kind == 1 || kind == 15 ? pass_1_15 : pass_others)) {
            say("ERR", n, "List key node error.");
            rc = fail_with_tag("name", FAULT_LIST_KEY_ERROR);
        }
        // the passes
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

    static uint32_t children_held(const dtf_datatree &entry)
    {
        return (entry.flags & DTF_FLAG_HAS_SUBTREE) != 0 && entry.children != nullptr ? entry.child_count : 0;
    }

    void list_pass(id n, dtf_datatree *in, const char *path, uint32_t count, notes &seen,
                   std::optional<dtf_itree_entry> &peeked, faultno &rc)
    {
        if (rc == 0) { // the hook and what it pushed
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
                ctx->list_node_op = (in->flags & DTF_FLAG_OP_SET) != 0 ? in->operation : 0;
        }
        // the entries
        const bool entries = peeked && peeked->children != nullptr && peeked->count != 0;
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
            list_iteration(n, in, entry, entries ? children_held(*entry) : count, seen, rc);
            if (recorded)
                dtf_map_remove_from_node_hierarchy(ctx, entry);
        }
        // the keys of a read that left them out
        if (rc != 0 || !read || r.expand_mode == 1 || !seen.others || seen.keys != 0)
            return;
        for (const string &tag : nodes[n].keys) {
            dtf_datatree *created = nullptr;
            rc = dtf_map_datatree_add_path_flagged(ctx, in, tag.c_str(), in->ns, nullptr, nullptr, &created, 0, 0);
            if (created != nullptr)
                mark_key(created);
        }
    }

    faultno list_hook(id n, dtf_datatree *in, uint32_t count, notes &seen)
    {
        const bool by_key = deletes(in) && !seen.others && seen.keys != 0 && r.delete_walk == 0;
        const bool whole = !by_key && count == 0 && deletes(in) && r.delete_walk == 0 && r.expand_mode == 1;
        seen.delete_started = seen.delete_started || by_key || whole;
        seen.put_back = seen.put_back || whole;
        r.delete_walk = by_key ? 2 : whole ? 1 : r.delete_walk;
        const faultno rc = hook(n, in);
        if (by_key || (whole && rc == FAULT_SKIP_ENTRY))
            r.delete_walk = 0;
        return rc;
    }

    void list_iteration(id n, dtf_datatree *in, dtf_datatree *entry, uint32_t count, notes &seen, faultno &rc)
    {
        for (uint32_t i = 0; i < count && rc == 0; ++i)
            rc = list_child(n, &entry->children[i], seen);
        const bool set_expand = r.expand_mode != 1;
        // an entry that is named by its keys alone
        if (rc == 0 && !seen.empty_key && !seen.others && seen.keys != 0 && (read || deletes(in))) {
            const bool set_delete = seen.delete_started && r.delete_walk == 0;
            const uint32_t parked = children_held(*entry);
            dtf_datatree *const children = (entry->flags & DTF_FLAG_HAS_SUBTREE) != 0 ? entry->children : nullptr;
            r.expand_mode = 1;
            r.delete_walk = set_delete ? 1 : r.delete_walk;
            if (deletes(in))
                set_operation(entry, 4);
            dtf_map_util_itree_stack_push(ctx, children, parked, nullptr);
            set_subtree(entry, nullptr, 0, false);
            for (const id child : nodes[n].children)
                if (nodes[child].kind != 'f' && (kind == 10 || child == config || child == channels))
                    walk(child, entry);
            augment(entry);
            r.expand_mode = set_expand ? 0 : 1;
            r.delete_walk = set_delete ? 0 : r.delete_walk;
            set_subtree(entry, children, parked, true);
            dtf_map_util_itree_stack_pop(ctx);
        }
        // an entry without children
        if (count == 0 && (read || (n == monitor && deletes(in)))) {
            const bool switched = n == monitor && in->operation == 3;
            const bool set_delete = n == monitor && deletes(in) && r.delete_walk == 0;
            r.expand_mode = 1;
            r.delete_walk = set_delete ? 1 : r.delete_walk;
            if (switched)
                set_operation(in, 4);
            for (const id child : n == monitor ? std::vector{name, config, channels} : nodes[channel].children)
                if (n == monitor || kind == 10)
                    walk(child, in);
            if (switched)
                set_operation(in, 3);
            if (n == monitor && kind == 10)
                walk(state, in);
            augment(in);
            r.expand_mode = set_expand ? 0 : 1;
            r.delete_walk = set_delete || seen.put_back ? 0 : r.delete_walk;
        }
    }

    faultno list_child(id n, dtf_datatree *child, notes &seen)
    {
        if (child->tag == nullptr)
            return fail_structure(n, "Tag name is not available!");
        const string tag = child->tag;
        if (is_key(n, *child) && (n == monitor || kind == 10)) {
            if (n == monitor && keyed && !valued(child)) {
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
            seen.keys = static_cast<uint8_t>(seen.keys + valued(child));
            return rc;
        }
        if ((r.req_flags & 0x40) != 0) // removal pass of a replace
            return 0;
        for (const id known : nodes[n].children)
            if (nodes[known].kind != 'f' && tag == nodes[known].tag &&
                (kind == 10 || known == config || known == channels)) {
                seen.others = true;
                return walk(known, child);
            }
        seen.others = seen.others || is_foreign(child);
        return other_child(n, child);
    }
};

} // namespace reference
