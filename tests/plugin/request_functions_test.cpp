/* Each hook, augment handler and transformation of the request direction by itself: what it says, adds and returns. */
#include "request_model.h"
#include <gtest/gtest.h>
#include <utility>

using namespace request;
using recording::host;

namespace {

const char *const oc = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
const std::string interface = "/interface-configurations/interface-configuration",
                  port = "/ots-oper/ots-ports/ots-port", slice = port + "/ots-spectrum-info/spectrum-slice-power-info";
constexpr uint32_t kinds[] = {0, 1, 2, 8, 10, 15, 16, 17, 32, 42};
constexpr faultno code = 0x1234;

bool is_read(uint32_t kind) { return kind == 0 || kind == 10; }
bool is_configuration(uint32_t kind) { return kind == 0 || kind == 1 || kind == 8 || kind == 15; }

/* How an addition to the output stands among the lines. */
std::string add(const std::string &path, const std::string &value, const std::string &source = "null",
                int created_new = 0, int ninth = 0)
{
    return "add out " + path + (path.starts_with("/ots") ? " ots " : " ifmgr ") + value + " source=" + source +
           recording::printed(" created=0 new=%d ninth=%d\n", created_new, ninth);
}

/* Result and lines of a call with the additions failing from the fail_at-th on, or that one alone. */
struct told {
    faultno rc;
    std::string lines;
    std::size_t calls;
    bool operator==(const told &other) const { return rc == other.rc && lines == other.lines; }
    friend std::ostream &operator<<(std::ostream &to, const told &t)
    {
        return to << std::hex << t.rc << '\n' << t.lines;
    }
};
told tell(plain_function call, host &h, dtf_datatree *in, std::size_t fail_at = 0)
{
    h.fail_at = fail_at;
    h.fail_code = code;
    h.calls = 0;
    h.lines.clear();
    const faultno rc = call(&h.context, in, &h.out);
    std::string lines;
    for (const std::string &line : h.lines) { // those of the inventory, the records and the copies are tested elsewhere
        const std::string word = line.substr(0, line.find(' '));
        const bool elsewhere = line.find("check_controller_name") != std::string::npos ||
                               line.find("ostore_") != std::string::npos ||
                               line.find("get_value_in_parcel") != std::string::npos;
        if (!elsewhere && (word == "TRC" || word == "ERR" || word == "add" || word == "print" || word == "strdup" ||
                           word == "named_free" || word == "error_path"))
            lines += line + '\n';
    }
    const uint8_t recorded = std::exchange(h.state.hierarchy_len, uint8_t{0}); // by the test
    EXPECT_EQ(h.imbalance(), "");
    h.state.hierarchy_len = recorded;
    return {rc, lines, h.calls};
}

/* Expects these lines between Start and End; of several additions only the last one's failure to be returned. */
void expect_additions(plain_function call, const std::string &name, host &h, dtf_datatree *in,
                      const std::string &between, std::size_t additions, bool ends = true)
{
    const std::string lines = "TRC " + name + ": Start\n" + between + (ends ? "TRC " + name + ": End\n" : "");
    const std::string where = recording::printed("kind %u\n", h.request.data_input) + h.dump(in);
    const told plain = tell(call, h, in);
    EXPECT_EQ(plain, (told{0, lines, 0})) << where;
    EXPECT_GE(plain.calls, additions);
    for (std::size_t i = 0; i < additions; ++i)
        EXPECT_EQ(tell(call, h, in, plain.calls - i), (told{i == 0 ? code : 0, lines, 0})) << where;
}

/* Every exported function of the direction: its name, how it is called, whether it says Start before all checks. */
struct exported {
    std::string name, source;
    std::function<faultno(dtf_map_ctx, const dtf_datatree *, dtf_datatree *)> call;
    bool starts;
};
std::vector<exported> all_functions()
{
    std::vector<exported> all = {
        {"oc_chmon_list_to_low", "man", oc_chmon_list_to_low, true},
        {"chmon_key_to_low", "man", chmon_key_to_low, true},
        {"op_chmon_cfg_name_to_low", "man", op_chmon_cfg_name_to_low, true},
        {"oc_chmon_cfg_monitor_port_to_low", "man", oc_chmon_cfg_monitor_port_to_low, true},
        {"op_chmon_state_name_to_low", "man", op_chmon_state_name_to_low, true},
        {"oc_chmon_state_monitor_port_to_low", "man", oc_chmon_state_monitor_port_to_low, true},
        {"oc_opt_chmon_state_power_to_low", "man", oc_opt_chmon_state_power_to_low, true}};
    for (int i = 0; i < node_ids; ++i) {
        const node_facts &node = all_nodes[static_cast<std::size_t>(i)];
        const bool is_leaf = node.augment == nullptr,
                   adds = i == lower || i == upper || i == state_lower || i == state_upper;
        all.push_back({function_prefix + "lvla_" + node.path, "parser", node.walk, true});
        if (node.count_hook != nullptr)
            all.push_back({function_prefix + "cont_lvla_" + node.path, "auto",
                           [hook = node.count_hook](auto ctx, auto in, auto out) { return hook(ctx, in, 3, out); },
                           true});
        else
            all.push_back({function_prefix + (is_leaf ? "leaf_lvla_" : "list_lvla_") + node.path, "auto", node.hook,
                           !is_leaf || adds});
        if (!is_leaf)
            all.push_back(
                {function_prefix + "lvla_" + node.path + "_parse_augments", "augment_man", node.augment, false});
    }
    return all;
}

} // namespace

