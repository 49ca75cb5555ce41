/*
 * The contract between a data-tree mapping framework and the mapping plug-ins it loads: the records both sides read,
 * the flags and result codes, and the framework operations a plug-in calls.
 *
 * Ownership, for everything below unless a declaration says otherwise: the context, the request state, both trees and
 * every node belong to the framework and live for one request. A plug-in allocates and frees no node; it adds nodes
 * through dtf_map_datatree_add_path_flagged() and changes only the node fields marked "plug-in writes".
 *
 * Threads: a context, its request state and its trees are used by one thread at a time. Nothing here locks.
 *
 * Compiles alone as C11 and as C++20.
 */
#ifndef DTF_H
#define DTF_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define DTF_PRINTF_LIKE(format_index, first_argument) __attribute__((format(printf, format_index, first_argument)))
#else
#define DTF_PRINTF_LIKE(format_index, first_argument)
#endif

/* ------------------------------------------------------------------------------------------------ result codes -- */

/*
 * Result code of every operation: 0 is success, everything else a fault whose text fault_strerror() gives. The first
 * fault ends a walk and travels back to the framework unchanged, FAULT_SKIP_ENTRY of a native list entry excepted.
 */
typedef uint32_t faultno;

#define FAULT_SUCCESS 0u
/* A required argument is null; also a delete request on a container that still has a subtree. */
#define FAULT_INVALID_ARGS 0xaaf2a000u
/* Malformed input tree: no child array although child_count is nonzero, a child without a tag, a list entry without
 * its keys in a request that needs them. */
#define FAULT_TREE_ERROR 0xaaf29e00u
/* An edit request holds an element of the model's own namespace that the mapping does not know. */
#define FAULT_UNSUPPORTED_TAG 0xaaf2ee00u
/* A list key of a request is missing, empty or given twice. */
#define FAULT_LIST_KEY_ERROR 0xaaf2f000u
/* A list key leaf carries a delete operation. */
#define FAULT_KEY_DELETE 0xaaf2f200u
/* The current list entry does not map and is dropped; the walk over its siblings goes on. */
#define FAULT_SKIP_ENTRY 0xaaf2f600u
/* A request adds a node of a foreign namespace below a node of the mapping. */
#define FAULT_UNSUPPORTED_AUGMENT 0xaaf2f800u

/* -------------------------------------------------------------------------------------------------- tree nodes -- */

/* dtf_datatree.flags */
/* The node takes part in path searches; without it, it is skipped together with everything below it. */
#define DTF_FLAG_VALID 0x001u
/* The node carries a value. */
#define DTF_FLAG_HAS_VALUE 0x002u
/* `operation` was given explicitly. The plug-in sets it whenever it writes `operation`. */
#define DTF_FLAG_OP_SET 0x010u
/* `children` and `child_count` hold; when clear the node has no children, whatever `child_count` says. */
#define DTF_FLAG_HAS_SUBTREE 0x040u
/* The node is a list key leaf; set together with `is_key`. */
#define DTF_FLAG_KEY 0x200u
/* `error_kind` holds. */
#define DTF_FLAG_ERROR_KIND 0x800u

/*
 * One node of a data tree. The children of a node are one contiguous array of nodes, so the i-th child is
 * children[i]; an addition below the same parent may move that array, and then every pointer into it is void.
 */
