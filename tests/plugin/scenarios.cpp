#include "scenarios.h"
#include <dlfcn.h>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace recording {

using namespace reference;

namespace {

/* ------------------------------------------------------------------------------------------------- generation -- */

struct dice {
    std::mt19937 engine;
    uint32_t operator()(std::size_t sides) { return static_cast<uint32_t>(engine() % sides); }
    bool one_in(uint32_t n) { return (*this)(n) == 0; }
    template <typename T> T pick(std::initializer_list<T> of) { return of.begin()[(*this)(of.size())]; }
};

/* A tree below one node, as text: children none, keys alone, some, or most, and now and then strange ones. */
string grow(dice &d, id n)
{
    const facts &f = nodes[n];
    string text = d.one_in(40) ? "x:" : d.one_in(60) ? "-:" : "";
    text += d.one_in(80) ? "extra" : f.tag;
    if (d.one_in(f.kind == 'l' ? 3 : f.kind == 'f' ? 8 : 5))
        text += "@" + std::to_string(d.one_in(3) ? 1 : d(5));
    if (f.kind == 'f' && is_request(n))
        return text + (d.one_in(3) ? "" : d.pick({"=0/1-CHMON-PRE", "=0/2-CHMON-BST", "=-4.35", "=%s%n", "="}));
    if (f.kind == 'f')
        return text + (d.one_in(5) ? "" : d.pick({"=Ots0/2/0/1", "=Ots0/3/0/00", "=Ots0/9/0/1", "=-435", "=%s%n"}));
    const uint32_t fill = d(5);
    if (fill == 0)
        return text + (d.one_in(4) ? "{}" : "");
    text += '{';
    for (const id child : f.children)
        for (uint32_t copies = d.one_in(12) || (nodes[child].kind == 'l' && d.one_in(2)) ? 2 : 1; copies > 0; --copies)
            if (nodes[child].kind == 'f' && f.kind == 'l' ? !d.one_in(fill == 4 ? 2 : 6) : fill > 1 && !d.one_in(fill))
                text += grow(d, child) + ' ';
    for (const char *strange : {"%s%n", "x:extra", "-:extra", "?", "config", "name"})
        if (d.one_in(30))
            text += strange + string(d.one_in(4) ? "@3 " : " ");
    return text + '}';
}

faultno callback(dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *out, uint32_t reserved)
{
    current->note("callback", node, reserved, ctx == &current->context && out == &current->out);
    return 0x77;
}

/* What is odd about a generated request beside its tree. */
void preset(host &h, dice &d)
{
    if (d.one_in(3))
        oddities[d(oddities.size())](*h.nodes[d.one_in(2) ? 0 : d(h.nodes.size())]);
    if (d.one_in(8)) {
        h.state.expand_mode = d.pick({0u, 1u, 1u, 2u});
        h.state.delete_walk = d(3);
        h.state.filter_flags = d.pick({0u, 1u, 2u, 4u, 5u, 0x10007u, 0xffffffffu});
        h.state.req_flags = d.pick({0u, 0x40u, 0x80u, 0x1c0u});
        h.state.replace_pending = d(2);
    }
    if (d.one_in(20))
        h.context.trace_on = 0x80000000;
    if (d.one_in(4))
        h.state.error_tag = dtf_strdup("old", "preset");
    if (d.one_in(8))
        h.leafref = 0x4455;
    if (d.one_in(8))
        h.request.req_option_bits = 4, h.request.req_scope = d(3);
    if (d.one_in(8))
        h.state.output_list_len = d.pick({uint8_t{254}, uint8_t{255}});
}

} // namespace

scenario generated(uint32_t seed)
{
    dice d{std::mt19937(seed)};
    scenario s{seed};
    s.start = d.one_in(3) ? static_cast<id>(d(ids)) : d.pick({top, top, top, monitor, ots, interfaces});
    s.kind = d.pick({0u, 1u, 2u, 8u, 10u, 10u, 10u, 15u, 17u, 33u, 42u});
    s.function = !d.one_in(8) ? 'w' : nodes[s.start].kind != 'f' && d.one_in(4) ? 'a' : 'h';
    s.inventory = {s.inventory[d(6)], s.inventory[d(6)]};
    s.tree = grow(d, s.start);
    if (is_request(s.start) && d.one_in(2)) {
        const id list = d.one_in(4) ? channel : monitor;
        s.pushes = d.pick({1u, 1u, 2u, 3u});
        s.called = d.one_in(2);
        s.counted = s.called || !d.one_in(5);
        s.pushed = "entries";
        for (uint32_t i = (s.counted && !d.one_in(8)) || d.one_in(2) ? d(3) + 1 : 0; i > 0; --i)
            s.pushed += (s.pushed.back() == 's' ? '{' : ' ') + grow(d, list);
        s.pushed += s.pushed == "entries" ? "" : "}";
    }
    s.leaves_entries = s.pushes > 1 || !s.counted || s.pushed == "entries" || s.function == 'h';
    s.change = [d](host &h) {
        dice now = d;
        preset(h, now);
    };
    return s;
}