TEST(request_functions, refuse_missing_arguments)
{
    const auto functions = all_functions();
    EXPECT_EQ(functions.size(), 48u);
    for (const exported &f : functions)
        for (const auto &[given_in, given_out] : {std::pair{false, true}, {true, false}, {false, false}}) {
            host h;
            dtf_datatree *in = h.plant("name@1=0/1-CHMON-PRE", oc);
            EXPECT_EQ(f.call(&h.context, given_in ? in : nullptr, given_out ? &h.out : nullptr), FAULT_INVALID_ARGS);
            EXPECT_EQ(h.text(), (f.starts ? "TRC " + f.name + ": Start\n" : "") + "ERR " + f.name +
                                    ": Invalid arguments passed!\nerror_path null\n");
            EXPECT_EQ(h.imbalance(), "");
        }
    for (const exported &f : functions) // a container hook given both says Start, no more
        if (f.name.find("_cont_lvla_") != std::string::npos) {
            host h;
            EXPECT_EQ(f.call(&h.context, h.plant("a", oc), &h.out), 0u);
            EXPECT_EQ(h.text(), "TRC " + f.name + ": Start\n");
        }
}

TEST(request_functions_death, stop_the_process_without_a_context)
{
    for (const exported &f : all_functions())
        EXPECT_DEATH(f.call(nullptr, nullptr, nullptr),
                     "openconfig_channel_monitor_" + f.source + ".cpp:[0-9]+: faultno " + f.name +
                         "\\(dtf_map_ctx, const.*dtf_datatree.*, .*dtf_datatree.*\\): Assertion .NULL != ctx. failed");
}

TEST(request_functions, augment_handlers_refuse_what_a_request_adds)
{
    for (const node_facts &node : all_nodes)
        for (const uint32_t kind : kinds)
            for (const std::string operation : {"", "@0", "@1", "@2", "@3", "@4"}) {
                if (node.augment == nullptr)
                    continue;
                host h;
                h.request.data_input = kind;
                dtf_datatree *in = h.plant("x:new" + operation, oc);
                h.state.error_tag = dtf_strdup("old", "preset");
                const bool refused = !is_read(kind) && !deletes(in);
                EXPECT_EQ(
                    tell(node.augment, h, in),
                    (told{refused ? FAULT_UNSUPPORTED_AUGMENT : 0,
                          refused ? "named_free \"old\"\nstrdup \"new\" \"DTF MAP\"\nerror_path \"new\"\n" : "", 0}));
                h.context.req_ctx = refused ? nullptr : &h.state; // no request state, no tag to keep
                EXPECT_EQ(node.augment(&h.context, in, &h.out), refused ? FAULT_UNSUPPORTED_AUGMENT : 0);
            }
}

