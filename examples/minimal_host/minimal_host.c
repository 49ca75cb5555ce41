/*
 * The smallest host in which the plug-in does something of use: it answers "which native data does a read of one
 * channel monitor need?" by walking the read through the plug-in and printing each native path that it names.
 *
 * usage: minimal_host path/to/liboc-chmon.so
 *
 * A host keeps real trees and finds the place of each path in them; this one prints the paths instead, so there is no
 * output tree, and no list entry to remember.
 */
#include "dtf.h"

#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef faultno (*walker)(dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *);

/* ------------------------------------------------------------------- what the plug-in asks for: the walk's state -- */

void dtf_map_add_to_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node, uint32_t kind)
{
    (void)kind;
    if (ctx->req_ctx->hierarchy_len < DTF_HIERARCHY_MAX) {
        ctx->req_ctx->hierarchy[ctx->req_ctx->hierarchy_len++].node_data = node;
    }
}

void dtf_map_remove_from_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    (void)node;
    if (ctx->req_ctx->hierarchy_len > 0) {
        ctx->req_ctx->hierarchy_len--;
    }
}

faultno dtf_map_update_current_list_node(dtf_map_ctx ctx, const char *schema_path)
{
    (void)ctx;
    (void)schema_path;
    return FAULT_SUCCESS;
}

/* The output list is for walks over native data, which this host does not make. */
void dtf_add_to_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out)
{
    (void)ctx;
    (void)entry;
    (void)out;
}

void dtf_remove_from_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out)
{
    (void)ctx;
    (void)entry;
    (void)out;
}

/* The stack of list entries that are still to be walked. */
static struct dtf_itree_entry itree_stack[16];
static uint32_t itree_size;

void dtf_map_util_itree_stack_push(dtf_map_ctx ctx, struct dtf_datatree *children, uint32_t count,
                                   dtf_itree_callback callback)
{
    (void)ctx;
    if (itree_size == sizeof itree_stack / sizeof itree_stack[0]) {
        abort(); /* the model nests two lists; a request cannot come here */
    }
    itree_stack[itree_size++] = (struct dtf_itree_entry){children, count, callback};
}

void dtf_map_util_itree_stack_pop(dtf_map_ctx ctx)
{
    (void)ctx;
    if (itree_size > 0) {
        itree_size--;
    }
}

void dtf_map_util_itree_stack_peak(dtf_map_ctx ctx, struct dtf_itree_entry **entry)
{
    (void)ctx;
    *entry = itree_size > 0 ? &itree_stack[itree_size - 1] : NULL;
}

uint32_t dtf_map_util_itree_stack_size(dtf_map_ctx ctx)
{
    (void)ctx;
    return itree_size;
}

/* ------------------------------------------------------------------------------------- the trees, and questions -- */

int dtf_map_do_these_match(const char *a, const char *b) { return a != NULL && b != NULL && strcmp(a, b) == 0; }

faultno dtf_map_datatree_add_path_flagged(dtf_map_ctx ctx, struct dtf_datatree *tree, const char *path, const char *ns,
                                          const char *value, const struct dtf_datatree *source,
                                          struct dtf_datatree **created, uint32_t new_list_entry, uint32_t ninth)
{
    (void)ctx;
    (void)tree;
    (void)ns;
    (void)source;
    (void)ninth;
    printf("%s%s%s%s\n", path, value != NULL ? " = " : "", value != NULL ? value : "",
           new_list_entry != 0 ? "   (a new entry)" : "");
    if (created != NULL) {
        *created = NULL;
    }
    return FAULT_SUCCESS;
}

int dtf_map_is_request_delete(const struct dtf_datatree *node) { return node->operation == 3 || node->operation == 4; }

int dtf_map_is_request_add(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    const uint32_t kind = ctx->req_ctx->req->data_input;
    return kind != 0 && kind != 10 && node->operation <= 2;
}

/* A read has nothing to compare its keys with. */
int dtf_map_check_oc_leafref(dtf_map_ctx ctx, const char *list_path, const char *container, const char *key_tag,
                             const struct dtf_datatree *entry)
{
    (void)ctx;
    (void)list_path;
    (void)container;
    (void)key_tag;
    (void)entry;
    return 0;
}

/* ----------------------------------------------------------------------------------------- reports: errors only -- */

int dtf_debug_should_log(struct dtf_debug_filter *filter, uint32_t level)
{
    return (filter->levels >> level & 1u) != 0;
}

void _plat_dt_log_filter_adv(void *log, uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e, uint32_t *site_word,
                             const char *format, ...)
{
    (void)a, (void)b, (void)c, (void)d, (void)e, (void)site_word;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(log, format, arguments);
    va_end(arguments);
    fputc('\n', log);
}