namespace {

const char *const long_text = [] {
    static char text[301];
    std::memset(text, '7', 300);
    return text;
}();

} // namespace

// clang-format off
const std::vector<void (*)(dtf_datatree &)> oddities = {
    [](auto &n) { n.tag = nullptr; }, [](auto &n) { n.tag = "%s%n"; }, [](auto &n) { n.tag = long_text; },
    [](auto &n) { n.tag = "name"; }, [](auto &n) { n.tag = "rx-power"; }, [](auto &n) { n.tag = "config"; },
    [](auto &n) { n.ns = nullptr; }, [](auto &n) { n.ns = "urn:foreign"; }, [](auto &n) { n.ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR; },
    [](auto &n) { n.ns = CHMON_NS_VANTRA_TALIN_IFMGR_CFG; }, [](auto &n) { n.value = nullptr; }, [](auto &n) { n.value = ""; },
    [](auto &n) { n.value = "%s%n%d"; }, [](auto &n) { n.value = long_text; }, [](auto &n) { n.value = "Ots0/3/0/1"; },
    [](auto &n) { n.value = " -5e2x"; }, [](auto &n) { n.value = "Ots0/4294967298/0/1"; },
    [](auto &n) { n.flags = ~DTF_FLAG_HAS_SUBTREE, n.child_count = 1000, n.children = nullptr; },
    [](auto &n) { n.flags |= DTF_FLAG_HAS_SUBTREE, n.child_count = 2, n.children = nullptr; },
    [](auto &n) { n.flags |= DTF_FLAG_HAS_SUBTREE, n.child_count = 0, n.children = nullptr; },
    [](auto &n) { n.flags |= DTF_FLAG_HAS_SUBTREE; }, [](auto &n) { n.child_count = 0; },
    /* Children that do not count; a replace would count them again. */
    [](auto &n) { n.flags &= n.operation == 1 ? ~0u : ~DTF_FLAG_HAS_SUBTREE; },
    [](auto &n) { n.flags |= DTF_FLAG_ERROR_KIND, n.error_kind = 5; }, [](auto &n) { n.error_kind = 5; },
    [](auto &n) { n.flags |= DTF_FLAG_HAS_VALUE | DTF_FLAG_ERROR_KIND, n.error_kind = 4; }, [](auto &n) { n.flags &= ~DTF_FLAG_VALID; },
    [](auto &n) { n.flags ^= DTF_FLAG_OP_SET; }, [](auto &n) { n.flags ^= DTF_FLAG_HAS_VALUE; },
    [](auto &n) { n.operation = 1; }, [](auto &n) { n.operation = 3; }, [](auto &n) { n.operation = 5; }, [](auto &n) { n.operation = 0xffffffff; },
    [](auto &n) { n.flags |= 0x10000000 | DTF_FLAG_KEY, n.is_key = 7, n.kind_flags = 0x50, n.node_kind = 99; }};
// clang-format on

/* ------------------------------------------------------------------------------------------------------ running -- */

faultno call(const string &name, dtf_map_ctx ctx, const dtf_datatree *in, dtf_datatree *out)
{
    static std::map<string, void *> known;
    void *&address = known[name];
    if (address == nullptr && (address = dlsym(RTLD_DEFAULT, name.c_str())) == nullptr)
        throw std::runtime_error("not exported: " + name);
    if (has(name, "_cont_"))
        return reinterpret_cast<faultno (*)(dtf_map_ctx, const dtf_datatree *, unsigned, dtf_datatree *)>(address)(
            ctx, in, 77, out);
    return reinterpret_cast<decltype(&oc_chmon_list_to_low)>(address)(ctx, in, out);
}

string shape(const dtf_datatree *node)
{
    string text = node->tag == nullptr ? "?" : node->tag;
    text += node->operation == 0 ? "" : "@" + std::to_string(node->operation);
    text += (node->kind_flags & 0x04) == 0 ? "" : ":" + std::to_string(node->node_kind);
    text += node->is_key == 1 && (node->flags & DTF_FLAG_KEY) != 0 ? "!" : "";
    for (uint32_t i = 0; node->children != nullptr && i < node->child_count; ++i)
        text += (i == 0 ? "{" : " ") + shape(&node->children[i]) + (i + 1 == node->child_count ? "}" : "");
    return text;
}