TEST(request_functions, channel_hooks)
{
    const std::vector<std::pair<node_id, std::vector<std::string>>> leaves = {{lower, {"/", "/lower-frequency"}},
                                                                              {upper, {"/upper-frequency"}},
                                                                              {state_lower, {"/lower-frequency"}},
                                                                              {state_upper, {"/upper-frequency"}}};
    for (const uint32_t kind : kinds)
        for (const std::string leaf : {"a=191.3", "a", "a@3=191.3"}) {
            for (const auto &[n, paths] : leaves)
                for (const uint32_t flag : {0u, DTF_FLAG_HAS_VALUE}) { // the value goes as it is, flag or not
                    host h;
                    h.request.data_input = kind;
                    dtf_datatree *in = h.plant(leaf, oc);
                    in->flags ^= flag;
                    std::string adds;
                    for (const std::string &path : paths)
                        adds += is_read(kind) ? add(slice + path, in->value != nullptr ? "\"191.3\"" : "null") : "";
                    expect_additions(all_nodes[n].hook, function_prefix + "leaf_lvla_" + all_nodes[n].path, h, in, adds,
                                     is_read(kind) ? paths.size() : 0, false);
                }
            host h;
            h.request.data_input = kind;
            dtf_datatree *in = h.plant(leaf, oc);
            expect_additions(all_nodes[channel].hook, function_prefix + "list_lvla_" + all_nodes[channel].path, h, in,
                             add(slice, "null", deletes(in) ? "a#0" : "null", 1), 1, false);
        }
}

TEST(request_functions, names_and_monitor_ports)
{
    for (const uint32_t kind : kinds)
        for (const std::string operation : {"", "@0", "@1", "@2", "@3", "@4"})
            for (const std::string value : {"", "=0/2-CHMON-PRE", "=%s%n"}) {
                host h;
                h.request.data_input = kind;
                dtf_datatree *in = h.plant("name" + operation + value, oc);
                const bool none = value.empty() || (!is_read(kind) && deletes(in));
                const std::string source = is_read(kind) ? "null" : "name#0";
                const std::string controller = value == "=%s%n" ? "Ots0/-1/0/0" : "Ots0/2/0/1",
                                  text = '"' + controller + '"';
                const std::string both = none ? ""
                                              : add(interface + "/interface-name", text, source) +
                                                    add(interface + "/active", "\"act\"", source);
                const std::string ots = value.empty() ? "" : add(port + "/name", text, source);
                const bool with_port = !none && !is_configuration(kind);
                const std::string traces =
                    "TRC chmon_key_to_low: data_input= " + value.substr(value.empty() ? 0 : 1) + '\n' +
                    (value.empty() ? "" : "TRC chmon_key_to_low: ctrl_key= " + controller + '\n');
                expect_additions(chmon_key_to_low, "chmon_key_to_low", h, in, traces + both + (with_port ? ots : ""),
                                 none        ? 0
                                 : with_port ? 3
                                             : 2);
                expect_additions(op_chmon_cfg_name_to_low, "op_chmon_cfg_name_to_low", h, in, both, none ? 0 : 2);
                expect_additions(op_chmon_state_name_to_low, "op_chmon_state_name_to_low", h, in, ots, !value.empty());
                expect_additions(oc_chmon_cfg_monitor_port_to_low, "oc_chmon_cfg_monitor_port_to_low", h, in, "", 0);
                expect_additions(oc_chmon_state_monitor_port_to_low, "oc_chmon_state_monitor_port_to_low", h, in, "",
                                 0);
            }
}

