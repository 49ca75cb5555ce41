/* The request walkers against the plain account of them, over generated requests, presets and failing calls. */
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
    template <typename T> T pick(std::initializer_list<T> values)
    {
        return values.begin()[(*this)(static_cast<uint32_t>(values.size()))];
    }
};

/* A request below one node, as text; children none, keys alone, some, or most, and now and then strange ones. */
std::string grow(dice &d, node_id n)
{
    std::string text = d.one_in(40) ? "x:" : d.one_in(60) ? "-:" : "";
    text += d.one_in(80) ? "?" : all_nodes[n].tag;
    const bool is_leaf = all_nodes[n].augment == nullptr, is_list = n == monitor || n == channel;
    if (d.one_in(is_list ? 3 : is_leaf ? 8 : 5))
        text += "@" + std::to_string(d.one_in(3) ? 1 : d(5));
    if (is_leaf)
        return text +
               (d.one_in(3) ? "" : d.pick<const char *>({"=0/1-CHMON-PRE", "=0/2-CHMON-BST", "=-4.35", "=%s%n", "="}));
    const uint32_t fill = d(5);
    if (fill == 0)
        return text + (d.one_in(4) ? "{}" : "");
    text += '{';
    for (const node_id child : all_nodes[n].children)
        for (uint32_t copies = d.one_in(12) ? 2 : 1; copies > 0; --copies)
            if (is_list_key(child) ? !d.one_in(fill == 4 ? 2 : 6) : fill > 1 && !d.one_in(fill))
                text += grow(d, child) + ' ';
    for (const char *strange : {"extra", "x:extra", "-:extra", "?", "config", "name"})
        if (d.one_in(30))
            text += strange + std::string(d.one_in(4) ? "@3 " : " ");
    return text + '}';
}

/* One thing wrong or odd with one node. */
void disturb(dice &d, host &h)
{
    dtf_datatree &node = *h.nodes[d(static_cast<uint32_t>(h.nodes.size()))];
    const uint32_t what = d(9);
    if (what == 0 && node.children == nullptr)
        node.child_count = 2; // a subtree flag, where there is one, over a lost child array
    else if (what == 1 && node.operation != 1)
        node.flags &= ~DTF_FLAG_HAS_SUBTREE;
    else if (what == 2)
        node.flags |= 0x10000200, node.is_key = 7, node.kind_flags = 0x50, node.node_kind = 99;
    else if (what == 3)
        node.flags &= ~DTF_FLAG_VALID;
    else if (what == 4)
        node.flags ^= DTF_FLAG_OP_SET;
    else if (what == 5)
        node.operation = d.pick({5u, 0xffffffffu, 1u, 3u});
    else if (what == 6)
        node.flags |= DTF_FLAG_HAS_SUBTREE; // over no children
    else if (what == 7)
        node.children = nullptr;
    else
        node.flags |= DTF_FLAG_HAS_VALUE | DTF_FLAG_ERROR_KIND;
}

faultno callback(dtf_map_ctx ctx, const dtf_datatree *node, dtf_datatree *out, uint32_t reserved)
{
    host &h = *recording::current;
    h.note(recording::printed("callback %s %u %d", h.name(node).c_str(), reserved, ctx == &h.context && out == &h.out));
    return 0x77;
}

/* One case: everything follows from the seed, so that two hosts can be given the same. Returns where the walk starts.
 */