namespace {

/* A sum over all that may change of a request. */
string state_sum(const host &h)
{
    uint64_t sum = 0;
    const auto add = [&sum](auto... words) { ((sum = (sum ^ words) * 0x100000001b3u), ...); };
    add(h.state.expand_mode, h.state.delete_walk, h.state.filter_flags, h.state.req_flags, h.state.replace_pending,
        h.context.list_node_op, h.context.data_printed);
    for (const dtf_datatree *node : h.nodes)
        add(node->operation, node->node_kind, node->kind_flags, node->is_key, node->flags, node->child_count,
            node->children != nullptr);
    return " ~" + std::to_string(sum);
}

/* A path in two letters, its list and its leaf: I an interface-configuration, O an ots-port, S a
 * spectrum-slice-power-info; of OpenConfig's, with the value, C a channel and M a channel-monitor. */
string short_addition(const addition &add)
{
    for (const auto &[list, letter] :
         {std::pair{slice_path, 'S'}, {own_port, 'O'}, {own_interface, 'I'}, {own_channel, 'C'}, {own_monitor, 'M'}})
        if (add.path.starts_with(list)) {
            const string leaf = add.path.substr(list.size()), value = add.value ? "=" + *add.value : "";
            return ' ' + (letter + (leaf.size() < 2 ? leaf : leaf.substr(1, 1))) +
                   (letter == 'C' || letter == 'M' ? value : "") + (add.new_list_entry != 0 ? "+" : "");
        }
    return ' ' + add.path;
}

/* What must not change of a node: everything but the fields that are the plug-in's to write. (No framework starts a
 * walk in the middle of an expansion; what is replaced there loses its children.) */
bool is_kept(const dtf_datatree &before, const dtf_datatree &after, bool expanding)
{
    constexpr uint32_t written = DTF_FLAG_OP_SET | DTF_FLAG_HAS_SUBTREE | DTF_FLAG_KEY;
    const bool children = before.children == after.children && before.child_count == after.child_count,
               counted = (before.flags & DTF_FLAG_HAS_SUBTREE) != 0 && before.children != nullptr;
    return before.tag == after.tag && before.value == after.value && before.ns == after.ns &&
           before.source_index == after.source_index && before.error_kind == after.error_kind &&
           before.child_room == after.child_room && ((before.flags ^ after.flags) & ~written) == 0 &&
           (children || !counted || expanding || after.child_count > before.child_count);
}

faultno play(host &h, const scenario &s, dtf_datatree *in, bool by_account)
{
    if (!by_account)
        return call(s.function == 'h'   ? hook_name(s.start)
                    : s.function == 'a' ? function_name(s.start) + "_parse_augments"
                                        : function_name(s.start),
                    &h.context, in, &h.out);
    if (s.function == 'a')
        return is_request(s.start) ? model(h).augment(in) : 0;
    return s.function == 'h' ? hook(s.start, in) : model(h).walk(s.start, in);
}

} // namespace

