/*
 * Every function and datum that the channel-monitor mapping plug-in (liboc-chmon.so) exports, and the namespaces of its
 * models.
 *
 * Calling form. Walkers, hooks, augment handlers and transformations take the mapping context, the input node they are
 * responsible for and the output tree, and return a result code. Container hooks take the node's child count as well,
 * and ignore it. A null context stops the process by assertion. A null `in` or `out` is reported, noted with
 * dtf_oc_error_path() and answered with FAULT_INVALID_ARGS; further codes are named where they can come. A code that a
 * framework operation answers is passed on unchanged; where a function adds several paths it is the last one's.
 *
 * What a walker does: it records its node in the node hierarchy, calls its hook, sends each child to the child's
 * walker, by tag, and children of foreign namespaces to its augment handler. FAULT_TREE_ERROR from any walker of a
 * container or list: the child array is missing although child_count is nonzero, or a child has no tag.
 *
 * Names: ymap_, the direction (xo native to OpenConfig, ox OpenConfig to native), oc_opt_ch_mon_, the module, lvla_,
 * the schema path as its top container, parent and own name. A hook has cont_, list_ or leaf_ before lvla_; an augment
 * handler ends in _parse_augments.
 *
 * Threads: one context is used by one thread at a time. Inventory look-ups, and so all walks, must not run at the same
 * time in one process: replace_str() and the field-name tokenizer of get_value_in_parcel() keep process-wide state.
 *
 * Compiles alone as C11 and as C++20.
 */
#ifndef OC_CHMON_H
#define OC_CHMON_H

#include "dtf.h"
#include "ostore.h"
#include "parcel.h"

/* Namespace URIs of the YANG modules openconfig-channel-monitor, Vantra-TALIN-controller-kestrel-ots-oper and
 * Vantra-TALIN-ifmgr-cfg. */
#define CHMON_NS_OPENCONFIG_CHANNEL_MONITOR "http://openconfig.net/yang/channel-monitor"
#define CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER "urn:vantra:talin:controller-kestrel-ots-oper"
#define CHMON_NS_VANTRA_TALIN_IFMGR_CFG "urn:vantra:talin:ifmgr-cfg"

