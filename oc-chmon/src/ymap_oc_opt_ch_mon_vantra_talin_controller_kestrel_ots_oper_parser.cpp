/* Walkers of the native operational tree. */
#include "entry.h"
#include "native_walk.h"
#include "oc_chmon.h"
#include "request_kind.h"

/* A name of this model's direction and module. */
#define OTS_OPER(name) ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_##name

namespace {

constexpr const char *own_namespace = CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER;

constexpr const char *port_keys[] = {"name"};

/* Operational data is walked for a get alone; for every other kind a child counts as one that the mapping does not
 * know. */
bool operational_tag_is(dtf_map_ctx ctx, const dtf_datatree &child, const char *tag)
{
    return tag_is(child, tag) && is_get(ctx);
}

} // namespace

/* /ots-oper */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper(dtf_map_ctx ctx,
                                                                               const struct dtf_datatree *in,
                                                                               struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (operational_tag_is(ctx, child, "ots-ports")) {
            return OTS_OPER(lvla_otsoper_otsports)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_container<OTS_OPER(cont_lvla_otsoper), OTS_OPER(lvla_otsoper_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace, dispatch);
    LEAVE(ctx, rc);
}

/* /ots-oper/ots-ports */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (operational_tag_is(ctx, child, "ots-port")) {
            return unless_skipped(OTS_OPER(lvla_otsoper_otsports_otsport)(ctx, &child, out));
        }
        return not_dispatched;
    };
    const faultno rc =
        walk_native_container<OTS_OPER(cont_lvla_otsoper_otsports), OTS_OPER(lvla_otsoper_otsports_parse_augments)>(
            {ctx, in, out, __func__}, own_namespace, dispatch);
    LEAVE(ctx, rc);
}

/* /ots-oper/ots-ports/ots-port */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_otsport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](dtf_datatree &child) -> dispatched {
        if (operational_tag_is(ctx, child, "ots-spectrum-info")) {
            return OTS_OPER(lvla_otsoper_otsport_otsspectruminfo)(ctx, &child, out);
        }
        if (operational_tag_is(ctx, child, "name")) {
            mark_as_key(child);
            return OTS_OPER(lvla_otsoper_otsport_name)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_entry<OTS_OPER(list_lvla_otsoper_otsports_otsport),
                                         OTS_OPER(lvla_otsoper_otsports_otsport_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace, "/ots-oper/ots-ports/ots-port", port_keys, dispatch);
    LEAVE(ctx, rc);
}

/* /ots-oper/ots-ports/ots-port/name */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_native_leaf<OTS_OPER(leaf_lvla_otsoper_otsport_name)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_otsspectruminfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (operational_tag_is(ctx, child, "spectrum-slice-power-info")) {
            return unless_skipped(OTS_OPER(lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo)(ctx, &child, out));
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_container<OTS_OPER(cont_lvla_otsoper_otsport_otsspectruminfo),
                                             OTS_OPER(lvla_otsoper_otsport_otsspectruminfo_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace, dispatch);
    LEAVE(ctx, rc);
}

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (operational_tag_is(ctx, child, "lower-frequency")) {
            return OTS_OPER(lvla_otsoper_spectrumslicepowerinfo_lowerfrequency)(ctx, &child, out);
        }
        if (operational_tag_is(ctx, child, "upper-frequency")) {
            return OTS_OPER(lvla_otsoper_spectrumslicepowerinfo_upperfrequency)(ctx, &child, out);
        }
        if (operational_tag_is(ctx, child, "rx-power")) {
            return OTS_OPER(lvla_otsoper_spectrumslicepowerinfo_rxpower)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_entry<OTS_OPER(list_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo),
                                         OTS_OPER(lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace,
        "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info", no_keys(), dispatch);
    LEAVE(ctx, rc);
}

/* .../spectrum-slice-power-info/lower-frequency */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_native_leaf<OTS_OPER(leaf_lvla_otsoper_spectrumslicepowerinfo_lowerfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* .../spectrum-slice-power-info/upper-frequency */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_native_leaf<OTS_OPER(leaf_lvla_otsoper_spectrumslicepowerinfo_upperfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* .../spectrum-slice-power-info/rx-power */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_rxpower(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_native_leaf<OTS_OPER(leaf_lvla_otsoper_spectrumslicepowerinfo_rxpower)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}
