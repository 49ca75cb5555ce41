/* Hooks and augment handlers of the native operational tree. */
#include "add_path.h"
#include "entry.h"
#include "oc_chmon.h"

namespace {

constexpr const char *oc_namespace = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;

} // namespace

/* /ots-oper */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper(dtf_map_ctx ctx,
                                                                                    const struct dtf_datatree *in,
                                                                                    unsigned int,
                                                                                    struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /ots-oper/ots-ports */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper_otsports(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper_otsport_otsspectruminfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /ots-oper/ots-ports/ots-port */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_list_lvla_otsoper_otsports_otsport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return oc_chmon_list_to_high(ctx, in, out);
}

/* /ots-oper/ots-ports/ots-port/name */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_otsport_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, opt_key_to_high);
}

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info: a slice is a channel, and its entry must be
 * there before its frequencies. */
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_list_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const dtf_datatree *source = 0 != dtf_map_is_request_delete(in) ? in : NULL;
    return add_list_entry(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel", source);
}

/* .../spectrum-slice-power-info/lower-frequency. The state leaf's result counts. */
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    (void)add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel/lower-frequency",
                   in->value);
    return add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel/state/lower-frequency",
                    in->value);
}

/* .../spectrum-slice-power-info/upper-frequency. The other way round: the key leaf comes last, and its result counts.
 */
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    (void)add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel/state/upper-frequency",
                   in->value);
    return add_path(ctx, out, oc_namespace, "/channel-monitors/channel-monitor/channels/channel/upper-frequency",
                    in->value);
}

/* .../spectrum-slice-power-info/rx-power */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_rxpower(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, oc_opt_chmon_state_power_to_high);
}

faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_otsport_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_otsspectruminfo_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}
