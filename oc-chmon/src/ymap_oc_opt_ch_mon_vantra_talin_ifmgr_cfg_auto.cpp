/* Hooks and augment handlers of the native interface configuration. */
#include "entry.h"
#include "oc_chmon.h"

/* /interface-configurations */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_cont_lvla_interfaceconfigurations(dtf_map_ctx ctx,
                                                                                    const struct dtf_datatree *in,
                                                                                    unsigned int,
                                                                                    struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    return FAULT_SUCCESS;
}

/* /interface-configurations/interface-configuration: the entry itself maps to nothing, its interface-name does. */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_list_lvla_interfaceconfigurations_interfaceconfiguration(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

/* /interface-configurations/interface-configuration/interface-name */
faultno
ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, op_chmon_cfg_name_to_high);
}

faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}

faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration_parse_augments(
    dtf_map_ctx, const struct dtf_datatree *, struct dtf_datatree *)
{
    return FAULT_SUCCESS;
}