#ifdef __cplusplus
extern "C" {
#endif

/* Everything declared here, and nothing else, is in the shared library's symbol table. */
#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

/* -------------------------------------- native to OpenConfig: Vantra-TALIN-controller-kestrel-ots-oper -- */

/* Augment handlers of both native models skip the node: FAULT_SUCCESS, without check or report. List walkers answer
 * FAULT_SKIP_ENTRY for an entry that is dropped; the container walkers above them go on with the next. */

/* /ots-oper: the top walker of the native operational tree. Walks its children only for request kind 10. */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper(dtf_map_ctx ctx,
                                                                               const struct dtf_datatree *in,
                                                                               struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper(dtf_map_ctx ctx,
                                                                                    const struct dtf_datatree *in,
                                                                                    unsigned int count,
                                                                                    struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /ots-oper/ots-ports */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper_otsports(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /ots-oper/ots-ports/ots-port: one call an entry; the hook adds a channel-monitor entry */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_otsport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_list_lvla_otsoper_otsports_otsport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsports_otsport_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /ots-oper/ots-ports/ots-port/name: the hook hands over to opt_key_to_high() */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_otsport_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_otsspectruminfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_cont_lvla_otsoper_otsport_otsspectruminfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsport_otsspectruminfo_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info: one call an
 * entry; the hook adds a channels/channel entry */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_list_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_otsspectruminfo_spectrumslicepowerinfo_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../spectrum-slice-power-info/lower-frequency: the hook adds the text as it is, key leaf first, then state leaf */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../spectrum-slice-power-info/upper-frequency: as above, but the state leaf first */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno
ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../spectrum-slice-power-info/rx-power: the hook hands over to
 * oc_opt_chmon_state_power_to_high() */
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper_spectrumslicepowerinfo_rxpower(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_leaf_lvla_otsoper_spectrumslicepowerinfo_rxpower(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* -------------------------------------------------------- native to OpenConfig: Vantra-TALIN-ifmgr-cfg -- */

/* /interface-configurations: the top walker of the native interface configuration */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations(dtf_map_ctx ctx,
                                                                               const struct dtf_datatree *in,
                                                                               struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_cont_lvla_interfaceconfigurations(dtf_map_ctx ctx,
                                                                                    const struct dtf_datatree *in,
                                                                                    unsigned int count,
                                                                                    struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /interface-configurations/interface-configuration: one call an entry. The hook does nothing,
 * without check or report. */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_list_lvla_interfaceconfigurations_interfaceconfiguration(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /interface-configurations/interface-configuration/interface-name: the hook hands over to
 * op_chmon_cfg_name_to_high() */
faultno ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno
ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* ------------------------------------------------------ OpenConfig to native: openconfig-channel-monitor -- */

/*
 * Further result codes of these walkers:
 *   FAULT_TREE_ERROR           also a list entry without children in a keyed request (kinds 1, 8 and 15)
 *   FAULT_UNSUPPORTED_TAG      an unknown tag of the own namespace in an edit; error_tag names it
 *   FAULT_LIST_KEY_ERROR       a key missing, empty or given twice; error_tag names it
 *   FAULT_KEY_DELETE           a key leaf with a delete operation
 *   FAULT_INVALID_ARGS         also a delete of a container that has children
 *   FAULT_UNSUPPORTED_AUGMENT  a foreign node in a request that adds it; error_tag names it
 *   the code of dtf_map_check_oc_leafref() where a key disagrees with its leaf in config
 */

/* /channel-monitors: the top walker of an OpenConfig request */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors(dtf_map_ctx ctx,
                                                                            const struct dtf_datatree *in,
                                                                            struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors(dtf_map_ctx ctx,
                                                                                 const struct dtf_datatree *in,
                                                                                 unsigned int count,
                                                                                 struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor: one call an entry, and one for the whole list while a request is expanded;
 * the hook hands over to oc_chmon_list_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_list_lvla_channelmonitors_channelmonitor(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/name: the list key; the hook hands over to chmon_key_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channelmonitor_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/config */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_config(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_config(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_config_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/config/name: the hook hands over to op_chmon_cfg_name_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_config_name(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_config_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/config/monitor-port: the hook hands over to
 * oc_chmon_cfg_monitor_port_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_config_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_config_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/state: walked for request kind 10 only */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_state_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/state/name: the hook hands over to op_chmon_state_name_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_name(dtf_map_ctx ctx,
                                                                                       const struct dtf_datatree *in,
                                                                                       struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/state/monitor-port: the hook hands over to
 * oc_chmon_state_monitor_port_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_channels(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channelmonitor_channels(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_channels_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel: one call an entry; the hook adds a native
 * spectrum-slice-power-info entry. Below it the walk goes on for request kind 10 only. */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channels_channel(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_list_lvla_channelmonitors_channels_channel(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channels_channel_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/lower-frequency: a list key; the hook adds the native
 * leaf in reads */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channel_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/upper-frequency: a list key, likewise */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_channel_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/state */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_state(dtf_map_ctx ctx,
                                                                                          const struct dtf_datatree *in,
                                                                                          struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_cont_lvla_channelmonitors_channel_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, unsigned int count, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_state_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/state/lower-frequency: the hook adds the native leaf in
 * reads */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/state/upper-frequency: likewise */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* /channel-monitors/channel-monitor/channels/channel/state/power: the hook hands over to
 * oc_opt_chmon_state_power_to_low() */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_power(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out);
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_leaf_lvla_channelmonitors_state_power(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* ------------------------------------------------------------------------- transformations, OpenConfig to native -- */

/*
 * /channel-monitors/channel-monitor, one call an entry of a request. Adds the native list entry that stands for it:
 * interface-configuration for the request kinds 0, 1, 8 and 15, else ots-port with its ots-spectrum-info. A request
 * that names no monitor anywhere gets one entry, with its key, for each controller of controller_chmon_ots_list that
 * check_controller_name_ots_is_good() accepts. Adds nothing for a delete. Dumps the request's trees first
 * (print_data()).
 */
faultno oc_chmon_list_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/*
 * /channel-monitors/channel-monitor/name, the list key. Adds interface-name and active ("act") of the interface
 * configuration and, unless the request kind is 0, 1, 8 or 15, the ots-port name. Nothing for a leaf without value or,
 * outside reads, for a delete.
 */
faultno chmon_key_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../config/name. As chmon_key_to_low(), without the ots-port name. */
faultno op_chmon_cfg_name_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../config/monitor-port and .../state/monitor-port: no native path of their own. FAULT_SUCCESS. */
faultno oc_chmon_cfg_monitor_port_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);
faultno oc_chmon_state_monitor_port_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../state/name. Adds the ots-port name, for deletes too; nothing for a leaf without value. */
faultno op_chmon_state_name_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/*
 * .../channels/channel/state/power, in dBm. In reads (kinds 0 and 10) adds the native rx-power: the value's hundredfold
 * truncated toward zero, clamped to 32 bits signed (nan is 0), or an empty text for a leaf without value.
 */
faultno oc_opt_chmon_state_power_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* ------------------------------------------------------------------------- transformations, native to OpenConfig -- */

/* /ots-oper/ots-ports/ots-port. Adds a new channel-monitor list entry; nothing for an entry that is being deleted. */
faultno oc_chmon_list_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/*
 * /ots-oper/ots-ports/ots-port/name. Adds name, state/name and state/monitor-port of the monitor that the controller
 * name, its first 10 characters, stands for. FAULT_SKIP_ENTRY, and nothing added, when it is no monitor of the device.
 */
faultno opt_key_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* .../spectrum-slice-power-info/rx-power, in hundredths of a dBm. Adds channel state/power in dBm, with two decimals;
 * empty for a leaf without value. */
faultno oc_opt_chmon_state_power_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/*
 * /interface-configurations/interface-configuration/interface-name. Adds name, config/name and config/monitor-port of
 * the monitor that the interface stands for, unless the request has an option bit set and req_scope 2.
 * FAULT_SKIP_ENTRY, and nothing added, when the interface is no monitor of the device.
 */
faultno op_chmon_cfg_name_to_high(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out);

/* ------------------------------------------------------------------------------------------- inventory and names -- */

/* The controllers that can carry a monitor, slots 1 to 3, port 0 (booster) before port 1 (pre-amplifier); six names and
 * a null pointer. */
extern const char *const controller_chmon_ots_list[];

/*
 * 1 when a controller name ("Ots0/<slot>/0/<port>") denotes a monitor of this device: slot 0 to 3, port 0 or 1, and the
 * monitor is in the inventory. 0, with an error report that says why, when it is to be discarded.
 */
int check_controller_name_ots_is_good(dtf_map_ctx ctx, const char *controller_name);

/*
 * Reads the inventory entry of a monitor ("0/2-CHMON-PRE"). output: 200 bytes; holds the entry's name on FAULT_SUCCESS,
 * or is untouched where the record has none. Else the code of the read or of the record's decoding.
 */
faultno ostore_get_amp_name_from_inventory(dtf_map_ctx ctx, const char *chmon_name, char *output);

/*
 * Reads one item of the system database: binds to `bind_path`, gets `item_path` below it, unbinds. On FAULT_SUCCESS
 * *data and *length describe the item, for the caller to free() (*data is left as it was where the bind gave no
 * handle). 0x8081c200 where the process has no system-database client; else the code of the bind or of the get.
 */
faultno ostore_get_data(dtf_map_ctx ctx, const char *bind_path, const char *item_path, void **data, uint32_t *length);

/*
 * Conversions between the names of one monitor. Output buffers are 20 bytes; the result is cut at 19 characters. They
 * report nothing and never fail: what cannot be read of a name counts as -1.
 *
 *   convert_ctrl_key_to_chmon_key           Ots0/2/0/1     -> 0/2-CHMON-PRE     (port 0: BST, every other: PRE)
 *   convert_oc_key_to_controller_key        0/2-CHMON-PRE  -> Ots0/2/0/1        ("PRE" anywhere: port 1, else 0)
 *   convert_amplifier_key_to_ingress_port   0/2-CHMON-PRE  -> 0/2-OtsCtrl-0/1   (the first three characters)
 */
void convert_ctrl_key_to_chmon_key(const char *controller_name, char *chmon_name);
void convert_oc_key_to_controller_key(const char *chmon_name, char *controller_name);
void convert_amplifier_key_to_ingress_port(const char *chmon_name, char *ingress_port);

/* --------------------------------------------------------------------------------------------------------- records --
 */

/*
 * Finds a field of a parcel and writes its value as text.
 *
 * field   path of one to ten names joined by ".", at most 199 characters; they must be met in order, not side by side
 * wanted  the token type taken from a field that is a group; any other field is taken whatever its type
 * output  200 bytes; untouched where the field is not found or has no text form, cut at 199 characters
 *
 * FAULT_SUCCESS also where the field is not found; FAULT_INVALID_ARGS for a field name outside the above; 0xffffffff
 * for a null parcel; else the parcel library's code.
 */
faultno get_value_in_parcel(dtf_map_ctx ctx, const char *field, parcel_token_type_td wanted, const void *parcel,
                            uint32_t length, char *output);

/* Writes one token's value as text; output: 200 bytes, untouched (and a trace) for a type without text form. */
void convert_parcel_value_to_str(dtf_map_ctx ctx, const parcel_token_td *token, char *output);

/* ----------------------------------------------------------------------------------------------------------- trees --
 */

/* Dumps the trees of the request, the node hierarchy first, to the debug log, and sets data_printed of the context. */
void print_data(dtf_map_ctx ctx);

/*
 * Searches a tree, depth first, for the first leaf with a value whose path (tags from `node` down joined by "/", no
 * leading "/") is `wanted`. Nodes without DTF_FLAG_VALID are passed over with all below them.
 *
 * path_so_far  200 bytes, empty on the first call; scratch
 * output       200 bytes; the leaf's value, cut at 199 characters, when found, else untouched
 *
 * 1 when found, else 0 (a null node is reported).
 */
int compare_path_and_return_data(dtf_map_ctx ctx, const struct dtf_datatree *node, const char *wanted,
                                 char *path_so_far, char *output);

/* ------------------------------------------------------------------------------------------------------------ text --
 */

/*
 * `text` with the first occurrence of `search` replaced. Returns `text` itself when there is none or when the result
 * does not fit 4096 bytes, else a process-wide buffer, valid until the next call that replaces.
 */
const char *replace_str(const char *text, const char *search, const char *replacement);

/*
 * Copies at most `count` characters of `source` (null: none) into `destination` of `size` bytes, which is always
 * terminated. 0; nonzero when there is no destination or source, or when what fits was cut.
 */
int strncpy_s(char *destination, size_t size, const char *source, size_t count);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
