/* Augment handlers of requests. No other module augments this mapping: what a request adds there is refused, anything
 * else is passed over. */
#include "entry.h"
#include "oc_chmon.h"
#include "request_error.h"

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_config_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_state_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channelmonitor_channels_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channels_channel_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}

faultno ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors_channel_state_parse_augments(
    dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    HAND_OVER(ctx, in, out, refuse_foreign_addition);
}
