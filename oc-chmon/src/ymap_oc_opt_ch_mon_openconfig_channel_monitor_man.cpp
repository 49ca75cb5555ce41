/* Transformations of requests: which native paths the framework must read or write for an OpenConfig node. */
#include "add_path.h"
#include "entry.h"
#include "number.h"
#include "oc_chmon.h"
#include "request_kind.h"
#include "text_size.h"

namespace {

constexpr const char *ifmgr_namespace = CHMON_NS_VANTRA_TALIN_IFMGR_CFG;
constexpr const char *ots_namespace = CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER;

constexpr const char *interface_entry = "/interface-configurations/interface-configuration";
constexpr const char *interface_name = "/interface-configurations/interface-configuration/interface-name";
constexpr const char *interface_active = "/interface-configurations/interface-configuration/active";
constexpr const char *port_entry = "/ots-oper/ots-ports/ots-port";
constexpr const char *port_name = "/ots-oper/ots-ports/ots-port/name";
constexpr const char *port_spectrum = "/ots-oper/ots-ports/ots-port/ots-spectrum-info";
constexpr const char *slice_power = "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info/rx-power";

/* Value of the key `active` of every configured interface. */
constexpr const char *active_value = "act";

/* Native power counts hundredths of the OpenConfig unit. */
constexpr double hundredths = 100.0;

/* The source node of what a request leaf adds: none in a read. */
const dtf_datatree *source_of(dtf_map_ctx ctx, const dtf_datatree *leaf) { return is_read(ctx) ? NULL : leaf; }

/* Reads are mapped whatever operation their nodes carry. */
bool is_deleted(dtf_map_ctx ctx, const dtf_datatree *leaf)
{
    return !is_read(ctx) && 0 != dtf_map_is_request_delete(leaf);
}

faultno add_interface(dtf_map_ctx ctx, dtf_datatree *out, const char *controller_name, const dtf_datatree *source)
{
    (void)add_path(ctx, out, ifmgr_namespace, interface_name, controller_name, source);
    return add_path(ctx, out, ifmgr_namespace, interface_active, active_value, source);
}

/* One controller of a whole-list request, with its keys. */
faultno add_whole_interface(dtf_map_ctx ctx, dtf_datatree *out, const char *controller_name, const dtf_datatree *source)
{
    (void)add_list_entry(ctx, out, ifmgr_namespace, interface_entry, source);
    (void)add_entry_key(ctx, out, ifmgr_namespace, interface_name, controller_name, source);
    return add_entry_key(ctx, out, ifmgr_namespace, interface_active, active_value);
}

faultno add_whole_port(dtf_map_ctx ctx, dtf_datatree *out, const char *controller_name)
{
    (void)add_list_entry(ctx, out, ots_namespace, port_entry);
    (void)add_path(ctx, out, ots_namespace, port_name, controller_name);
    return add_path(ctx, out, ots_namespace, port_spectrum, NULL);
}

/* Every monitor of the device. */
faultno add_whole_list(dtf_map_ctx ctx, const dtf_datatree *in, dtf_datatree *out)
{
    faultno rc = FAULT_SUCCESS;
    for (const char *const *name = controller_chmon_ots_list; NULL != *name; ++name) {
        if (1 == check_controller_name_ots_is_good(ctx, *name)) {
            rc = is_configuration(ctx) ? add_whole_interface(ctx, out, *name, in) : add_whole_port(ctx, out, *name);
        }
    }
    return rc;
}

/* The entry of a request that names a monitor; its key comes with the name leaf. */
faultno add_named_entry(dtf_map_ctx ctx, dtf_datatree *out)
{
    if (is_configuration(ctx)) {
        return add_list_entry(ctx, out, ifmgr_namespace, interface_entry);
    }
    (void)add_list_entry(ctx, out, ots_namespace, port_entry);
    return add_path(ctx, out, ots_namespace, port_spectrum, NULL);
}

/* Whether the request names a monitor anywhere; the search starts at the root of the request, which was recorded first:
 * within a walk there always is one. */
bool names_monitor(dtf_map_ctx ctx)
{
    char path[value_size] = {};
    char name[value_size] = {};
    const dtf_datatree *root = ctx->req_ctx->hierarchy[0].node_data;
    (void)compare_path_and_return_data(ctx, root, "channel-monitors/channel-monitor/name", path, name);
    return '\0' != name[0];
}

} // namespace

faultno oc_chmon_list_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    print_data(ctx);
    faultno rc = FAULT_SUCCESS;
    if (0 == dtf_map_is_request_delete(in)) {
        const bool named = names_monitor(ctx);
        DTF_TRC(ctx, "data_input= %d", static_cast<int>(request_kind(ctx)));
        rc = named ? add_named_entry(ctx, out) : add_whole_list(ctx, in, out);
    }
    LEAVE(ctx, rc);
}

faultno chmon_key_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char controller_name[name_size] = {};
    ENTER(ctx, in, out);
    DTF_TRC(ctx, "data_input= %s", NULL == in->value ? "" : in->value);
    if (NULL == in->value) {
        LEAVE(ctx, FAULT_SUCCESS);
    }
    convert_oc_key_to_controller_key(in->value, controller_name);
    DTF_TRC(ctx, "ctrl_key= %s", controller_name);
    faultno rc = FAULT_SUCCESS;
    if (!is_deleted(ctx, in)) {
        const dtf_datatree *source = source_of(ctx, in);
        rc = add_interface(ctx, out, controller_name, source);
        if (!is_configuration(ctx)) {
            rc = add_path(ctx, out, ots_namespace, port_name, controller_name, source);
        }
    }
    LEAVE(ctx, rc);
}

faultno op_chmon_cfg_name_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char controller_name[name_size] = {};
    ENTER(ctx, in, out);
    faultno rc = FAULT_SUCCESS;
    if (NULL != in->value) {
        convert_oc_key_to_controller_key(in->value, controller_name);
        if (!is_deleted(ctx, in)) {
            rc = add_interface(ctx, out, controller_name, source_of(ctx, in));
        }
    }
    LEAVE(ctx, rc);
}

faultno op_chmon_state_name_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char controller_name[name_size] = {};
    ENTER(ctx, in, out);
    faultno rc = FAULT_SUCCESS;
    if (NULL != in->value) {
        convert_oc_key_to_controller_key(in->value, controller_name);
        rc = add_path(ctx, out, ots_namespace, port_name, controller_name, source_of(ctx, in));
    }
    LEAVE(ctx, rc);
}

faultno oc_chmon_cfg_monitor_port_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    LEAVE(ctx, FAULT_SUCCESS);
}

faultno oc_chmon_state_monitor_port_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    ENTER(ctx, in, out);
    LEAVE(ctx, FAULT_SUCCESS);
}

faultno oc_opt_chmon_state_power_to_low(dtf_map_ctx ctx, const struct dtf_datatree *in, struct dtf_datatree *out)
{
    char power[value_size] = {};
    ENTER(ctx, in, out);
    if (NULL != in->value) {
        (void)dtf_strcpy_s(__func__, power, sizeof power, in->value);
        DTF_TRC(ctx, "OC power= %s", power);
        (void)snprintf(power, sizeof power, "%d", truncate_to_int32(read_number(power) * hundredths));
        DTF_TRC(ctx, "native power= %s", power);
    }
    faultno rc = FAULT_SUCCESS;
    if (is_read(ctx)) {
        DTF_TRC(ctx, "getting chmon power");
        rc = add_path(ctx, out, ots_namespace, slice_power, power);
    }
    LEAVE(ctx, rc);
}
