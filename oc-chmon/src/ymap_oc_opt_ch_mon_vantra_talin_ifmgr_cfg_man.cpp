/* Transformations of the native interface configuration: what a configured interface means to OpenConfig. */
#include "add_path.h"
#include "entry.h"
#include "oc_chmon.h"
#include "text_size.h"

namespace {

/* req_scope of the requests that, with an option bit set, want no channel monitors. */
constexpr uint32_t scope_without_monitors = 2;

bool wants_monitors(const dtf_request &request)
{
    return 0 == request.req_option_bits || scope_without_monitors != request.req_scope;
}

faultno add_configured_monitor(dtf_map_ctx ctx, dtf_datatree *out, const char *chmon_name)
{
    const char *ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
    char ingress_port[name_size] = {};
    (void)add_path(ctx, out, ns, "/channel-monitors/channel-monitor/name", chmon_name);
    (void)add_path(ctx, out, ns, "/channel-monitors/channel-monitor/config/name", chmon_name);
    convert_amplifier_key_to_ingress_port(chmon_name, ingress_port);
    return add_path(ctx, out, ns, "/channel-monitors/channel-monitor/config/monitor-port", ingress_port);
}

} // namespace

faultno op_chmon_cfg_name_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char chmon_name[name_size] = {};
    ENTER(ctx, in, out);
    const char *controller_name = NULL == in->value ? "" : in->value;
    DTF_TRC(ctx, "ctrl_key= %s", controller_name);
    if (0 == check_controller_name_ots_is_good(ctx, controller_name)) {
        LEAVE(ctx, FAULT_SKIP_ENTRY);
    }
    convert_ctrl_key_to_chmon_key(controller_name, chmon_name);
    DTF_TRC(ctx, "chmon_key= %s", chmon_name);
    faultno rc = FAULT_SUCCESS;
    if (wants_monitors(*ctx->req_ctx->req)) {
        rc = add_configured_monitor(ctx, out, chmon_name);
    }
    LEAVE(ctx, rc);
}
