/*
 * What the plug-in shall do, told a second time in the shortest form: names, inventory, records and the walk over the
 * two native models. It calls the recording double as the plug-in does, so that two runs compare line by line. The
 * bounded copies are left out: they are compared nowhere.
 */
#pragma once
#include "recording_host.h"
#include <algorithm>
#include <cstring>

namespace reference {

using recording::current;
using recording::printed;
using std::string;

inline void report(const char *level, const string &function, const string &text)
{
    current->finish_report();
    if (current->context.trace_on != 0)
        current->lines.push_back(level + (' ' + function) + ": " + text);
    else if (current->context.debug_filter.levels >> (*level == 'E' ? DTF_LEVEL_ERR : DTF_LEVEL_TRC) & 1)
        current->lines.push_back(level + (' ' + text));
}
inline void trc(const string &function, const string &text) { report("TRC", function, text); }
inline void err(const string &function, const string &text) { report("ERR", function, text); }
inline faultno invalid(const string &function)
{
    err(function, "Invalid arguments passed!");
    dtf_oc_error_path(&current->context);
    return FAULT_INVALID_ARGS;
}

/* What "<literal>%d<literal>%d" reads: the numbers up to the first that is none or does not fit 32 bits. */
inline std::vector<int> scan(const string &text, const std::vector<string> &literals)
{
    std::vector<int> numbers(literals.size(), -1);
    std::size_t at = 0;
    for (std::size_t i = 0; i < literals.size() && text.compare(at, literals[i].size(), literals[i]) == 0; ++i) {
        at = text.find_first_not_of(" \t\n\v\f\r", at + literals[i].size());
        const bool sign = at < text.size() && (text[at] == '-' || text[at] == '+'), minus = sign && text[at] == '-';
        const std::size_t digits = at + sign, end = std::min(text.find_first_not_of("0123456789", digits), text.size());
        int64_t value = 0;
        for (std::size_t d = digits; at != string::npos && d < end && value < 1'000'000'000'000; ++d)
            value = value * 10 + (text[d] - '0');
        value = minus ? -value : value;
        if (at == string::npos || digits >= end || value > INT32_MAX || value < INT32_MIN)
            break;
        numbers[i] = static_cast<int>(value);
        at = end;
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

/* --------------------------------------------------------------------------------------- records and inventory -- */

inline void convert(const parcel_token_td &token, string &output)
{
    const auto text = [](const char *given) { return string(given == nullptr ? "" : given).substr(0, 199); };
    // clang-format off
    switch (token.type) {
    case 0: output = std::to_string(token.value.i8); break;
    case 1: output = std::to_string(token.value.u8); break;
    case 2: output = std::to_string(token.value.i16); break;
    case 3: output = std::to_string(token.value.u16); break;
    case 4: case 9: output = std::to_string(token.value.i32); break;
    case 5: output = std::to_string(token.value.u32); break;
    case 8: output = inet_ntoa_r(token.value.ipv4); break;
    case 10: output = token.value.boolean != 0 ? "TRUE" : "FALSE"; break;
    case 12: output = text(token.value.text); break;
    case 13: output = text(token.second_text); break;
    default: trc("convert_parcel_value_to_str", printed("UNKNOWN TOKEN TYPE %d - ERROR]\n", static_cast<int>(token.type)));
    }
    // clang-format on
}

inline faultno get_value(const string &field, uint32_t wanted, const void *parcel, uint32_t length, string &output)
{
    const char *const me = "get_value_in_parcel";
    const auto failed = [me](const char *what, faultno rc) {
        trc(me, string(what) + " failed: " + fault_strerror(rc));
        return rc;
    };
    trc(me, "Start");
    std::vector<string> names;
    for (std::size_t at = 0, end = 0; (at = field.find_first_not_of('.', end)) != string::npos;
         names.push_back(field.substr(at, end - at)))
        end = std::min(field.find('.', at), field.size());
    if (names.empty() || names.size() > 10 || field.size() > 199)
        return FAULT_INVALID_ARGS;
    parcel_header_td header{};
    parcel_walk_td walk{};
    parcel_token_td token{};
    if (parcel == nullptr)
        return trc(me, "NULL == parcel_data"), 0xffffffff;
    if (const faultno rc = parcel_header_info(parcel, &header))
        return failed("parcel_header_info", rc);
    trc(me, printed("[parcel (len %u)] \t (%s v%d.%d)", length, header.schema, header.major, header.minor));
    if (const faultno rc = parcel_generic_init(parcel, length, &walk))
        return failed("parcel_generic_init", rc);
    faultno rc = 0;
    for (std::size_t met = 0; met < names.size() && token.type != 18;) {
        if ((rc = parcel_generic_token(&walk, &token)) != 0) {
            failed("parcel_generic_token", rc);
            break;
        }
        met += (token.field_name == nullptr ? "" : token.field_name) == names[met];
        parcel_token_td inner{};
        for (bool more = met == names.size() && token.type == 14; more;) {
            more = (rc = parcel_generic_token(&walk, &inner)) == 0 && inner.type != wanted && inner.type != 15;
            if (rc == 0 && inner.type == wanted)
                convert(inner, output);
            if (rc == 0)
                parcel_generic_free_token_allocations(&inner);
            else
                failed("parcel_generic_token", rc);
        }
        if (met == names.size() && token.type != 14)
            convert(token, output);
        parcel_generic_free_token_allocations(&token);
    }
    trc(me, "parcel_generic_destroy");
    parcel_generic_destroy(&walk);
    return rc;
}

/* The client library is taken to have been found. */
inline faultno get_data(const char *bind_path, const string &item, void **data, uint32_t *length)
{
    const char *const me = "ostore_get_data";
    trc(me, "path " + item);
    void *handle = nullptr;
    uint32_t word = 7;
    if (const faultno rc = _ostore_bind(&handle, bind_path, 0))
        return trc(me, string("ostore_bind failed ") + fault_strerror(rc)), rc;
    faultno rc = 0;
    if (handle != nullptr) {
        rc = ostore_item_get(handle, item.c_str(), &word, data, length, 0);
        if (rc != 0)
            trc(me, string("ostore_item_get failed: ") + fault_strerror(rc));
        trc(me, "ostore_unbind");
        _ostore_unbind(handle);
    }
    return trc(me, "return"), rc;
}

inline faultno inventory_name(const string &chmon, string &output)
{
    const char *const me = "ostore_get_amp_name_from_inventory";
    trc(me, "chmon_name_key " + chmon);
    string entity = chmon;
    if (has(chmon, "/"))
        entity.replace(chmon.find('/'), 1, "%2f");
    void *data = nullptr;
    uint32_t length = 0;
    const auto item = (entity + "/attrib/inv_basic_parcel").substr(0, 255);
    faultno rc = get_data("/oper/inventory/gl/entity/", item, &data, &length);
    if (rc != 0)
        trc(me, "rc != FAULT_SUCCESS");
    else
        rc = get_value("inv_phy_entity_basic_info.Name", 12, data, length, output);
    std::free(data);
    return rc;
}

inline bool controller_is_good(const string &name)
{
    const char *const me = "check_controller_name_ots_is_good", *const n = name.c_str();
    const auto numbers = scan(name, {"Ots0/", "/0/"});
    const int slot = numbers[0], port = numbers[1];
    trc(me, "controller_name = " + name);
    if (port != 0 && port != 1)
        return err(me, printed("Invalid controller_name [%s] and port id [%d], discard it!", n, port)), false;
    if (slot < 0 || slot > 3)
        return err(me, printed("Invalid controller_name [%s] and slot id [%d], discard it!", n, slot)), false;
    const string chmon = printed("0/%d-CHMON-%s", slot, port == 1 ? "PRE" : "BST");
    string output;
    const bool good = inventory_name(chmon, output) == 0;
    if (!good)
        err(me, "Chmon_name [" + chmon + "] is not present in ostore inventory, discard it!");
    return good;
}

/* ------------------------------------------------------------------------------------------------- native walks -- */

struct facts {
    string part;   /* of the name, behind lvla_ */
    char kind;     /* container, list, leaf */
    string path{}; /* of a list, as the framework is told it */
    std::vector<string> keys{};
    std::vector<std::pair<string, string>> children{}; /* tag, part */
};

struct model {
    string module_;
    const char *ns;
    bool gated; /* children for request kind 10 only */
    std::vector<facts> nodes;
    string prefix() const { return "ymap_xo_oc_opt_ch_mon_" + module_ + '_'; }
    string walker(const facts &f) const { return prefix() + "lvla_" + f.part; }
    string hook(const facts &f) const
    {
        return prefix() + (f.kind == 'c' ? "cont" : f.kind == 'l' ? "list" : "leaf") + "_lvla_" + f.part;
    }
    const facts &at(const string &part) const
    {
        return *std::find_if(nodes.begin(), nodes.end(), [&](const facts &f) { return f.part == part; });
    }
};

// clang-format off
inline const model ots = {
    "vantratalincontrollerkestrelotsoper", CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER, true,
    {{"otsoper", 'c', "", {}, {{"ots-ports", "otsoper_otsports"}}},
     {"otsoper_otsports", 'c', "", {}, {{"ots-port", "otsoper_otsports_otsport"}}},
     {"otsoper_otsports_otsport", 'l', "/ots-oper/ots-ports/ots-port", {"name"},
      {{"ots-spectrum-info", "otsoper_otsport_otsspectruminfo"}, {"name", "otsoper_otsport_name"}}},
     {"otsoper_otsport_otsspectruminfo", 'c', "", {},
      {{"spectrum-slice-power-info", "otsoper_otsspectruminfo_spectrumslicepowerinfo"}}},
     {"otsoper_otsspectruminfo_spectrumslicepowerinfo", 'l',
      "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info", {},
      {{"lower-frequency", "otsoper_spectrumslicepowerinfo_lowerfrequency"},
       {"upper-frequency", "otsoper_spectrumslicepowerinfo_upperfrequency"},
       {"rx-power", "otsoper_spectrumslicepowerinfo_rxpower"}}},
     {"otsoper_otsport_name", 'f'}, {"otsoper_spectrumslicepowerinfo_lowerfrequency", 'f'},
     {"otsoper_spectrumslicepowerinfo_upperfrequency", 'f'}, {"otsoper_spectrumslicepowerinfo_rxpower", 'f'}}};
inline const model ifmgr = {
    "vantratalinifmgrcfg", CHMON_NS_VANTRA_TALIN_IFMGR_CFG, false,
    {{"interfaceconfigurations", 'c', "", {},
      {{"interface-configuration", "interfaceconfigurations_interfaceconfiguration"}}},
     {"interfaceconfigurations_interfaceconfiguration", 'l', "/interface-configurations/interface-configuration",
      {"active", "interface-name"},
      {{"interface-name", "interfaceconfigurations_interfaceconfiguration_interfacename"}}},
     {"interfaceconfigurations_interfaceconfiguration_interfacename", 'f'}}};
// clang-format on

inline faultno add(const string &path, const char *value, const dtf_datatree *source = nullptr, uint32_t new_entry = 0)
{
    return dtf_map_datatree_add_path_flagged(&current->context, &current->out,
                                             ("/channel-monitors/channel-monitor" + path).c_str(),
                                             CHMON_NS_OPENCONFIG_CHANNEL_MONITOR, value, source, nullptr, new_entry, 0);
}

/* Native hundredths as a decimal with two places; empty for none. */
inline string power(const char *value)
{
    double number = 0.0;
    if (value != nullptr)
        (void)std::sscanf(string(value).substr(0, 199).c_str(), "%lf", &number);
    return value == nullptr ? "" : printed("%.2f", number / 100).substr(0, 199);
}

/* op_chmon_cfg_name_to_high() and opt_key_to_high(): the second cuts the name, the first may be told to add nothing. */
inline faultno name_to_high(const char *me, const dtf_datatree *in, const char *container, std::size_t limit, bool adds)
{
    const string controller = string(in->value == nullptr ? "" : in->value).substr(0, limit);
    trc(me, "Start");
    trc(me, "ctrl_key= " + controller);
    faultno rc = FAULT_SKIP_ENTRY;
    if (controller_is_good(controller)) {
        const string chmon = chmon_name(controller);
        trc(me, "chmon_key= " + chmon);
        rc = 0;
        if (adds) {
            (void)add("/name", chmon.c_str());
            (void)add(string(container) + "/name", chmon.c_str());
            rc = add(string(container) + "/monitor-port", ingress_port(chmon).c_str());
        }
    }
    return trc(me, "End"), rc;
}

inline faultno hook(const model &m, const facts &f, const dtf_datatree *in)
{
    const auto &request = current->request;
    if (f.kind == 'c' || (f.kind == 'l' && &m == &ots) || has(f.part, "frequency"))
        trc(m.hook(f), "Start");
    if (f.part == "otsoper_otsports_otsport") {
        const char *const me = "oc_chmon_list_to_high";
        trc(me, "Start");
        trc(me, printed("ctx->req_ctx->hierarchy_len %d ", current->state.hierarchy_len));
        const faultno rc = dtf_map_is_request_delete(in) ? 0 : add("", nullptr, nullptr, 1);
        return trc(me, "End"), rc;
    }
    if (f.part == "otsoper_otsspectruminfo_spectrumslicepowerinfo")
        return add("/channels/channel", nullptr, dtf_map_is_request_delete(in) ? in : nullptr, 1);
    if (f.part == "otsoper_spectrumslicepowerinfo_lowerfrequency")
        return (void)add("/channels/channel/lower-frequency", in->value),
               add("/channels/channel/state/lower-frequency", in->value);
    if (f.part == "otsoper_spectrumslicepowerinfo_upperfrequency")
        return (void)add("/channels/channel/state/upper-frequency", in->value),
               add("/channels/channel/upper-frequency", in->value);
    if (f.part == "otsoper_spectrumslicepowerinfo_rxpower") {
        const char *const me = "oc_opt_chmon_state_power_to_high";
        trc(me, "Start");
        if (in->value != nullptr) {
            trc(me, "native power= " + string(in->value).substr(0, 199));
            trc(me, "OC power= " + power(in->value));
        }
        const faultno rc = add("/channels/channel/state/power", power(in->value).c_str());
        return trc(me, "End"), rc;
    }
    if (f.part == "otsoper_otsport_name")
        return name_to_high("opt_key_to_high", in, "/state", 10, true);
    if (f.kind == 'f')
        return name_to_high("op_chmon_cfg_name_to_high", in, "/config", 10000,
                            request.req_option_bits == 0 || request.req_scope != 2);
    return 0;
}

inline faultno walk(const model &m, const facts &f, const dtf_datatree *in)
{
    const string me = m.walker(f);
    dtf_map_ctx ctx = &current->context;
    trc(me, "Start");
    if (f.kind == 'f') {
        if ((in->flags & DTF_FLAG_ERROR_KIND) != 0 && in->error_kind == 5) {
            trc(me, "got xpath error node ");
            current->state.req_flags |= 0x100;
        }
        const faultno rc = hook(m, f, in);
        return trc(me, "End"), rc;
    }
    const uint32_t count = (in->flags & DTF_FLAG_HAS_SUBTREE) != 0 ? in->child_count : 0;
    if (count > 0 && in->children == nullptr)
        return err(me, "Failed to get subtrees!"), trc(me, "End"), FAULT_TREE_ERROR;
    if (f.kind == 'l' && count == 0)
        err(me, "No keys specified with a list node.");
    dtf_map_add_to_node_hierarchy(ctx, in, f.kind == 'c' ? DTF_HIER_CONTAINER : DTF_HIER_LIST);
    const auto mark = [&](dtf_datatree &child) {
        if (child.tag != nullptr && std::count(f.keys.begin(), f.keys.end(), child.tag) > 0)
            child.is_key = 1, child.flags |= DTF_FLAG_KEY;
    };
    const faultno r = f.kind == 'l' ? dtf_map_update_current_list_node(ctx, f.path.c_str()) : 0;
    for (uint32_t i = 0; r == 0 && i < count; ++i)
        mark(in->children[i]);
    faultno rc = r != 0 ? r : hook(m, f, in);
    const uint8_t before = current->state.output_list_len;
    if (f.kind == 'l' && r == 0 && rc == FAULT_SKIP_ENTRY)
        return dtf_map_remove_from_node_hierarchy(ctx, in), trc(me, "End"), rc;
    if (f.kind == 'l')
        dtf_add_to_output_list_ctx(ctx, in, &current->out);
    const bool grew = before < current->state.output_list_len;
    for (uint32_t i = 0; rc == 0 && i < count; ++i) {
        const dtf_datatree &child = in->children[i];
        const auto known = std::find_if(f.children.begin(), f.children.end(), [&](const auto &c) {
            return child.tag != nullptr && c.first == child.tag && (!m.gated || current->request.data_input == 10);
        });
        if (child.tag == nullptr)
            err(me, "Tag name is not available!"), rc = FAULT_TREE_ERROR;
        else if (known != f.children.end()) {
            const facts &next = m.at(known->second);
            rc = walk(m, next, &child);
            if (f.kind == 'c' && next.kind == 'l' && rc == FAULT_SKIP_ENTRY)
                rc = 0;
        } else if (child.ns != nullptr && std::strcmp(child.ns, m.ns) == 0)
            trc(me, string("Unsupported tag `") + child.tag + "`. Ignoring.");
    }
    dtf_map_remove_from_node_hierarchy(ctx, in);
    if (grew)
        dtf_remove_from_output_list_ctx(ctx, in, &current->out);
    return trc(me, "End"), rc;
}

} // namespace reference
