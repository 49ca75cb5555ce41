/* The request walkers against the plain account of them: generated requests, presets and failing calls. */
#include "request_model.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

using namespace request;
using recording::host;

namespace {

struct dice {
    std::mt19937 engine;
    uint32_t operator()(uint32_t sides) { return static_cast<uint32_t>(engine() % sides); }
    bool one_in(uint32_t n) { return (*this)(n) == 0; }
    template <typename T> T pick(std::initializer_list<T> of) { return of.begin()[(*this)(uint32_t(of.size()))]; }
};

/* A request below one node, as text: children none, keys alone, some, or most, and now and then strange ones. */
std::string grow(dice &d, node_id n)
{
    const bool is_leaf = all_nodes[n].augment == nullptr, is_list = n == monitor || n == channel;
    std::string text = d.one_in(40) ? "x:" : d.one_in(60) ? "-:" : "";
    text += d.one_in(80) ? "?" : all_nodes[n].tag;
    if (d.one_in(is_list ? 3 : is_leaf ? 8 : 5))
        text += "@" + std::to_string(d.one_in(3) ? 1 : d(5));
    if (is_leaf)
        return text + (d.one_in(3) ? "" : d.pick({"=0/1-CHMON-PRE", "=0/2-CHMON-BST", "=-4.35", "=%s%n", "="}));
    const uint32_t fill = d(5);
    if (fill == 0)
        return text + (d.one_in(4) ? "{}" : "");
    text += '{';
    for (const node_id child : all_nodes[n].children)
        for (uint32_t copies = d.one_in(12) ? 2 : 1; copies > 0; --copies)
            if (is_list_key(child) ? !d.one_in(fill == 4 ? 2 : 6) : fill > 1 && !d.one_in(fill))
                text += grow(d, child) + ' ';
    for (const char *strange : {"%s%n", "x:extra", "-:extra", "?", "config", "name"})
        if (d.one_in(30))
            text += strange + std::string(d.one_in(4) ? "@3 " : " ");
    return text + '}';
}

/* One thing wrong or odd with one node. */
void disturb(dice &d, host &h)
{
    dtf_datatree &node = *h.nodes[d.one_in(2) ? 0 : d(uint32_t(h.nodes.size()))];
    switch (d(9)) {
    case 0: // a lost child array, whether or not it was wanted
        node.children = nullptr, node.child_count = 2;
        break;
    case 1: // children that do not count; a replace would count them again
        node.flags &= node.operation == 1 ? ~0u : ~DTF_FLAG_HAS_SUBTREE;
        break;
    case 2:
        node.flags |= 0x10000000 | DTF_FLAG_KEY, node.is_key = 7, node.kind_flags = 0x50, node.node_kind = 99;
        break;
    case 3:
        node.flags &= ~DTF_FLAG_VALID;
        break;
    case 4:
        node.flags ^= DTF_FLAG_OP_SET;
        break;
    case 5:
        node.operation = d.pick({5u, 0xffffffffu, 1u, 3u});
        break;
    case 6:
        node.flags |= DTF_FLAG_HAS_SUBTREE;
        break;
    case 7:
        node.ns = CHMON_NS_VANTRA_TALIN_IFMGR_CFG;
        break;
    default:
        node.flags |= DTF_FLAG_HAS_VALUE | DTF_FLAG_ERROR_KIND;
    }
}

faultno callback(dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *out, uint32_t reserved)
{
    host &h = *recording::current;
    h.note(recording::printed("callback %s %u %d", h.name(node).c_str(), reserved, ctx == &h.context && out == &h.out));
    return 0x77;
}

/* Lets the framework push entries of its own within an addition of a list entry, as often as `times` says. */
void push_on_add(host &h, dtf_itree_entry entry, uint32_t times)
{
    h.on_add = [entry, times](host &at, const recording::addition &add) mutable {
        if (add.new_list_entry == 1 && times > 0 && times-- > 0)
            dtf_map_util_itree_stack_push(&at.context, entry.children, entry.count, entry.callback);
    };
}

/* A request to be walked; everything else follows from the seed where there is no text of it. */
struct request_case {
    node_id start = top;
    uint32_t kind = 10;
    std::string tree{}, pushed{};
    faultno rc = 0;
    std::string expected{};
    std::size_t depth = 0;
};

void set_up(host &h, dice &d, request_case &c)
{
    h.poison = true;
    h.context.list_node_op = 77;
    if (!c.tree.empty()) {
        h.plant(c.tree, CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
        h.request.data_input = c.kind;
        h.itree.resize(c.depth);
        if (!c.pushed.empty()) {
            dtf_datatree *entries = h.plant(c.pushed, CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
            push_on_add(h, {entries->children, entries->child_count, &callback}, 1);
        }
        return;
    }
    c.start = d.one_in(3) ? static_cast<node_id>(d(node_ids)) : d.one_in(5) ? monitor : top;
    c.kind = h.request.data_input = d.pick({0u, 1u, 2u, 8u, 10u, 10u, 10u, 15u, 17u, 33u, 42u});
    h.plant(grow(d, c.start), CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
    if (d.one_in(3))
        disturb(d, h);
    if (d.one_in(8)) {
        h.state.expand_mode = d.pick({0u, 1u, 1u, 2u});
        h.state.delete_walk = d(3);
        h.state.filter_flags = d.pick({0u, 1u, 2u, 4u, 5u, 0x10007u, 0xffffffffu});
        h.state.req_flags = d.pick({0u, 0x40u, 0x80u, 0x1c0u});
        h.state.replace_pending = d(2);
    }
    if (d.one_in(20))
        h.context.trace_on = 0;
    if (d.one_in(20))
        h.context.debug_filter.levels = d.one_in(2) ? 0 : 1u << DTF_LEVEL_ERR;
    if (d.one_in(4))
        h.state.error_tag = dtf_strdup("old", "preset");
    if (d.one_in(8))
        h.leafref = 0x4455;
    if (d.one_in(2)) {
        const node_id list = d.one_in(4) ? channel : monitor;
        const uint32_t count = 1 + d(3);
        std::string text = "entries{";
        for (uint32_t i = 0; i < count; ++i)
            text += grow(d, list) + ' ';
        dtf_itree_entry entry{h.plant(text + '}', CHMON_NS_OPENCONFIG_CHANNEL_MONITOR)->children, count,
                              d.one_in(2) ? nullptr : &callback};
        if (d.one_in(10) && entry.callback == nullptr) // an entry of nothing: the list node's own children are walked
            entry = {d.one_in(2) ? nullptr : entry.children, 0, nullptr};
        push_on_add(h, entry, d.pick({1u, 1u, 2u, 3u}));
    }
}

/* All that may change of a request, word by word. */
template <typename F> void for_each_word(const host &h, F &&f)
{
    for (const uint32_t word : {h.state.expand_mode, h.state.delete_walk, h.state.filter_flags, h.state.req_flags,
                                h.state.replace_pending, h.context.list_node_op})
        f(word);
    for (const dtf_datatree *node : h.nodes)
        for (const uint32_t word :
             {node->operation, node->node_kind, uint32_t{node->kind_flags}, uint32_t{node->is_key}, node->flags,
              node->child_count, uint32_t{node->children != nullptr}})
            f(word);
}

/* "channel-monitors:3{channel-monitor@4:4{name:1!}}": operation, node_kind, key. */
std::string shape(const dtf_datatree *node)
{
    std::string text = node->tag == nullptr ? "?" : node->tag;
    text += node->operation == 0 ? "" : "@" + std::to_string(node->operation);
    text += (node->kind_flags & 0x04) == 0 ? "" : ":" + std::to_string(node->node_kind);
    text += node->is_key == 1 && (node->flags & DTF_FLAG_KEY) != 0 ? "!" : "";
    for (uint32_t i = 0; node->children != nullptr && i < node->child_count; ++i)
        text += (i == 0 ? "{" : " ") + shape(&node->children[i]) + (i + 1 == node->child_count ? "}" : "");
    return text;
}

/* A native path in two letters: I an interface-configuration, O an ots-port, S a spectrum-slice-power-info. */
std::string short_path(const std::string &path)
{
    const std::string slice = "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info";
    for (const auto &[list, letter] : {std::pair{slice, 'S'},
                                       {std::string("/ots-oper/ots-ports/ots-port"), 'O'},
                                       {std::string("/interface-configurations/interface-configuration"), 'I'}})
        if (path.starts_with(list)) {
            const std::string leaf = path.substr(list.size());
            return letter + (leaf.size() < 2 ? leaf : leaf.substr(1, 1));
        }
    return path;
}

struct outcome {
    std::vector<std::string> lines;
    std::size_t calls = 0;
    faultno rc = 0;
    std::string violations, summary;
};

struct failing {
    std::size_t at = 0;
    bool on = false;
    faultno code = 0x1234;
};

/* Runs one case. Every line carries what the state was at it: as a number, or readable when explaining a difference. */
outcome run(uint32_t seed, request_case &c, const failing &fail, bool by_model, bool readable = false)
{
    dice d{std::mt19937(seed)};
    const std::vector<std::string> six = {"0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST",
                                          "0/2-CHMON-PRE", "0/3-CHMON-BST", "0/3-CHMON-PRE"};
    host h(c.tree.empty() ? std::vector{six[d(6)], six[d(6)]} : six);
    set_up(h, d, c);
    h.fail_at = fail.at;
    h.fail_on = fail.on;
    h.fail_code = fail.code;
    h.calls = 0;
    h.lines.clear();
    std::vector<uint64_t> sums;
    std::vector<std::string> states;
    if (h.nodes.size() < 100)
        h.watch = [&] {
            sums.push_back(0);
            for_each_word(h, [&](uint32_t word) { sums.back() = (sums.back() ^ word) * 0x100000001b3u; });
            states.emplace_back();
            if (readable)
                for_each_word(h, [&](uint32_t word) { states.back() += recording::printed(" %x", word); });
        };
    dtf_datatree *const in = h.nodes[0];
    outcome result;
    result.rc = by_model ? model(h).walk(c.start, in) : all_nodes[c.start].walk(&h.context, in, &h.out);
    h.watch = nullptr;
    result.calls = h.calls;
    for (std::size_t i = 0; i < h.lines.size(); ++i) {
        const std::string &line = h.lines[i], word = line.substr(0, line.find(' '));
        const bool own_affair = word == "match" || word == "is_delete" || word == "is_add" || word == "itree_peak" ||
                                word == "itree_size" || word == "copy" || line == "named_free null";
        if (!own_affair)
            result.lines.push_back(i < sums.size() ? line + " ~" + std::to_string(sums[i]) + states[i] : line);
    }
    for (const std::string &violation : h.violations)
        result.violations += violation + '\n';
    result.lines.push_back(recording::printed("rc=%x error_tag=%s itree=%zu hierarchy=%u", result.rc,
                                              h.state.error_tag == nullptr ? "null" : h.state.error_tag, h.itree.size(),
                                              h.state.hierarchy_len));
    for (std::size_t i = c.depth; i < h.itree.size(); ++i)
        result.lines.push_back("left " + h.name(h.itree[i].children));
    for_each_word(h, [&](uint32_t word) { result.lines.push_back(std::to_string(word)); });
    for (const dtf_datatree *node : h.nodes)
        result.lines.push_back(h.dump(node));
    for (const recording::addition &add : h.additions)
        result.summary += ' ' + short_path(add.path) + (add.new_list_entry != 0 ? "+" : "");
    result.summary +=
        ' ' + shape(h.nodes[0]) + (h.state.error_tag == nullptr ? "" : std::string(" ") + h.state.error_tag);
    return result;
}

/* What differs, with what came before it and what repeats it. */
std::string difference(uint32_t seed, request_case c, const failing &fail)
{
    const outcome plugin = run(seed, c, fail, false, true), expected = run(seed, c, fail, true, true);
    std::size_t i = 0;
    while (i < plugin.lines.size() && i < expected.lines.size() && plugin.lines[i] == expected.lines[i])
        ++i;
    std::string text = recording::printed("seed %u, call %zu fails%s with %x, kind %u, %s %s\n", seed, fail.at,
                                          fail.on ? " and all after" : "", fail.code, c.kind,
                                          all_nodes[c.start].path.c_str(), c.tree.c_str());
    for (std::size_t before = i < 25 ? 0 : i - 25; before < i; ++before)
        text += "  " + plugin.lines[before] + '\n';
    return text + "is       " + (i < plugin.lines.size() ? plugin.lines[i] : "nothing") + "\nexpected " +
           (i < expected.lines.size() ? expected.lines[i] : "nothing") + '\n' + plugin.violations;
}

/* Compares plug-in and account; the number of calls that can fail. */
std::size_t compare(uint32_t seed, request_case &c, const failing &fail)
{
    const outcome plugin = run(seed, c, fail, false), expected = run(seed, c, fail, true);
    if (plugin.lines != expected.lines || !plugin.violations.empty())
        ADD_FAILURE() << difference(seed, c, fail);
    return plugin.calls;
}

uint32_t number(const char *variable, uint32_t otherwise)
{
    const char *text = std::getenv(variable);
    return text == nullptr ? otherwise : static_cast<uint32_t>(std::strtoul(text, nullptr, 10));
}

struct request_walk : testing::Test {
    void SetUp() override // the presence of the database client is tested once a process
    {
        host h;
        check_controller_name_ots_is_good(&h.context, "Ots0/1/0/1");
    }
};

} // namespace

/* CHMON_SEED repeats one case; CHMON_CASES sets how many there are. */
TEST_F(request_walk, equals_the_plain_account)
{
    const uint32_t first = number("CHMON_SEED", 1), cases = number("CHMON_CASES", std::getenv("CHMON_SEED") ? 1 : 3000);
    std::size_t compared = 0;
    for (uint32_t seed = first; seed < first + cases && !HasFailure(); ++seed) {
        request_case c;
        const std::size_t calls = compare(seed, c, {});
        if (calls != 0)
            compare(seed, c, {1 + seed % calls, seed % 3 == 0, seed % 2 == 0 ? 0x1234 : FAULT_SKIP_ENTRY});
        compared += calls != 0 ? 2 : 1;
    }
    std::printf("compared=%zu\n", compared);
    EXPECT_TRUE(HasFailure() || compared > cases);
}

namespace {

const std::string one = "channel-monitors{channel-monitor{name=0/1-CHMON-PRE", all = "channel-monitors";
const std::string all_ports = " O+ On Oo O+ On Oo O+ On Oo O+ On Oo O+ On Oo O+ On Oo",
                  slices = " S+ S/ Sl Su Sl Su Sr";

/* Requests and what each comes to: result, additions, the request afterwards, error_tag. */
request_case rows[] = {
    {top, 10, all, "", 0, all_ports + slices + " channel-monitors:3"},
    {top, 0, "channel-monitors{channel-monitor{}}", "", 0,
     " I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia channel-monitors:3{channel-monitor:4}"},
    {top, 8, "channel-monitors{channel-monitor{}}", "", FAULT_TREE_ERROR, " channel-monitors:3{channel-monitor}"},
    {top, 15, "channel-monitors{channel-monitor{name=a name=b}}", "", FAULT_LIST_KEY_ERROR,
     " channel-monitors:3{channel-monitor:4{name! name!}} name"},
    {top, 8, "channel-monitors{channel-monitor{name}}", "", FAULT_LIST_KEY_ERROR,
     " channel-monitors:3{channel-monitor:4{name!}} name"},
    {top, 0, "channel-monitors{channel-monitor{name config}}", "", 0,
     " I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia I+ Ii Ia "
     "channel-monitors:3{channel-monitor:4{name:1! config:3}}"},
    {top, 1, "channel-monitors{channel-monitor{name@4=0/1-CHMON-PRE}}", "", FAULT_KEY_DELETE,
     " I+ channel-monitors:3{channel-monitor:4{name@4!}}"},
    {top, 10, one + "}}", "", 0, " O+ Oo Ii Ia On" + slices + " channel-monitors:3{channel-monitor:4{name:1!}}"},
    {monitor, 10, "channel-monitor{config{name}}", "", 0,
     all_ports + " name channel-monitor:4{config:3{name:1} name!}"},
    {top, 10, one + " config{name=0/1-CHMON-PRE monitor-port=p}}}", "", 0,
     " O+ Oo Ii Ia On Ii Ia channel-monitors:3{channel-monitor:4{name:1! config:3{name:6 monitor-port:6}}}"},
    {config, 10, "config{name=0/1-CHMON-PRE monitor-port}", "", 0, " Ii Ia config:3{name:6 monitor-port:1}"},
    {top, 0, one + " state{name}}}", "", 0, " I+ Ii Ia channel-monitors:3{channel-monitor:4{name:1! state{name}}}"},
    {top, 1, one + " state{name}}}", "", FAULT_UNSUPPORTED_TAG,
     " I+ Ii Ia channel-monitors:3{channel-monitor:4{name:1! state{name}}} state"},
    {config, 1, "config@1{name=0/1-CHMON-PRE x:new}", "", FAULT_UNSUPPORTED_AUGMENT,
     " Ii Ia config@1:3{name:1 new} new"},
    {top, 1, "channel-monitors{channel-monitor@1{name=0/1-CHMON-PRE config{name=0/1-CHMON-PRE}}}", "", 0,
     " Ii Ia I+ Ii Ia Ii Ia channel-monitors:3{channel-monitor@1:4{name:1! config:3{name:1}}}"},
    {top, 1, "channel-monitors@1{channel-monitor@1{name=0/1-CHMON-PRE config@1{name=0/1-CHMON-PRE}}}", "", 0,
     " Ii Ia I+ Ii Ia Ii Ia channel-monitors:3{channel-monitor:4{name:1! config@1:3{name:1}}}"},
    {top, 1, one + " config@3{name=0/1-CHMON-PRE}}}", "", FAULT_INVALID_ARGS,
     " I+ Ii Ia channel-monitors:3{channel-monitor:4{name:1! config@3{name}}}"},
    {state, 1, "state@3{name=0/1-CHMON-PRE}", "", 0, " On state@3:3{name:1}"},
    {top, 1, "channel-monitors{channel-monitor@3{name=0/1-CHMON-PRE}}", "", 0,
     " Ii Ia channel-monitors:3{channel-monitor@4:4{name:1!}}"},
    {top, 2, "channel-monitors{channel-monitor@3}", "", 0, " channel-monitors:3{channel-monitor@3:4}"},
    {top, 1, "channel-monitors@3", "", 0, " channel-monitors@3:3"},
    {config, 10, "config{x:new -:new}", "", 0, " config:3{new new}"},
    {top, 1, one + " -:new}}", "", FAULT_UNSUPPORTED_AUGMENT,
     " I+ Ii Ia channel-monitors:3{channel-monitor:4{name:1! new}} new"},
    {channels, 0, "channels{channel{lower-frequency=1 upper-frequency=2}}", "", 0,
     " S+ channels:3{channel:4{lower-frequency! upper-frequency!}}"},
    {channels, 10, "channels{channel{lower-frequency=1 upper-frequency=2}}", "", 0,
     slices + " channels:3{channel:4{lower-frequency:1! upper-frequency:1!}}"},
    {channels, 10, "channels{channel{state{power=-4.35}}}", "", 0,
     " S+ Sr Sl Su Sr lower-frequency upper-frequency "
     "channels:3{channel:4{state:3{power:6} lower-frequency! upper-frequency!}}"},
    {channels, 1, "channels{channel{lower-frequency=1 upper-frequency=2}}", "", FAULT_UNSUPPORTED_TAG,
     " S+ channels:3{channel:4{lower-frequency! upper-frequency!}} lower-frequency"},
    {channels, 2, "channels{channel@3{}}", "", 0, " S+ channels:3{channel@3:4}"},
    {channels, 10, "channels@3", "", 0, slices + " channels@3:3"},
    {top, 10, all, "entries{channel-monitor{name=0/1-CHMON-PRE} channel-monitor{name=0/3-CHMON-PRE}}", 0,
     all_ports + " Ii Ia On" + slices + " Ii Ia On" + slices + " channel-monitors:3"},
    {channels, 10, "channels@3", "entries{channel{lower-frequency=1} channel}", 0,
     " S+ S/ Sl Sl Su Sr Sl Su Sr S/ Sl Su Sl Su Sr channels@3:3"},
    {top, 10, all, "entries{channel-monitor}", 0, all_ports + slices + " channel-monitors:3", 65535},
};

} // namespace

TEST_F(request_walk, comes_to_what_is_written_here)
{
    for (request_case &row : rows) {
        const outcome is = run(1, row, {}, false);
        EXPECT_EQ(is.rc, row.rc) << row.kind << ' ' << row.tree;
        EXPECT_EQ(is.summary, row.expected) << row.kind << ' ' << row.tree;
    }
}

TEST_F(request_walk, every_call_fails_in_turn)
{
    std::size_t positions = 0;
    for (request_case &row : rows)
        for (const faultno code : {0x1234u, FAULT_SKIP_ENTRY})
            for (const bool on : {false, true})
                for (std::size_t at = 1, calls = at; at <= calls; ++at, ++positions)
                    calls = compare(1, row, {at, on, code});
    std::printf("positions=%zu\n", positions);
    EXPECT_GE(positions, 900u);
}

TEST_F(request_walk, keys_are_counted_in_8_bits)
{
    for (const uint32_t kind : {0u, 1u, 8u, 10u})
        for (const std::size_t count : {2u, 128u, 256u, 257u})
            for (const std::string key : {"name ", "name=0/1-CHMON-PRE "}) {
                request_case many{monitor, kind, "channel-monitor{"};
                for (std::size_t i = 0; i < count; ++i)
                    many.tree += key;
                many.tree += '}';
                compare(1, many, {});
                const uint8_t valued = static_cast<uint8_t>(key == "name " ? 0 : count),
                              keys = static_cast<uint8_t>(count);
                const bool passes =
                    kind == 1 ? valued == 1 && keys < 2 : (keys | valued) <= 1 && (kind != 8 || valued == 1);
                const faultno otherwise = run(1, many, {}, false).rc;
                EXPECT_EQ(otherwise == FAULT_LIST_KEY_ERROR, !passes) << kind << ' ' << count << ' ' << key;
            }
}