struct dtf_datatree {
    /* Element name without prefix, NUL-terminated; null only in a malformed tree. */
    const char *tag;
    /* Leaf value as text, NUL-terminated; null where the node has none. */
    const char *value;
    /* Namespace URI of the element's YANG module, NUL-terminated; may be null. */
    const char *ns;
    /* Edit operation of a request node, in the order of the NETCONF edit operations (RFC 6241, 7.2): 0 merge,
     * 1 replace, 2 create, 3 delete, 4 remove. Plug-in writes 0, 1, 3 and 4. */
    uint32_t operation;
    /* Which source node an added node stands for, as the framework numbers them; 0 none. The framework's own. */
    uint32_t source_index;
    /* First element of the child array; holds when DTF_FLAG_HAS_SUBTREE is set. Plug-in writes it while it parks a
     * subtree, and puts it back. */
    struct dtf_datatree *children;
    /* Number of elements in `children`. Plug-in writes it together with `children`. */
    uint32_t child_count;
    /* Schema kind that the request walkers assign: 1 leaf, 3 container, 4 list entry, 6 content-match leaf of a read
     * (RFC 6241, 6.2.5). Plug-in writes. */
    uint32_t node_kind;
    /* Bit 0x04 tells that `node_kind` was assigned. Plug-in writes. */
    uint8_t kind_flags;
    /* 1 on a list key leaf, together with DTF_FLAG_KEY. Plug-in writes. */
    uint8_t is_key;
    /* The framework's classification of a faulty native node, under DTF_FLAG_ERROR_KIND; 5 marks an XPath error. */
    uint32_t error_kind;
    /* DTF_FLAG_ bits. Plug-in sets DTF_FLAG_OP_SET, DTF_FLAG_HAS_SUBTREE and DTF_FLAG_KEY. */
    uint32_t flags;
    /* Elements the child array has room for. The framework's own; 0 for an array it did not allocate itself. */
    uint32_t child_room;
};

/* --------------------------------------------------------------------------------------------- request records -- */

/* Which levels the debug log wants: bit n stands for level n. The framework's own; a plug-in passes its address on. */
struct dtf_debug_filter {
    uint32_t levels;
};

/* What the client asked for. */
struct dtf_request {
    /* Request kind. 0 get-config and 10 get are the reads; 1, 8 and 15 are keyed requests (edits); 0, 1, 8 and 15
     * concern configuration. */
    uint32_t data_input;
    /* Option bits of the request; the plug-in only tests whether any is set. */
    uint32_t req_option_bits;
    /* Scope of the request; the plug-in compares it with 2. */
    uint32_t req_scope;
};

/* One level of the node hierarchy: the node pushed there. */
struct dtf_hierarchy_entry {
    const struct dtf_datatree *node_data;
};

/* Levels the node hierarchy holds; its length is 8 bits wide. */
#define DTF_HIERARCHY_MAX 255

/* State of one walk of one request. The trees named "only printed" are read by print_data() alone. */
struct dtf_req_ctx {
    struct dtf_request *req;
    struct dtf_datatree *reg_dup_datatree; /* only printed */
    struct dtf_datatree *root_node;        /* only printed */
    struct dtf_datatree *parent_node;      /* only printed */
    struct dtf_datatree *current_node;     /* only printed */
    /* The tag that failed the request: null or one dtf_strdup() allocation. Plug-in writes. */
    char *error_tag;
    /* 0x40 replace removal pass, 0x80 replace write pass, 0x100 an XPath error node was met. Plug-in writes. */
    uint32_t req_flags;
    /* Length of the output list. */
    uint8_t output_list_len;
    struct dtf_datatree *plist; /* only printed */
    /* Entries of `hierarchy` in use, counted from the root of the walk. */
    uint8_t hierarchy_len;
    struct dtf_hierarchy_entry hierarchy[DTF_HIERARCHY_MAX];
    /* 0; 1 while a delete is expanded below a list entry; 2 while a list hook runs for the delete of an entry named
     * by its key alone. Plug-in writes. */
    uint32_t delete_walk;
    /* 1 while the walkers expand a node whose content the request leaves open. Plug-in writes. */
    uint32_t expand_mode;
    /* Subtree-filter state of the current siblings: 0x1 all selected, 0x2 a selection node was seen, 0x4 a
     * content-match node was seen, 0x10000 the request holds a content-match node. Plug-in writes. */
    uint32_t filter_flags;
    /* 1 from the start of a replace to its end. Plug-in writes. */
    uint32_t replace_pending;
};

