/* Walkers of the native interface configuration. */
#include "entry.h"
#include "native_walk.h"
#include "oc_chmon.h"

/* A name of this model's direction and module. */
#define IFMGR(name) ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_##name

namespace {

constexpr const char *own_namespace = CHMON_NS_VANTRA_TALIN_IFMGR_CFG;

constexpr const char *interface_keys[] = {"active", "interface-name"};

} // namespace

/* /interface-configurations */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations(dtf_map_ctx ctx,
                                                                               const struct dtf_datatree *in,
                                                                               struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "interface-configuration")) {
            return unless_skipped(IFMGR(lvla_interfaceconfigurations_interfaceconfiguration)(ctx, &child, out));
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_container<IFMGR(cont_lvla_interfaceconfigurations),
                                             IFMGR(lvla_interfaceconfigurations_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace, dispatch);
    LEAVE(ctx, rc);
}

/* /interface-configurations/interface-configuration */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](dtf_datatree &child) -> dispatched {
        if (tag_is(child, "interface-name")) {
            mark_as_key(child);
            return IFMGR(lvla_interfaceconfigurations_interfaceconfiguration_interfacename)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const faultno rc = walk_native_entry<IFMGR(list_lvla_interfaceconfigurations_interfaceconfiguration),
                                         IFMGR(lvla_interfaceconfigurations_interfaceconfiguration_parse_augments)>(
        {ctx, in, out, __func__}, own_namespace, "/interface-configurations/interface-configuration", interface_keys,
        dispatch);
    LEAVE(ctx, rc);
}

/* /interface-configurations/interface-configuration/interface-name */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_native_leaf<IFMGR(leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename)>(
        {ctx, in, out, __func__});
    LEAVE(ctx, rc);
}
