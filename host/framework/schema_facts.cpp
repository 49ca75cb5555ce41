#include "schema_facts.h"

#include "oc_chmon.h"

#include <algorithm>
#include <cstring>

namespace framework {

namespace {

using nodes = std::span<const schema_node>;

constexpr schema_node container(std::string_view tag, nodes children)
{
    return {tag, schema_kind::container, false, children};
}

constexpr schema_node list(std::string_view tag, nodes children) { return {tag, schema_kind::list, false, children}; }

constexpr schema_node key(std::string_view tag) { return {tag, schema_kind::text_leaf, true, {}}; }

constexpr schema_node leaf(std::string_view tag, schema_kind kind = schema_kind::text_leaf)
{
    return {tag, kind, false, {}};
}

/* openconfig-channel-monitor; from the leaves up, since each table names the one below it */
constexpr schema_node oc_channel_state[] = {leaf("lower-frequency"), leaf("upper-frequency"), leaf("power")};
constexpr schema_node oc_channel[] = {key("lower-frequency"), key("upper-frequency"),
                                      container("state", oc_channel_state)};
constexpr schema_node oc_channels[] = {list("channel", oc_channel)};
constexpr schema_node oc_names[] = {leaf("name"), leaf("monitor-port")};
constexpr schema_node oc_monitor[] = {key("name"), container("config", oc_names), container("state", oc_names),
                                      container("channels", oc_channels)};
constexpr schema_node oc_monitors[] = {list("channel-monitor", oc_monitor)};
constexpr schema_node oc_top[] = {container("channel-monitors", oc_monitors)};

/* openconfig-platform: the components that a monitor's name and port refer to */
constexpr schema_node platform_component[] = {key("name")};
constexpr schema_node platform_components[] = {list("component", platform_component)};
constexpr schema_node platform_top[] = {container("components", platform_components)};

/* Vantra-TALIN-controller-kestrel-ots-oper */
constexpr schema_node ots_slice[] = {key("lower-frequency"), key("upper-frequency"),
                                     leaf("rx-power", schema_kind::bare_leaf)};
constexpr schema_node ots_spectrum[] = {list("spectrum-slice-power-info", ots_slice)};
constexpr schema_node ots_port[] = {key("name"), container("ots-spectrum-info", ots_spectrum)};
constexpr schema_node ots_ports[] = {list("ots-port", ots_port)};
constexpr schema_node ots_oper[] = {container("ots-ports", ots_ports)};
constexpr schema_node ots_top[] = {container("ots-oper", ots_oper)};

/* Vantra-TALIN-ifmgr-cfg */
constexpr schema_node interface_entry[] = {key("active"), key("interface-name"), leaf("description"),
                                           leaf("shutdown", schema_kind::empty_leaf),
                                           leaf("mtu", schema_kind::bare_leaf)};
constexpr schema_node interface_list[] = {list("interface-configuration", interface_entry)};
constexpr schema_node interface_top[] = {container("interface-configurations", interface_list)};

constexpr schema_module modules[] = {
    {"openconfig-channel-monitor", CHMON_NS_OPENCONFIG_CHANNEL_MONITOR, oc_top},
    {"Vantra-TALIN-controller-kestrel-ots-oper", CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER, ots_top},
    {"Vantra-TALIN-ifmgr-cfg", CHMON_NS_VANTRA_TALIN_IFMGR_CFG, interface_top},
    {"openconfig-platform", "http://openconfig.net/yang/platform", platform_top},
};

const schema_node *find_node(nodes among, std::string_view tag)
{
    const auto found = std::ranges::find(among, tag, &schema_node::tag);
    return found == among.end() ? nullptr : &*found;
}

/* Top-level names are unique over our modules, so a path needs no namespace. */
const schema_node *find_top_node(std::string_view tag)
{
    for (const schema_module &module : modules)
        if (const schema_node *const found = find_node(module.top, tag))
            return found;
    return nullptr;
}

} // namespace

const schema_node *schema_node::child(std::string_view name) const { return find_node(children, name); }

std::span<const schema_module> schema_modules() { return modules; }

const schema_module *find_module_by_name(std::string_view name)
{
    const auto found = std::ranges::find(modules, name, &schema_module::name);
    return found == std::end(modules) ? nullptr : &*found;
}

const schema_module *find_module_by_namespace(std::string_view ns)
{
    const auto found = std::ranges::find_if(modules, [ns](const schema_module &module) { return ns == module.ns; });
    return found == std::end(modules) ? nullptr : &*found;
}

const schema_node *find_schema_node(std::string_view path)
{
    const schema_node *at = nullptr;
    while (!path.empty() && path != "/") {
        path.remove_prefix(path.front() == '/' ? 1 : 0);
        const std::string_view tag = path.substr(0, path.find('/'));
        path.remove_prefix(tag.size());
        at = at == nullptr ? find_top_node(tag) : at->child(tag);
        if (at == nullptr)
            return nullptr;
    }
    return at;
}

const schema_node *schema_of(const dtf_datatree &node, const dtf_datatree &above, const schema_node *facts_above)
{
    if (above.tag != nullptr)
        return facts_above != nullptr && same_namespace(node.ns, above.ns) ? facts_above->child(node.tag) : nullptr;
    const schema_module *const module = node.ns == nullptr ? nullptr : find_module_by_namespace(node.ns);
    return module == nullptr ? nullptr : find_node(module->top, node.tag);
}

bool same_namespace(const char *a, const char *b)
{
    return a == b || (a != nullptr && b != nullptr && std::strcmp(a, b) == 0);
}

} // namespace framework