/* The mapping context, one per request. A plug-in writes `list_node_op` and `data_printed` only. */
struct dtf_map_context {
    struct dtf_req_ctx *req_ctx;
    struct dtf_debug_filter debug_filter;
    /* Debug-log handles of the ERR and of the TRC lines. */
    void *err_log;
    void *trc_log;
    /* Trace-buffer handle, and nonzero where reports go there too. */
    void *trace_ring;
    uint32_t trace_on;
    /* Operation of the current request list entry when it was given explicitly, else 0. */
    uint32_t list_node_op;
    /* 1 after print_data() ran. */
    uint32_t data_printed;
};
typedef struct dtf_map_context *dtf_map_ctx;

/* --------------------------------------------------------------------------------------------------- reporting -- */

/* Debug-log levels. */
#define DTF_LEVEL_ERR 0u
#define DTF_LEVEL_TRC 3u

/* Nonzero when the debug log wants lines of `level` (DTF_LEVEL_ERR or DTF_LEVEL_TRC). `filter` is the context's. */
int dtf_debug_should_log(struct dtf_debug_filter *filter, uint32_t level);

/*
 * Writes one debug-log line. log: err_log or trc_log of the context. The five words are 0. site_word: the calling
 * place's own static word, all ones before its first use, where the filter keeps what it knows of that place. The line
 * is `format` with its arguments, without a newline of its own.
 */
void _plat_dt_log_filter_adv(void *log, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t *site_word,
                             const char *format, ...) DTF_PRINTF_LIKE(8, 9);

/* Draws the index of the next trace-buffer line; wraps at 2^32. */
uint32_t ret_nc_dtf_trace_index_incr(void);

/* Appends a finished line to the trace buffer. tag: 0x10101000000. The line is text: it is copied, never formatted. */
void _ringlog(void *trace_ring, uint64_t tag, const char *line);

/*
 * Notes for the error reply where in the request the failure happened, from the node hierarchy and `error_tag` as they
 * are now. Called right after the report of an error that fails the request.
 */
void dtf_oc_error_path(dtf_map_ctx ctx);

/* ---------------------------------------------------------------------------------------------------- the walk -- */

/* `kind` of dtf_map_add_to_node_hierarchy() */
#define DTF_HIER_CONTAINER 1u
#define DTF_HIER_LIST 2u

/* Pushes `node` on the node hierarchy; hierarchy_len grows by one. The node must stay where it is until popped. */
void dtf_map_add_to_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node, uint32_t kind);

/* Pops `node`, which the same walker pushed last. */
void dtf_map_remove_from_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node);

/*
 * Makes the list entry the walk has just come to the current list node, under the list's schema path (absolute, tags
 * joined by "/"). Paths added from now on land under the output entry that stands for it. Called also while a request
 * is expanded, where nothing was pushed for the entry. 0, or the framework's code for a list it cannot follow.
 */
faultno dtf_map_update_current_list_node(dtf_map_ctx ctx, const char *schema_path);

/* Registers a native list entry in the output list; output_list_len grows when it was added. */
void dtf_add_to_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out);

/* Withdraws the entry again; called only where the registration grew the list. */
void dtf_remove_from_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out);

/* Nonzero when both texts are given and equal byte for byte. */
int dtf_map_do_these_match(const char *a, const char *b);

/*
 * Adds an absolute schema path to a tree. The nodes along it that exist for the current list entry are used, the others
 * are created; a closing "/" names the list entry itself and adds nothing beyond it.
 *
 * tree            the output tree, or a request's list entry, to which a path of one tag is added
 * ns              namespace URI of the nodes; copied by reference, must outlive the tree (a literal)
 * value           value of the last node, copied; null for a container or a list entry
 * source          the input node the new node stands for, whose edit operation it takes over; null in reads
 * created         receives the created last node, valid until the next addition; may be null
 * new_list_entry  1: the last element of the path becomes a new list entry, even where one exists
 * ninth           1: the leaf is a key of an entry that stands for a whole-list edit; else 0
 *
 * 0, or the framework's code; on a fault the tree still has all that it had.
 */
