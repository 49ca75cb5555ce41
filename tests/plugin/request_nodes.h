/* The nodes of the OpenConfig model as the plug-in's request side names them: one list, expanded where needed. */
#pragma once

/* Every exported function of the request side is this with a path, or with a hook's kind and a path. */
#define REQUEST_FUNCTION(name) ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_##name

/* X(short name, path in the function names, tag, short names of the children...) */
#define REQUEST_CONTAINERS(X)                                                                                          \
    X(top, channelmonitors, "channel-monitors", monitor)                                                               \
    X(config, channelmonitors_channelmonitor_config, "config", config_name, config_port)                               \
    X(state, channelmonitors_channelmonitor_state, "state", state_name, state_port)                                    \
    X(channels, channelmonitors_channelmonitor_channels, "channels", channel)                                          \
    X(channel_state, channelmonitors_channel_state, "state", state_lower, state_upper, state_power)

#define REQUEST_LISTS(X)                                                                                               \
    X(monitor, channelmonitors_channelmonitor, "channel-monitor", name, config, state, channels)                       \
    X(channel, channelmonitors_channels_channel, "channel", lower, upper, channel_state)

/* X(short name, path in the function names, tag) */
#define REQUEST_LEAVES(X)                                                                                              \
    X(name, channelmonitors_channelmonitor_name, "name")                                                               \
    X(config_name, channelmonitors_config_name, "name")                                                                \
    X(config_port, channelmonitors_config_monitorport, "monitor-port")                                                 \
    X(state_name, channelmonitors_state_name, "name")                                                                  \
    X(state_port, channelmonitors_state_monitorport, "monitor-port")                                                   \
    X(lower, channelmonitors_channel_lowerfrequency, "lower-frequency")                                                \
    X(upper, channelmonitors_channel_upperfrequency, "upper-frequency")                                                \
    X(state_lower, channelmonitors_state_lowerfrequency, "lower-frequency")                                            \
    X(state_upper, channelmonitors_state_upperfrequency, "upper-frequency")                                            \
    X(state_power, channelmonitors_state_power, "power")
