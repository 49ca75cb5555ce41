/* Transformations of the native operational tree: what an OTS port and its measurements mean to OpenConfig. */
#include "add_path.h"
#include "entry.h"
#include "number.h"
#include "oc_chmon.h"
#include "text_size.h"

namespace {

/* Length of the controller names that carry monitors; a longer name counts by its beginning. */
constexpr size_t controller_name_length = 10;

constexpr const char *oc_namespace = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;

} // namespace

faultno oc_chmon_list_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    DTF_TRC(ctx, "ctx->req_ctx->hierarchy_len %d ", ctx->req_ctx->hierarchy_len);
    faultno rc = FAULT_SUCCESS;
    if (0 == dtf_map_is_request_delete(in)) {
        rc = add_list_entry(ctx, out, oc_namespace, "/channel-monitors/channel-monitor");
    }
    LEAVE(ctx, rc);
}

faultno opt_key_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char controller_name[name_size] = {};
    char chmon_name[name_size] = {};
    char ingress_port[name_size] = {};
    ENTER(ctx, in, out);
    (void)strncpy_s(controller_name, sizeof controller_name, in->value, controller_name_length);
    DTF_TRC(ctx, "ctrl_key= %s", controller_name);
    if (0 == check_controller_name_ots_is_good(ctx, controller_name)) {
        LEAVE(ctx, FAULT_SKIP_ENTRY);
    }
    convert_ctrl_key_to_chmon_key(controller_name, chmon_name);
    DTF_TRC(ctx, "chmon_key= %s", chmon_name);
    (void)add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/name", chmon_name);
    (void)add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/state/name", chmon_name);
    convert_amplifier_key_to_ingress_port(chmon_name, ingress_port);
    const faultno rc =
        add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/state/monitor-port", ingress_port);
    LEAVE(ctx, rc);
}

faultno oc_opt_chmon_state_power_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    /* Filled before use; cleared here for the leaf without value. */
    char power[value_size];
    power[0] = '\0';
    ENTER(ctx, in, out);
    if (NULL != in->value) {
        (void)dtf_strcpy_s(__func__, power, sizeof power, in->value);
        DTF_TRC(ctx, "native power= %s", power);
        hundredths_to_decimals(power);
        DTF_TRC(ctx, "OC power= %s", power);
    }
    const faultno rc =
        add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel/state/power", power);
    LEAVE(ctx, rc);
}