faultno dtf_map_datatree_add_path_flagged(dtf_map_ctx ctx, struct dtf_datatree *tree, const char *path, const char *ns,
                                          const char *value, const struct dtf_datatree *source,
                                          struct dtf_datatree **created, uint32_t new_list_entry, uint32_t ninth);

/* Nonzero when the node's edit operation deletes it (delete or remove). */
int dtf_map_is_request_delete(const struct dtf_datatree *node);

/* Nonzero when the request adds the node: an edit with merge, replace or create. */
int dtf_map_is_request_add(dtf_map_ctx ctx, const struct dtf_datatree *node);

/*
 * Checks the key leaf `key_tag` of a request's list entry against the leaf of the same name in the entry's `container`
 * ("config"): in OpenConfig a list key is a leafref to it. 0 when they agree or the container or its leaf is absent;
 * else nonzero, the code with which the walk ends.
 */
int dtf_map_check_oc_leafref(dtf_map_ctx ctx, const char *list_path, const char *container, const char *key_tag,
                             const struct dtf_datatree *entry);

/* ---------------------------------------------------------------------------------------- instance-tree stack -- */

/* Makes the output entry that stands for `node`, an entry of the stack entry's array, the current one. */
typedef faultno (*dtf_itree_callback)(dtf_map_ctx ctx, const struct dtf_datatree *node, struct dtf_datatree *out,
                                      uint32_t reserved);

/* One entry of the instance-tree stack: an array of list entries to walk. The array belongs to whoever pushed it. */
struct dtf_itree_entry {
    struct dtf_datatree *children;
    uint32_t count;
    /* Called for each element before it is walked; null where nothing is to be done. */
    dtf_itree_callback callback;
};

/* Pushes an entry. The array is not copied and must stay until the entry is popped. */
void dtf_map_util_itree_stack_push(dtf_map_ctx ctx, struct dtf_datatree *children, uint32_t count,
                                   dtf_itree_callback callback);
/* Pops the top entry. */
void dtf_map_util_itree_stack_pop(dtf_map_ctx ctx);
/* Stores a pointer to the top entry, valid until the next push or pop; null when the stack is empty. */
void dtf_map_util_itree_stack_peak(dtf_map_ctx ctx, struct dtf_itree_entry **entry);
/* Number of entries. */
uint32_t dtf_map_util_itree_stack_size(dtf_map_ctx ctx);

/* ------------------------------------------------------------------------------------------------------ helpers -- */

/* Writes a tree (null: none) to the debug log under a label. */
void dtf_map_print_datatree_internal(dtf_map_ctx ctx, const struct dtf_datatree *tree, const char *label);

/* A copy of `text`, named `tag` in the framework's books; released with plat_named_free(). Null when out of memory, and
 * for a null text (a node without a tag that is refused). */
char *dtf_strdup(const char *text, const char *tag);
/* Releases a dtf_strdup() copy; null is allowed. */
void plat_named_free(void *allocation);

/*
 * Bounded copies and append. function: the caller's name, for diagnostics. `size` counts the destination's bytes, the
 * terminator included. The destination is always terminated (where size > 0); what does not fit is cut, and the result
 * is then nonzero. A null source counts as empty text. dtf_strncpy_s() copies at most `count` characters.
 */
int dtf_strcpy_s(const char *function, char *destination, size_t size, const char *source);
int dtf_strncpy_s(const char *function, char *destination, size_t size, const char *source, size_t count);
int dtf_strcat_s(const char *function, char *destination, size_t size, const char *source);

/* Text of a result code; static, or valid until the same thread's next call. Never null. */
const char *fault_strerror(faultno code);

#ifdef __cplusplus
}
#endif

#endif
