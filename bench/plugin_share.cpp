/*
 * usage: plugin_share SLICES: walks a spectrum through the plug-in with framework operations that do nothing but what
 * the walk needs to go on (compare, copy a text). Run under callgrind it tells the plug-in's own share; by itself it
 * fails where the plug-in calls for heap memory.
 */
#include "dtf_report.h"
#include "oc_chmon.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

/* Counts from the walk's beginning to its end. */
bool is_walking = false;
unsigned long heap_calls = 0;
unsigned long reports_asked = 0;
unsigned long paths_added = 0;

dtf_datatree make_node(const char *tag, const char *value = nullptr)
{
    dtf_datatree node = {};
    node.tag = tag;
    node.value = value;
    node.ns = CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER;
    node.flags = DTF_FLAG_VALID | (value == nullptr ? 0u : DTF_FLAG_HAS_VALUE);
    return node;
}

void adopt(dtf_datatree &parent, std::vector<dtf_datatree> &children)
{
    parent.children = children.data();
    parent.child_count = static_cast<std::uint32_t>(children.size());
    parent.flags |= DTF_FLAG_HAS_SUBTREE;
}

} // namespace

/* A report that nobody wants, and the two tests that it may cost, as functions of their own for callgrind to count. */
extern "C" __attribute__((noinline)) void one_report(dtf_map_ctx ctx) { DTF_TRC(ctx, "a value: %u", ctx->trace_on); }

extern "C" __attribute__((noinline)) void two_tests(dtf_map_ctx ctx)
{
    if (dtf_debug_should_log(&ctx->debug_filter, DTF_LEVEL_TRC) != 0)
        std::abort();
    if (ctx->trace_on != 0)
        std::abort();
}

extern "C" {

void *__libc_malloc(std::size_t size);

void *malloc(std::size_t size)
{
    heap_calls += is_walking ? 1 : 0;
    return __libc_malloc(size);
}

/* Another library's as far as the compiler knows. */
__attribute__((noipa)) int dtf_debug_should_log(struct dtf_debug_filter *, uint32_t)
{
    reports_asked += 1;
    return 0;
}
void _plat_dt_log_filter_adv(void *, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t *, const char *, ...) {}
uint32_t ret_nc_dtf_trace_index_incr(void) { return 0; }
void _ringlog(void *, uint64_t, const char *) {}
void dtf_oc_error_path(dtf_map_ctx) {}
void dtf_map_add_to_node_hierarchy(dtf_map_ctx, const struct dtf_datatree *, uint32_t) {}
void dtf_map_remove_from_node_hierarchy(dtf_map_ctx, const struct dtf_datatree *) {}
faultno dtf_map_update_current_list_node(dtf_map_ctx, const char *) { return FAULT_SUCCESS; }
void dtf_add_to_output_list_ctx(dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *) {}
void dtf_remove_from_output_list_ctx(dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *) {}
int dtf_map_do_these_match(const char *a, const char *b) { return std::strcmp(a, b) == 0; }
faultno dtf_map_datatree_add_path_flagged(dtf_map_ctx, struct dtf_datatree *, const char *, const char *, const char *,
                                          const struct dtf_datatree *, struct dtf_datatree **, uint32_t, uint32_t)
{
    paths_added += 1;
    return FAULT_SUCCESS;
}
int dtf_map_is_request_delete(const struct dtf_datatree *) { return 0; }
int dtf_map_is_request_add(dtf_map_ctx, const struct dtf_datatree *) { return 0; }
int dtf_map_check_oc_leafref(dtf_map_ctx, const char *, const char *, const char *, const struct dtf_datatree *)
{
    return 0;
}
void dtf_map_util_itree_stack_push(dtf_map_ctx, struct dtf_datatree *, uint32_t, dtf_itree_callback) {}
void dtf_map_util_itree_stack_pop(dtf_map_ctx) {}
void dtf_map_util_itree_stack_peak(dtf_map_ctx, struct dtf_itree_entry **entry) { *entry = nullptr; }
uint32_t dtf_map_util_itree_stack_size(dtf_map_ctx) { return 0; }
void dtf_map_print_datatree_internal(dtf_map_ctx, const struct dtf_datatree *, const char *) {}
char *dtf_strdup(const char *, const char *) { return nullptr; }
void plat_named_free(void *) {}
int dtf_strcpy_s(const char *, char *destination, size_t size, const char *source)
{
    return dtf_strncpy_s("", destination, size, source, size - 1);
}
int dtf_strncpy_s(const char *, char *destination, size_t, const char *source, size_t count)
{
    const size_t length = strnlen(source, count);
    std::memcpy(destination, source, length);
    destination[length] = '\0';
    return 0;
}
int dtf_strcat_s(const char *, char *, size_t, const char *) { return 0; }
const char *fault_strerror(faultno) { return ""; }
}

int main(int argc, char **argv)
{
    const unsigned long count = argc == 2 ? std::strtoul(argv[1], nullptr, 10) : 1000;
    std::vector<std::vector<dtf_datatree>> leaves(count, {make_node("lower-frequency", "191350000"),
                                                          make_node("upper-frequency", "191356184"),
                                                          make_node("rx-power", "-1046")});
    std::vector<dtf_datatree> slices(count, make_node("spectrum-slice-power-info"));
    for (unsigned long i = 0; i < count; ++i)
        adopt(slices[i], leaves[i]);
    dtf_datatree spectrum = make_node("ots-spectrum-info");
    adopt(spectrum, slices);

    dtf_request request = {10, 0, 0};
    dtf_req_ctx state = {};
    state.req = &request;
    dtf_map_context context = {};
    context.req_ctx = &state;
    dtf_datatree out = {};

    is_walking = true;
    const faultno result =
        ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_otsspectruminfo(&context,
                                                                                                       &spectrum, &out);
    is_walking = false;
    std::printf("{\"slices\": %lu, \"paths_added\": %lu, \"reports_asked\": %lu, \"heap_calls\": %lu}\n", count,
                paths_added, reports_asked, heap_calls);
    for (unsigned long i = 0; i < count; ++i) {
        one_report(&context);
        two_tests(&context);
    }
    return result == FAULT_SUCCESS && paths_added == 6 * count && heap_calls == 0 ? 0 : 1;
}