TEST(request_functions, list_entries)
{
    const std::string trees[] = {"channel-monitors",
                                 "channel-monitors{channel-monitor{config{name=0/1-CHMON-PRE} name}}",
                                 "channel-monitors{channel-monitor{} channel-monitor{config name=0/1-CHMON-PRE}}", ""};
    for (const uint32_t kind : kinds)
        for (const std::string &tree : trees)
            for (const std::size_t present : {0u, 1u, 6u})
                for (const std::string operation : {"", "@1", "@3", "@4"}) {
                    std::vector<std::string> inventory;
                    for (const char *const *controller = controller_chmon_ots_list; inventory.size() < present;
                         ++controller)
                        inventory.push_back(std::string("0/") + (*controller)[5] +
                                            ((*controller)[9] == '1' ? "-CHMON-PRE" : "-CHMON-BST"));
                    host h(inventory);
                    h.request.data_input = kind;
                    if (!tree.empty()) {
                        h.state.hierarchy[0].node_data = h.plant(tree, oc);
                        h.state.hierarchy_len = 1;
                    }
                    dtf_datatree *in = h.plant("entry" + operation, oc);
                    h.state.parent_node = in;
                    std::string lines =
                        tree.empty() ? "" : "TRC print_data: iteration 0\nprint channel-monitors#0 node_data\n";
                    lines += "print null root_node\nprint " + h.name(in) +
                             " parent_node\nprint null current_node\n"
                             "print null reg_dup_datatree\nprint null plist\n";
                    if (!deletes(in) && tree.empty())
                        lines += "ERR compare_path_and_return_data: return, req is NULL\n";
                    if (!deletes(in))
                        lines += recording::printed("TRC oc_chmon_list_to_low: data_input= %u\n", kind);
                    const bool named = tree == trees[2], configuration = is_configuration(kind);
                    const std::string named_adds =
                        configuration ? add(interface, "null", "null", 1)
                                      : add(port, "null", "null", 1) + add(port + "/ots-spectrum-info", "null");
                    for (std::size_t i = 0; i < (deletes(in) ? 0 : named ? 1 : present); ++i) {
                        const std::string text = '"' + std::string(controller_chmon_ots_list[i]) + '"';
                        lines += named           ? named_adds
                                 : configuration ? add(interface, "null", h.name(in), 1) +
                                                       add(interface + "/interface-name", text, h.name(in), 0, 1) +
                                                       add(interface + "/active", "\"act\"", "null", 0, 1)
                                                 : add(port, "null", "null", 1) + add(port + "/name", text) +
                                                       add(port + "/ots-spectrum-info", "null");
                    }
                    const std::size_t last = named ? (configuration ? 1 : 2) : present == 6 ? 3 : 0;
                    expect_additions(
                        [](dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *out) {
                            const faultno rc = oc_chmon_list_to_low(ctx, node, out);
                            EXPECT_EQ(ctx->data_printed, 1u);
                            return rc;
                        },
                        "oc_chmon_list_to_low", h, in, lines, deletes(in) ? 0 : last);
                }
}

TEST(request_functions, power)
{
    const std::pair<std::string, std::string> values[] = {
        {"-12.34", "-1234"},
        {"-4.35", "-434"},
        {"0.29", "28"},
        {"-0.004", "0"},
        {"", "0"},
        {"abc", "0"},
        {"-", "0"},
        {"-.e1", "0"},
        {"1e3", "100000"},
        {"%s%n", "0"},
        {"7dBm", "700"},
        {"nan", "0"},
        {"inf", "2147483647"},
        {"-1e308", "-2147483648"},
        {"0x10", "1600"},
        {std::string(250, '1'), "2147483647"},
        {"21474836.47", "2147483647"},
        {"21474836.48", "2147483647"},
        {"-21474836.48", "-2147483648"},
    };
    for (const uint32_t kind : kinds)
        for (const auto &[value, native] : values) {
            host h;
            h.request.data_input = kind;
            dtf_datatree *in = h.plant("power@3=" + value, oc);
            const std::string self = "TRC oc_opt_chmon_state_power_to_low: ";
            const auto reading = [&](const std::string &text) {
                return is_read(kind) ? self + "getting chmon power\n" + add(slice + "/rx-power", '"' + text + '"') : "";
            };
            expect_additions(oc_opt_chmon_state_power_to_low, "oc_opt_chmon_state_power_to_low", h, in,
                             self + "OC power= " + value.substr(0, 199) + '\n' + self + "native power= " + native +
                                 '\n' + reading(native),
                             is_read(kind));
            host empty;
            empty.request.data_input = kind;
            expect_additions(oc_opt_chmon_state_power_to_low, "oc_opt_chmon_state_power_to_low", empty,
                             empty.plant("power", oc), reading(""), is_read(kind));
        }
}
