/* Walkers of OpenConfig channel-monitor requests. */
#include "entry.h"
#include "oc_chmon.h"
#include "request_kind.h"
#include "request_list.h"
#include "request_walk.h"

/* A name of this model's direction and module. */
#define OC(name) ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_##name

namespace {

/* /channel-monitors/channel-monitor */
struct channel_monitor_list {
    static constexpr const char *path = "/channel-monitors/channel-monitor";
    static constexpr const char *keys[] = {"name"};
    static constexpr auto hook = OC(list_lvla_channelmonitors_channelmonitor);
    static constexpr auto augments = OC(lvla_channelmonitors_channelmonitor_parse_augments);
    static constexpr bool checks_keys = true;
    static constexpr bool reports_missing_keys = true;
    static constexpr bool reads_without_subtree = false;
    static constexpr bool deletes_expand = true;

    static bool walks_keys(dtf_map_ctx) { return true; }

    static faultno walk_key(dtf_map_ctx ctx, const dtf_datatree &key, dtf_datatree *out)
    {
        return OC(lvla_channelmonitors_channelmonitor_name)(ctx, &key, out);
    }

    static dispatched walk_below(dtf_map_ctx ctx, const dtf_datatree &child, dtf_datatree *out)
    {
        if (tag_is(child, "config")) {
            return OC(lvla_channelmonitors_channelmonitor_config)(ctx, &child, out);
        }
        if (tag_is(child, "state") && is_get(ctx)) {
            return OC(lvla_channelmonitors_channelmonitor_state)(ctx, &child, out);
        }
        if (tag_is(child, "channels")) {
            return OC(lvla_channelmonitors_channelmonitor_channels)(ctx, &child, out);
        }
        return not_dispatched;
    }

    static void expand_named(dtf_map_ctx ctx, const dtf_datatree &entry, dtf_datatree *out)
    {
        (void)OC(lvla_channelmonitors_channelmonitor_config)(ctx, &entry, out);
        expand_open_state(ctx, entry, out);
        (void)OC(lvla_channelmonitors_channelmonitor_channels)(ctx, &entry, out);
    }

    static void expand_open(dtf_map_ctx ctx, const dtf_datatree &node, dtf_datatree *out)
    {
        (void)OC(lvla_channelmonitors_channelmonitor_name)(ctx, &node, out);
        (void)OC(lvla_channelmonitors_channelmonitor_config)(ctx, &node, out);
        (void)OC(lvla_channelmonitors_channelmonitor_channels)(ctx, &node, out);
    }

    static void expand_open_state(dtf_map_ctx ctx, const dtf_datatree &node, dtf_datatree *out)
    {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_channelmonitor_state)(ctx, &node, out);
        }
    }
};

/* /channel-monitors/channel-monitor/channels/channel: state alone, so only a get walks below an entry, and neither keys
 * nor deletes are checked. */
struct channel_list {
    static constexpr const char *path = "/channel-monitors/channel-monitor/channels/channel";
    static constexpr const char *keys[] = {"lower-frequency", "upper-frequency"};
    static constexpr auto hook = OC(list_lvla_channelmonitors_channels_channel);
    static constexpr auto augments = OC(lvla_channelmonitors_channels_channel_parse_augments);
    static constexpr bool checks_keys = false;
    static constexpr bool reports_missing_keys = false;
    static constexpr bool reads_without_subtree = true;
    static constexpr bool deletes_expand = false;

    static bool walks_keys(dtf_map_ctx ctx) { return is_get(ctx); }

    static faultno walk_key(dtf_map_ctx ctx, const dtf_datatree &key, dtf_datatree *out)
    {
        return tag_is(key, keys[0]) ? OC(lvla_channelmonitors_channel_lowerfrequency)(ctx, &key, out)
                                    : OC(lvla_channelmonitors_channel_upperfrequency)(ctx, &key, out);
    }

    static dispatched walk_below(dtf_map_ctx ctx, const dtf_datatree &child, dtf_datatree *out)
    {
        if (tag_is(child, "state") && is_get(ctx)) {
            return OC(lvla_channelmonitors_channel_state)(ctx, &child, out);
        }
        return not_dispatched;
    }

    static void expand_named(dtf_map_ctx ctx, const dtf_datatree &entry, dtf_datatree *out)
    {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_channel_state)(ctx, &entry, out);
        }
    }

    static void expand_open(dtf_map_ctx ctx, const dtf_datatree &node, dtf_datatree *out)
    {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_channel_lowerfrequency)(ctx, &node, out);
            (void)OC(lvla_channelmonitors_channel_upperfrequency)(ctx, &node, out);
            (void)OC(lvla_channelmonitors_channel_state)(ctx, &node, out);
        }
    }

    static void expand_open_state(dtf_map_ctx, const dtf_datatree &, dtf_datatree *) {}
};

} // namespace