outcome run(const scenario &s, const circumstance &c, bool by_account)
{
    static const bool primed = [] { // the client library is looked for once in a process
        host h({"0/1-CHMON-PRE"});
        return check_controller_name_ots_is_good(&h.context, "Ots0/1/0/1") == 1;
    }();
    host h(s.inventory);
    dtf_datatree *const in = h.plant(s.tree, ns_of(s.start));
    h.request.data_input = s.kind;
    h.context.list_node_op = 77;
    h.poison = true;
    if (!s.pushed.empty()) {
        const dtf_datatree *const list = h.plant(s.pushed, ns_of(top));
        const uint32_t count = list->children == nullptr ? 2 : list->child_count; // of an array that is missing, too
        const dtf_itree_entry entry{list->children, s.counted ? count : 0, s.called ? &callback : nullptr};
        h.on_add = [entry, times = s.pushes](host &, const addition &add) mutable {
            if (add.new_list_entry == 1 && times > 0 && times-- > 0)
                dtf_map_util_itree_stack_push(&current->context, entry.children, entry.count, entry.callback);
        };
    }
    if (s.change)
        s.change(h);
    h.context.trace_on = (c.sinks & 1) == 0 ? 0 : h.context.trace_on;
    h.context.debug_filter.levels &= (c.sinks & 2 ? 1u << DTF_LEVEL_ERR : 0) | (c.sinks & 4 ? 1u << DTF_LEVEL_TRC : 0);
    h.fail_at = c.fail_at, h.fail_on = c.fail_on, h.fail_copies = c.fail_copies, h.fail_code = c.code;
    h.calls = 0;
    h.lines.clear();
    const bool expanding = h.state.expand_mode == 1;
    std::vector<dtf_datatree> before;
    for (const dtf_datatree *node : h.nodes)
        before.push_back(*node);
    const std::size_t depth = h.itree.size();
    if (c.sinks == all_sinks && h.nodes.size() < 100) // more are too many to follow step by step
        h.watch = [&h] { return state_sum(h); };
    outcome result;
    result.rc = play(h, s, in, by_account);
    h.note("after");
    result.calls = h.calls;
    std::ranges::remove_copy_if(h.lines, std::back_inserter(result.lines), host::is_own_affair);
    result.lines.push_back(printed("rc=%x itree=%zu hierarchy=%u", result.rc, h.itree.size(), h.state.hierarchy_len) +
                           " error_tag=" + host::shown(h.state.error_tag));
    for (const dtf_itree_entry &left : h.itree)
        result.lines.push_back("left " + h.name(left.children));
    for (std::size_t i = 0; i < before.size(); ++i)
        h.violate(!is_kept(before[i], *h.nodes[i], expanding), "changed: " + h.name(h.nodes[i]));
    h.violate(!primed, "no client library");
    const bool skipped = c.fail_at != 0 && c.code == FAULT_SKIP_ENTRY; // a walker leaves at once where its hook skips
    result.broken = h.imbalance(s.leaves_entries || skipped ? h.itree.size() : depth);
    for (const addition &add : h.additions)
        result.summary += short_addition(add);
    result.summary += (is_request(s.start) ? ' ' + shape(h.nodes[0]) : "") +
                      (h.state.error_tag == nullptr ? "" : ' ' + string(h.state.error_tag));
    return result;
}

string compare(const scenario &s, const circumstance &c, std::size_t *calls)
{
    const outcome plugin = run(s, c, false), account = run(s, c, true);
    if (calls != nullptr)
        *calls = plugin.calls;
    const auto [is, expected] = std::ranges::mismatch(plugin.lines, account.lines);
    if (plugin.lines == account.lines && plugin.broken.empty())
        return "";
    string text = printed("seed %u: %s, function %c, kind %u, call %zu fails%s with %x\n%s\n", s.seed,
                          function_name(s.start).c_str(), s.function, s.kind, c.fail_at,
                          c.fail_on ? " and all after" : "", c.code, s.tree.c_str());
    for (auto at = is - std::min<std::ptrdiff_t>(25, is - plugin.lines.begin()); at != is; ++at)
        text += "  " + *at + '\n';
    return text + "is       " + (is == plugin.lines.end() ? "nothing" : *is) + "\nexpected " +
           (expected == account.lines.end() ? "nothing" : *expected) + '\n' + plugin.broken;
}

/* -------------------------------------------------------------------------------------------------------- rows -- */

namespace {

/* One row of the file: "node kind code setting=number ...: tree". */
scenario read_row(const string &line)
{
    const string row_start = line.substr(0, line.find(": "));
    std::istringstream words(row_start);
    scenario row;
    string part;
    words >> part >> row.kind >> std::hex >> row.rc;
    while (row.start < ids && nodes[row.start].part != part)
        row.start = static_cast<id>(row.start + 1);
    row.tree = line.substr(row_start.size() + 2);
    const auto set = [&row_start](const string &what) -> uint32_t {
        const auto at = row_start.find(' ' + what + '=');
        return at == string::npos ? 0 : static_cast<uint32_t>(std::stoul(row_start.substr(at + what.size() + 2)));
    };
    row.leaves_entries = set("stack") != 0; // 16 bits do not see one more
    row.change = [stack = set("stack"), listed = set("listed"), options = set("options"),
                  scope = set("scope")](host &h) {
        h.itree.resize(stack);
        h.state.output_list_len = static_cast<uint8_t>(listed);
        h.request.req_option_bits = options, h.request.req_scope = scope;
    };
    return row;
}

} // namespace

const std::vector<scenario> &table()
{
    static const std::vector<scenario> rows = [] {
        std::vector<scenario> all;
        std::ifstream file(CHMON_SCENARIOS);
        for (string line; std::getline(file, line);)
            if (line.starts_with("  ="))
                all.back().expected = line.substr(3);
            else if (line.starts_with("  + "))
                all.back().pushed = line.substr(4);
            else if (!line.empty() && line[0] != '#')
                all.push_back(read_row(line));
        return all;
    }();
    return rows;
}

} // namespace recording