node_id set_up(host &h, dice &d, dtf_datatree *&in)
{
    const node_id start = d.one_in(4) ? static_cast<node_id>(d(node_ids)) : d.one_in(6) ? monitor : top;
    h.request.data_input = d.pick({0u, 1u, 2u, 8u, 10u, 10u, 10u, 15u, 17u, 33u, 42u});
    in = h.plant(grow(d, start), CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
    if (d.one_in(3))
        disturb(d, h);
    h.poison = true;
    if (d.one_in(8)) {
        h.state.expand_mode = d(2);
        h.state.delete_walk = d(3);
        h.state.filter_flags = d.pick({0u, 1u, 2u, 4u, 5u, 0x10007u, 0xffffffffu});
        h.state.req_flags = d.pick({0u, 0x40u, 0x80u, 0x1c0u});
        h.state.replace_pending = d(2);
    }
    h.context.list_node_op = 77;
    if (d.one_in(4))
        h.state.error_tag = dtf_strdup("old", "preset");
    if (d.one_in(8))
        h.leafref = 0x4455;
    if (d.one_in(2)) { // the framework pushes entries of its own within an addition
        const node_id list = d.one_in(4) ? channel : monitor;
        std::string entries;
        const uint32_t count = 1 + d(3);
        for (uint32_t i = 0; i < count; ++i)
            entries += grow(d, list) + ' ';
        dtf_itree_entry entry{h.plant("entries{" + entries + '}', CHMON_NS_OPENCONFIG_CHANNEL_MONITOR)->children, count,
                              d.one_in(2) ? nullptr : &callback};
        if (d.one_in(10) && entry.callback == nullptr) // an entry of nothing: the list node's own children are walked
            entry = {d.one_in(2) ? nullptr : entry.children, 0, nullptr};
        uint32_t left = d.pick({1u, 1u, 2u, 3u}), every = d.pick({1u, 1u, 2u});
        h.on_add = [entry, left, every](host &at, const recording::addition &add) mutable {
            if (add.new_list_entry == 1 && left > 0 && at.additions.size() % every == 0) {
                --left;
                dtf_map_util_itree_stack_push(&at.context, entry.children, entry.count, entry.callback);
            }
        };
    }
    return start;
}

/* All that may change of a request, as words. */
std::vector<uint32_t> words(const host &h)
{
    std::vector<uint32_t> all = {h.state.expand_mode, h.state.delete_walk,     h.state.filter_flags,
                                 h.state.req_flags,   h.state.replace_pending, h.context.list_node_op};
    for (const dtf_datatree *node : h.nodes)
        all.insert(all.end(), {node->operation, node->node_kind, node->kind_flags, node->is_key, node->flags,
                               node->child_count, node->children != nullptr});
    return all;
}

struct outcome {
    std::vector<std::string> lines;
    std::size_t calls = 0;
    std::string violations;
};

/* Runs one case. Every line carries what the state was at it: as a number, or readable when explaining a difference. */
outcome run(uint32_t seed, bool by_model, std::size_t fail_at, bool readable)
{
    dice d{std::mt19937(seed)};
    host h(d.one_in(2) ? std::vector<std::string>{"0/1-CHMON-PRE"}
                       : std::vector<std::string>{"0/1-CHMON-BST", "0/3-CHMON-PRE"});
    dtf_datatree *in = nullptr;
    const node_id start = set_up(h, d, in);
    h.fail_code = d.pick<faultno>({FAULT_SKIP_ENTRY, 0x1234, FAULT_TREE_ERROR});
    h.fail_on = d.one_in(2);
    h.fail_at = fail_at;
    h.calls = 0;
    h.lines.clear();
    std::vector<std::string> states;
    h.watch = [&] {
        std::string state;
        uint64_t sum = 0;
        for (const uint32_t word : words(h))
            if (readable)
                state += recording::printed(" %x", word);
            else
                sum = (sum ^ word) * 0x100000001b3u;
        states.push_back(readable ? state : std::to_string(sum));
    };
    const faultno rc = by_model ? model(h).walk(start, in) : all_nodes[start].walk(&h.context, in, &h.out);
    h.watch = nullptr;
    outcome result;
    result.calls = h.calls;
    for (std::size_t i = 0; i < h.lines.size(); ++i) {
        const std::string &line = h.lines[i], word = line.substr(0, line.find(' '));
        if (word != "match" && word != "is_delete" && word != "is_add" && word != "itree_peak" &&
            word != "itree_size" && word != "copy" && line != "named_free null")
            result.lines.push_back(line + " ~" + states[i]);
    }
    for (const std::string &violation : h.violations)
        result.violations += violation + '\n';
    for (const dtf_datatree *node : h.nodes)
        result.lines.push_back(h.dump(node));
    std::string last;
    for (const uint32_t word : words(h))
        last += recording::printed(" %x", word);
    result.lines.push_back(recording::printed("rc=%x error_tag=%s itree=%zu hierarchy=%u", rc,
                                              h.state.error_tag == nullptr ? "null" : h.state.error_tag, h.itree.size(),
                                              h.state.hierarchy_len) +
                           last);
    for (const dtf_itree_entry &left : h.itree)
        result.lines.push_back("left " + h.name(left.children));
    return result;
}

/* "" or what differs, with what came before it. */
std::string difference(uint32_t seed, std::size_t fail_at)
{
    const outcome plugin = run(seed, false, fail_at, true), expected = run(seed, true, fail_at, true);
    std::size_t i = 0;
    while (i < plugin.lines.size() && i < expected.lines.size() && plugin.lines[i] == expected.lines[i])
        ++i;
    dice d{std::mt19937(seed)};
    d.one_in(2);
    host h;
    dtf_datatree *in = nullptr;
    const node_id start = set_up(h, d, in);
    std::string text = recording::printed("seed %u fail_at %zu: %s, kind %u\n", seed, fail_at,
                                          all_nodes[start].function.c_str(), h.request.data_input) +
                       h.dump(in);
    for (std::size_t before = i < 25 ? 0 : i - 25; before < i; ++before)
        text += "  " + plugin.lines[before] + '\n';
    return text + "is       " + (i < plugin.lines.size() ? plugin.lines[i] : "nothing") + "\nexpected " +
           (i < expected.lines.size() ? expected.lines[i] : "nothing") + '\n' + plugin.violations;
}

} // namespace

/* CHMON_SEED repeats one case; CHMON_CASES sets how many there are. */
TEST(request_walk, equals_the_plain_account)
{
    const auto number = [](const char *variable, unsigned long otherwise) {
        const char *text = std::getenv(variable);
        return static_cast<uint32_t>(text == nullptr ? otherwise : std::strtoul(text, nullptr, 10));
    };
    run(0, true, 0, false); // the presence of the database client is tested once a process
    {
        host h({"0/1-CHMON-PRE"});
        ASSERT_EQ(check_controller_name_ots_is_good(&h.context, "Ots0/1/0/1"), 1);
    }
    const uint32_t first = number("CHMON_SEED", 1), cases = std::getenv("CHMON_SEED") ? 1 : number("CHMON_CASES", 5000);
    std::size_t compared = 0, lines = 0;
    int failures = 0;
    for (uint32_t seed = first; seed < first + cases && failures < 5; ++seed) {
        std::size_t fail_at = 0; // first without a failing call, then with one of those that were made
        for (const bool failing : {false, true}) {
            const outcome plugin = run(seed, false, fail_at, false), expected = run(seed, true, fail_at, false);
            ++compared;
            lines += plugin.lines.size();
            if (plugin.lines != expected.lines || !plugin.violations.empty()) {
                ADD_FAILURE() << difference(seed, fail_at);
                ++failures;
            }
            fail_at = failing || plugin.calls == 0 ? 0 : 1 + seed % plugin.calls;
        }
    }
    std::printf("compared=%zu lines=%zu\n", compared, lines);
    EXPECT_TRUE(failures != 0 || cases < 5000 || (compared >= 10000 && lines >= 500000));
}