/* /channel-monitors */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors(dtf_map_ctx ctx,
                                                                            const struct dtf_datatree *in,
                                                                            struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "channel-monitor")) {
            return OC(lvla_channelmonitors_channelmonitor)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const auto expand = [=](dtf_datatree &node) {
        const delete_as_remove removing(node, true);
        (void)OC(lvla_channelmonitors_channelmonitor)(ctx, &node, out);
    };
    const faultno rc = walk_request_container<OC(cont_lvla_channelmonitors), OC(lvla_channelmonitors_parse_augments)>(
        {ctx, in, out, __func__}, content::configuration, dispatch, expand);
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_entry<channel_monitor_list>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_name(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_request_key_leaf<OC(leaf_lvla_channelmonitors_channelmonitor_name)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/config */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_config(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "name")) {
            return OC(lvla_channelmonitors_config_name)(ctx, &child, out);
        }
        if (tag_is(child, "monitor-port")) {
            return OC(lvla_channelmonitors_config_monitorport)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const auto expand = [=](dtf_datatree &node) {
        const delete_as_remove removing(node, true);
        (void)OC(lvla_channelmonitors_config_name)(ctx, &node, out);
        (void)OC(lvla_channelmonitors_config_monitorport)(ctx, &node, out);
    };
    const faultno rc = walk_request_container<OC(cont_lvla_channelmonitors_channelmonitor_config),
                                              OC(lvla_channelmonitors_channelmonitor_config_parse_augments)>(
        {ctx, in, out, __func__}, content::configuration, dispatch, expand);
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/config/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_config_name(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_config_name)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/config/monitor-port */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_config_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_config_monitorport)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/state */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_state(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "name")) {
            return OC(lvla_channelmonitors_state_name)(ctx, &child, out);
        }
        if (tag_is(child, "monitor-port")) {
            return OC(lvla_channelmonitors_state_monitorport)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const auto expand = [=](dtf_datatree &node) {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_state_name)(ctx, &node, out);
            (void)OC(lvla_channelmonitors_state_monitorport)(ctx, &node, out);
        }
    };
    const faultno rc = walk_request_container<OC(cont_lvla_channelmonitors_channelmonitor_state),
                                              OC(lvla_channelmonitors_channelmonitor_state_parse_augments)>(
        {ctx, in, out, __func__}, content::state, dispatch, expand);
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/state/name */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_name(dtf_map_ctx ctx,
                                                                                       const struct dtf_datatree *in,
                                                                                       struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_state_name)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/state/monitor-port */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_monitorport(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_state_monitorport)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_channels(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "channel")) {
            return OC(lvla_channelmonitors_channels_channel)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const auto expand = [=](dtf_datatree &node) {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_channels_channel)(ctx, &node, out);
        }
    };
    const faultno rc = walk_request_container<OC(cont_lvla_channelmonitors_channelmonitor_channels),
                                              OC(lvla_channelmonitors_channelmonitor_channels_parse_augments)>(
        {ctx, in, out, __func__}, content::configuration, dispatch, expand);
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channels_channel(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_entry<channel_list>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/lower-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_request_key_leaf<OC(leaf_lvla_channelmonitors_channel_lowerfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/upper-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc =
        walk_request_key_leaf<OC(leaf_lvla_channelmonitors_channel_upperfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/state */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_state(dtf_map_ctx ctx,
                                                                                          const struct dtf_datatree *in,
                                                                                          struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const auto dispatch = [=](const dtf_datatree &child) -> dispatched {
        if (tag_is(child, "lower-frequency")) {
            return OC(lvla_channelmonitors_state_lowerfrequency)(ctx, &child, out);
        }
        if (tag_is(child, "upper-frequency")) {
            return OC(lvla_channelmonitors_state_upperfrequency)(ctx, &child, out);
        }
        if (tag_is(child, "power")) {
            return OC(lvla_channelmonitors_state_power)(ctx, &child, out);
        }
        return not_dispatched;
    };
    const auto expand = [=](dtf_datatree &node) {
        if (is_get(ctx)) {
            (void)OC(lvla_channelmonitors_state_lowerfrequency)(ctx, &node, out);
            (void)OC(lvla_channelmonitors_state_upperfrequency)(ctx, &node, out);
            (void)OC(lvla_channelmonitors_state_power)(ctx, &node, out);
        }
    };
    const faultno rc = walk_request_container<OC(cont_lvla_channelmonitors_channel_state),
                                              OC(lvla_channelmonitors_channel_state_parse_augments)>(
        {ctx, in, out, __func__}, content::state, dispatch, expand);
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/state/lower-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_lowerfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_state_lowerfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/state/upper-frequency */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_upperfrequency(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_state_upperfrequency)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}

/* /channel-monitors/channel-monitor/channels/channel/state/power */
faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_state_power(dtf_map_ctx ctx,
                                                                                        const struct dtf_datatree *in,
                                                                                        struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    const faultno rc = walk_request_leaf<OC(leaf_lvla_channelmonitors_state_power)>({ctx, in, out, __func__});
    LEAVE(ctx, rc);
}
