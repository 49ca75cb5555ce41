/* Hooks of requests. */
#include "add_path.h"
#include "entry.h"
#include "oc_chmon.h"
#include "request_kind.h"

namespace {

/* Adds a native leaf with the request leaf's text where the request reads; edits have nothing to say about state. */
faultno add_slice_leaf(dtf_map_ctx ctx, const dtf_datatree &leaf, dtf_datatree *out, const char *path)
{
    if (!is_read(ctx)) {
        return FAULT_SUCCESS;
    }
    return add_path(ctx, out, CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER, path, leaf.value);
}

constexpr const char *slice_lower_frequency =
    "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info/lower-frequency";
constexpr const char *slice_upper_frequency =
    "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info/upper-frequency";

} // namespace

/* /channel-monitors */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors(dtf_map_ctx ctx,
                                                                                 const struct dtf_datatree *in,
                                                                                 unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /channel-monitors/channel-monitor */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_list_lvla_channelmonitors_channelmonitor(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return oc_chmon_list_to_low(ctx, in, out);
}

/* /channel-monitors/channel-monitor/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channelmonitor_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, chmon_key_to_low);
}

/* /channel-monitors/channel-monitor/config */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_config(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /channel-monitors/channel-monitor/config/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_config_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, op_chmon_cfg_name_to_low);
}

/* /channel-monitors/channel-monitor/config/monitor-port */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_config_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, oc_chmon_cfg_monitor_port_to_low);
}

/* /channel-monitors/channel-monitor/state */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /channel-monitors/channel-monitor/state/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, op_chmon_state_name_to_low);
}

/* /channel-monitors/channel-monitor/state/monitor-port */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, oc_chmon_state_monitor_port_to_low);
}

/* /channel-monitors/channel-monitor/channels */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_channels(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /channel-monitors/channel-monitor/channels/channel */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_list_lvla_channelmonitors_channels_channel(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const dtf_datatree *source = 0 != dtf_map_is_request_delete(in) ? in : NULL;
    return add_list_entry(ctx, out, CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER,
                          "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info", source);
}

/* /channel-monitors/channel-monitor/channels/channel/lower-frequency. The first of an entry's keys names the native
 * entry, too. */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channel_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    (void)add_slice_leaf(ctx, *in, out, "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info/");
    return add_slice_leaf(ctx, *in, out, slice_lower_frequency);
}

/* /channel-monitors/channel-monitor/channels/channel/upper-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channel_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return add_slice_leaf(ctx, *in, out, slice_upper_frequency);
}

/* /channel-monitors/channel-monitor/channels/channel/state */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channel_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /channel-monitors/channel-monitor/channels/channel/state/lower-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return add_slice_leaf(ctx, *in, out, slice_lower_frequency);
}

/* /channel-monitors/channel-monitor/channels/channel/state/upper-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return add_slice_leaf(ctx, *in, out, slice_upper_frequency);
}

/* /channel-monitors/channel-monitor/channels/channel/state/power */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_power(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, oc_opt_chmon_state_power_to_low);
}