uint32_t ret_nc_dtf_trace_index_incr(void)
{
    static uint32_t index;
    return index++;
}

void _ringlog(void *trace_ring, uint64_t tag, const char *line)
{
    (void)tag;
    fprintf(trace_ring, "%s\n", line);
}

void dtf_map_print_datatree_internal(dtf_map_ctx ctx, const struct dtf_datatree *tree, const char *label)
{
    (void)ctx;
    (void)tree;
    (void)label;
}

void dtf_oc_error_path(dtf_map_ctx ctx)
{
    const char *tag = ctx->req_ctx->error_tag;
    fprintf(stderr, "error at level %u%s%s\n", ctx->req_ctx->hierarchy_len, tag != NULL ? ", tag " : "",
            tag != NULL ? tag : "");
}

/* -------------------------------------------------------------------------------------------------------- texts -- */

char *dtf_strdup(const char *text, const char *tag)
{
    (void)tag;
    if (text == NULL) {
        return NULL;
    }
    const size_t size = strlen(text) + 1;
    char *copy = malloc(size);
    return copy != NULL ? memcpy(copy, text, size) : NULL;
}

void plat_named_free(void *allocation) { free(allocation); }

int dtf_strncpy_s(const char *function, char *destination, size_t size, const char *source, size_t count)
{
    (void)function;
    if (size == 0) {
        return 1;
    }
    size_t length = 0;
    while (source != NULL && length < count && source[length] != '\0') {
        length++;
    }
    const size_t fitting = length < size ? length : size - 1;
    memmove(destination, source != NULL ? source : "", fitting);
    destination[fitting] = '\0';
    return fitting != length;
}

int dtf_strcpy_s(const char *function, char *destination, size_t size, const char *source)
{
    return dtf_strncpy_s(function, destination, size, source, (size_t)-1);
}

int dtf_strcat_s(const char *function, char *destination, size_t size, const char *source)
{
    const char *end = memchr(destination, '\0', size);
    const size_t used = end != NULL ? (size_t)(end - destination) : size;
    return dtf_strcpy_s(function, destination + used, size - used, source);
}

const char *fault_strerror(faultno code)
{
    static _Thread_local char text[16];
    snprintf(text, sizeof text, "fault %#x", code);
    return text;
}

/* --------------------------------------------------------------------------------------------------- one request -- */

/* What <channel-monitors><channel-monitor><name>0/2-CHMON-PRE</name><state/></channel-monitor></...> asks for. */
static faultno walk_one_read(walker walk)
{
    static const char ns[] = "http://openconfig.net/yang/channel-monitor";
    const uint32_t inner = DTF_FLAG_VALID | DTF_FLAG_HAS_SUBTREE;
    struct dtf_datatree leaves[] = {
        {.tag = "name", .ns = ns, .value = "0/2-CHMON-PRE", .flags = DTF_FLAG_VALID | DTF_FLAG_HAS_VALUE},
        {.tag = "state", .ns = ns, .flags = DTF_FLAG_VALID},
    };
    struct dtf_datatree monitor = {.tag = "channel-monitor", .ns = ns, .children = leaves, .child_count = 2};
    struct dtf_datatree monitors = {.tag = "channel-monitors", .ns = ns, .children = &monitor, .child_count = 1};
    monitor.flags = monitors.flags = inner;

    struct dtf_request request = {.data_input = 10};
    struct dtf_req_ctx state = {.req = &request, .root_node = &monitors};
    struct dtf_map_context context = {.req_ctx = &state, .err_log = stderr, .trc_log = stderr, .trace_ring = stderr};
    context.debug_filter.levels = 1u << DTF_LEVEL_ERR;

    struct dtf_datatree out = {.flags = DTF_FLAG_VALID};
    const faultno rc = walk(&context, &monitors, &out);
    plat_named_free(state.error_tag);
    return rc;
}

int main(int count, char **arguments)
{
    if (count != 2) {
        fprintf(stderr, "usage: minimal_host path/to/liboc-chmon.so\n");
        return 2;
    }
    void *plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (plugin == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    walker walk = NULL;
    void *symbol = dlsym(plugin, "ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors");
    memcpy(&walk, &symbol, sizeof walk); /* C has no cast from an object pointer to a function pointer */
    if (walk == NULL) {
        fprintf(stderr, "%s: not the channel-monitor plug-in\n", arguments[1]);
        return 1;
    }
    const faultno rc = walk_one_read(walk);
    if (rc != FAULT_SUCCESS) {
        fprintf(stderr, "%s\n", fault_strerror(rc));
    }
    dlclose(plugin);
    return rc == FAULT_SUCCESS ? 0 : 1;
}
