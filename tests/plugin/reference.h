/*
 * What the plug-in shall do, told a second time in the shortest form: names, inventory, hooks and transformations, and
 * both models' nodes as one table. It calls the recording double as the plug-in does, so that two runs compare line by
 * line. The bounded copies are left out: they are compared nowhere.
 */
#pragma once
#include "recording_host.h"
#include <algorithm>
#include <cmath>
#include <cstring>

namespace reference {

using recording::current;
using recording::printed;
using std::string, std::string_view;

inline void report(const char *level, const string &function, const string &text)
{
    current->finish_report();
    const bool logged =
        (current->context.debug_filter.levels >> (*level == 'E' ? DTF_LEVEL_ERR : DTF_LEVEL_TRC) & 1) != 0;
    if (current->context.trace_on != 0)
        current->add_line(level + (' ' + function) + ": " + (logged ? text : text.substr(0, recording::traced)));
    else if (logged)
        current->add_line(level + (' ' + text));
}
inline void trc(const string &function, const string &text) { report("TRC", function, text); }
inline void err(const string &function, const string &text) { report("ERR", function, text); }

/* What "<literal>%d<literal>%d" reads: the numbers up to the first that is none or does not fit 32 bits. The digits are
 * compared as such, so that no number is too long for it. */
inline std::vector<int> scan(const string &text, const std::vector<string> &literals)
{
    std::vector<int> numbers(literals.size(), -1);
    string_view rest = text;
    for (std::size_t i = 0; i < literals.size() && rest.starts_with(literals[i]); ++i) {
        rest.remove_prefix(literals[i].size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
        const bool negative = rest.starts_with('-');
        rest.remove_prefix(negative || rest.starts_with('+') ? 1 : 0);
        const string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
        const string_view counted = digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
        const string_view most = negative ? "2147483648" : "2147483647";
        if (digits.empty() || counted.size() > most.size() || (counted.size() == most.size() && counted > most))
            break;
        numbers[i] = static_cast<int>(std::strtoll(((negative ? "-0" : "0") + string(counted)).c_str(), nullptr, 10));
        rest.remove_prefix(digits.size());
    }
    return numbers;
}

/* ------------------------------------------------------------------------------------------------------- names -- */

inline bool has(const string &text, const char *part) { return text.find(part) != string::npos; }
inline string chmon_name(const string &controller)
{
    const auto numbers = scan(controller.substr(0, 19), {"Ots0/", "/0/"});
    return printed("0/%d-CHMON-%s", numbers[0], numbers[1] == 0 ? "BST" : "PRE").substr(0, 19);
}
inline string controller_name(const string &chmon)
{
    const string copy = chmon.substr(0, 19);
    return printed("Ots0/%d/0/%d", scan(copy, {"0/"})[0], has(copy, "PRE")).substr(0, 19);
}
inline string ingress_port(const string &chmon)
{
    const string prefix = has(chmon, "-CHMON-") ? chmon.substr(0, 3) : "";
    return printed("%s-OtsCtrl-0/%d", prefix.c_str(), has(chmon, "-CHMON-PRE"));
}

/* The check of a controller is the plug-in's own here, as is print_data(); other tests hold them to their answers. */
inline bool controller_is_good(const string &controller)
{
    return check_controller_name_ots_is_good(&current->context, controller.c_str()) != 0;
}

/* ------------------------------------------------------------------------------------------------------- nodes -- */

// clang-format off
/* The nodes of the three models: OpenConfig's, whose walkers map requests, then the two native ones. */
enum id { top, config, state, channels, channel_state, monitor, channel, name, lower, upper, config_name, config_port,
          state_name, state_port, state_lower, state_upper, state_power,
          ots, ports, spectrum, port, slice, port_name, slice_lower, slice_upper, slice_power,
          interfaces, interface, interface_name, ids };

struct facts {
    char kind;                          /* container, list or leaf (f) */
    const char *tag, *part;             /* element; what the names of its functions end with */
    std::vector<id> children{};
    const char *transformation = nullptr; /* which its hook hands over to */
    const char *path = "";              /* of a list, as the framework is told it */
    std::vector<string> keys{};
};
inline const string slice_path = "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info";
inline const facts nodes[ids] = {
    {'c', "channel-monitors", "channelmonitors", {monitor}},
    {'c', "config", "channelmonitors_channelmonitor_config", {config_name, config_port}},
    {'c', "state", "channelmonitors_channelmonitor_state", {state_name, state_port}},
    {'c', "channels", "channelmonitors_channelmonitor_channels", {channel}},
    {'c', "state", "channelmonitors_channel_state", {state_lower, state_upper, state_power}},
    {'l', "channel-monitor", "channelmonitors_channelmonitor", {name, config, state, channels}, "oc_chmon_list_to_low",
     "/channel-monitors/channel-monitor", {"name"}},
    {'l', "channel", "channelmonitors_channels_channel", {lower, upper, channel_state}, nullptr,
     "/channel-monitors/channel-monitor/channels/channel", {"lower-frequency", "upper-frequency"}},
    {'f', "name", "channelmonitors_channelmonitor_name", {}, "chmon_key_to_low"},
    {'f', "lower-frequency", "channelmonitors_channel_lowerfrequency"},
    {'f', "upper-frequency", "channelmonitors_channel_upperfrequency"},
    {'f', "name", "channelmonitors_config_name", {}, "op_chmon_cfg_name_to_low"},
    {'f', "monitor-port", "channelmonitors_config_monitorport", {}, "oc_chmon_cfg_monitor_port_to_low"},
    {'f', "name", "channelmonitors_state_name", {}, "op_chmon_state_name_to_low"},
    {'f', "monitor-port", "channelmonitors_state_monitorport", {}, "oc_chmon_state_monitor_port_to_low"},
    {'f', "lower-frequency", "channelmonitors_state_lowerfrequency"},
    {'f', "upper-frequency", "channelmonitors_state_upperfrequency"},
    {'f', "power", "channelmonitors_state_power", {}, "oc_opt_chmon_state_power_to_low"},
    {'c', "ots-oper", "otsoper", {ports}},
    {'c', "ots-ports", "otsoper_otsports", {port}},
    {'c', "ots-spectrum-info", "otsoper_otsport_otsspectruminfo", {slice}},
    {'l', "ots-port", "otsoper_otsports_otsport", {spectrum, port_name}, "oc_chmon_list_to_high",
     "/ots-oper/ots-ports/ots-port", {"name"}},
    {'l', "spectrum-slice-power-info", "otsoper_otsspectruminfo_spectrumslicepowerinfo",
     {slice_lower, slice_upper, slice_power}, nullptr, slice_path.c_str()},
    {'f', "name", "otsoper_otsport_name", {}, "opt_key_to_high"},
    {'f', "lower-frequency", "otsoper_spectrumslicepowerinfo_lowerfrequency"},
    {'f', "upper-frequency", "otsoper_spectrumslicepowerinfo_upperfrequency"},
    {'f', "rx-power", "otsoper_spectrumslicepowerinfo_rxpower", {}, "oc_opt_chmon_state_power_to_high"},
    {'c', "interface-configurations", "interfaceconfigurations", {interface}},
    {'l', "interface-configuration", "interfaceconfigurations_interfaceconfiguration", {interface_name}, nullptr,
     "/interface-configurations/interface-configuration", {"active", "interface-name"}},
    {'f', "interface-name", "interfaceconfigurations_interfaceconfiguration_interfacename", {}, "op_chmon_cfg_name_to_high"}};
// clang-format on

inline bool is_request(id n) { return n < ots; }
inline const char *ns_of(id n)
{
    return is_request(n)    ? CHMON_NS_OPENCONFIG_CHANNEL_MONITOR
           : n < interfaces ? CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER
                            : CHMON_NS_VANTRA_TALIN_IFMGR_CFG;
}
/* The name of a node's function: "" its walker, "cont_", "list_" or "leaf_" its hook. */
inline string function_name(id n, const string &which = "")
{
    const char *const module_ = is_request(n)    ? "x_oc_opt_ch_mon_openconfigchannelmonitor_"
                                : n < interfaces ? "o_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_"
                                                 : "o_oc_opt_ch_mon_vantratalinifmgrcfg_";
    return string(is_request(n) ? "ymap_o" : "ymap_x") + module_ + which + "lvla_" + nodes[n].part;
}
inline string hook_name(id n)
{
    return function_name(n, nodes[n].kind == 'c' ? "cont_" : nodes[n].kind == 'l' ? "list_" : "leaf_");
}
/* Whether a hook says Start of its own; the interface entry's says nothing at all. */
inline bool hook_starts(id n) { return n != interface && (nodes[n].kind != 'f' || nodes[n].transformation == nullptr); }
inline bool is_key(id list, const dtf_datatree &child)
{
    const auto &keys = nodes[list].keys;
    return child.tag != nullptr && std::count(keys.begin(), keys.end(), child.tag) > 0;
}

/* ------------------------------------------------------------------------------------------------------- hooks -- */

inline faultno add(const string &path, const char *value, const dtf_datatree *source = nullptr, uint32_t entry = 0,
                   uint32_t ninth = 0)
{
    return dtf_map_datatree_add_path_flagged(&current->context, &current->out, path.c_str(),
                                             ns_of(path[1] == 'c'   ? top
                                                   : path[1] == 'o' ? ots
                                                                    : interfaces),
                                             value, source, nullptr, entry, ninth);
}
inline string shown(const char *value) { return string(value == nullptr ? "" : value).substr(0, 199); }

/* A power's number, as the C locale's "%lf" reads it. */
inline double number(const char *value)
{
    double read = 0.0;
    (void)std::sscanf(shown(value).c_str(), "%lf", &read);
    return read;
}
/* Hundredths to a decimal with two places, and back to a truncated count of them; both empty for no value. */
inline string power(const char *value)
{
    return value == nullptr ? "" : printed("%.2f", number(value) / 100).substr(0, 199);
}
inline string native_power(const char *value)
{
    const double count = value == nullptr || std::isnan(number(value)) ? 0 : number(value) * 100;
    return value == nullptr ? "" : printed("%d", static_cast<int>(std::clamp(count, -2147483648.0, 2147483647.0)));
}

/* compare_path_and_return_data() */
inline bool find_value(const dtf_datatree *node, const string &wanted, string path, string &found)
{
    if (node == nullptr)
        return err("compare_path_and_return_data", "return, req is NULL"), false;
    if ((node->flags & DTF_FLAG_VALID) == 0)
        return false;
    path = (path + (node->tag == nullptr ? "" : node->tag)).substr(0, 199);
    if ((node->flags & DTF_FLAG_HAS_VALUE) != 0 && path == wanted)
        return found = shown(node->value), true;
    path = (path + '/').substr(0, 199);
    for (int i = 0; node->children != nullptr && i < static_cast<int>(node->child_count); ++i)
        if (find_value(&node->children[i], wanted, path, found))
            return true;
    return false;
}

inline bool is_read() { return current->request.data_input == 0 || current->request.data_input == 10; }
inline bool is_keyed() { return std::set{1u, 8u, 15u}.contains(current->request.data_input); }
inline bool is_configuration() { return is_keyed() || current->request.data_input == 0; }
inline bool deletes(const dtf_datatree *node) { return node->operation == 3 || node->operation == 4; }

inline const string own_interface = nodes[interface].path, own_port = nodes[port].path,
                    own_monitor = nodes[monitor].path, own_channel = nodes[channel].path;

inline faultno list_to_low(const char *me, const dtf_datatree *in)
{
    print_data(&current->context);
    if (deletes(in))
        return 0;
    string named;
    const dtf_req_ctx &s = current->state;
    find_value(s.hierarchy[0].node_data, own_monitor.substr(1) + "/name", "", named);
    trc(me, printed("data_input= %u", current->request.data_input));
    if (!named.empty() && is_configuration())
        return add(own_interface, nullptr, nullptr, 1);
    if (!named.empty())
        return add(own_port, nullptr, nullptr, 1), add(own_port + "/ots-spectrum-info", nullptr);
    faultno rc = 0;
    for (const char *const *controller = controller_chmon_ots_list; *controller != nullptr; ++controller)
        if (!controller_is_good(*controller)) {
            continue;
        } else if (is_configuration()) {
            add(own_interface, nullptr, in, 1);
            add(own_interface + "/interface-name", *controller, in, 0, 1);
            rc = add(own_interface + "/active", "act", nullptr, 0, 1);
        } else {
            add(own_port, nullptr, nullptr, 1);
            add(own_port + "/name", *controller);
            rc = add(own_port + "/ots-spectrum-info", nullptr);
        }
    return rc;
}

inline faultno name_to_low(id n, const char *me, const dtf_datatree *in)
{
    const dtf_datatree *const source = is_read() ? nullptr : in;
    if (n == name)
        trc(me, "data_input= " + string(in->value == nullptr ? "" : in->value));
    if (in->value == nullptr)
        return 0;
    const string controller = controller_name(in->value);
    if (n == name)
        trc(me, "ctrl_key= " + controller);
    if (n == state_name)
        return add(own_port + "/name", controller.c_str(), source);
    if (!is_read() && deletes(in))
        return 0;
    add(own_interface + "/interface-name", controller.c_str(), source);
    const faultno rc = add(own_interface + "/active", "act", source);
    return n == name && !is_configuration() ? add(own_port + "/name", controller.c_str(), source) : rc;
}

/* opt_key_to_high() cuts the name; op_chmon_cfg_name_to_high() may be told to add nothing. */
inline faultno name_to_high(id n, const char *me, const dtf_datatree *in)
{
    const string container = own_monitor + (n == port_name ? "/state" : "/config"),
                 controller =
                     string(in->value == nullptr ? "" : in->value).substr(0, n == port_name ? 10 : string::npos);
    trc(me, "ctrl_key= " + controller);
    if (!controller_is_good(controller))
        return FAULT_SKIP_ENTRY;
    const string chmon = chmon_name(controller);
    trc(me, "chmon_key= " + chmon);
    if (n == interface_name && current->request.req_option_bits != 0 && current->request.req_scope == 2)
        return 0;
    add(own_monitor + "/name", chmon.c_str());
    add(container + "/name", chmon.c_str());
    return add(container + "/monitor-port", ingress_port(chmon).c_str());
}

inline faultno transformed(id n, const char *me, const dtf_datatree *in)
{
    const char *const value = in->value;
    const dtf_datatree *const deleted = deletes(in) ? in : nullptr;
    // clang-format off
    switch (n) {
    case monitor: return list_to_low(me, in);
    case name: case config_name: case state_name: return name_to_low(n, me, in);
    case state_power:
        if (value != nullptr)
            trc(me, "OC power= " + shown(value)), trc(me, "native power= " + native_power(value));
        return is_read() ? trc(me, "getting chmon power"), add(slice_path + "/rx-power", native_power(value).c_str()) : 0;
    case channel: return add(slice_path, nullptr, deleted, 1);
    case lower: return is_read() ? add(slice_path + '/', value), add(slice_path + "/lower-frequency", value) : 0;
    case state_lower: return is_read() ? add(slice_path + "/lower-frequency", value) : 0;
    case upper: case state_upper: return is_read() ? add(slice_path + "/upper-frequency", value) : 0;
    case port:
        trc(me, printed("ctx->req_ctx->hierarchy_len %d ", current->state.hierarchy_len));
        return deleted != nullptr ? 0 : add(own_monitor, nullptr, nullptr, 1);
    case slice: return add(own_channel, nullptr, deleted, 1);
    case slice_lower: return add(own_channel + "/lower-frequency", value), add(own_channel + "/state/lower-frequency", value);
    case slice_upper: return add(own_channel + "/state/upper-frequency", value), add(own_channel + "/upper-frequency", value);
    case slice_power:
        if (value != nullptr)
            trc(me, "native power= " + shown(value)), trc(me, "OC power= " + power(value));
        return add(own_channel + "/state/power", power(value).c_str());
    case port_name: case interface_name: return name_to_high(n, me, in);
    default: return 0;
    }
    // clang-format on
}

inline faultno hook(id n, const dtf_datatree *in)
{
    const char *const me = nodes[n].transformation;
    if (hook_starts(n))
        trc(hook_name(n), "Start");
    if (me != nullptr)
        trc(me, "Start");
    const faultno rc = transformed(n, me, in);
    if (me != nullptr)
        trc(me, "End");
    return rc;
}

} // namespace reference
