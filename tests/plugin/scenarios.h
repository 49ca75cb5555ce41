/*
 * Runs of the plug-in, told as data: what is called with which tree, and in which circumstances. run() plays one, by
 * the plug-in or by the account of it, and checks what holds after every call; loops over runs are the tests.
 *
 *     recording::scenario s = recording::generated(seed);                 or a row of table()
 *     recording::run(s, {.fail_at = 3}, false).broken       what was left over, freed twice, or changed and must not be
 *     recording::compare(s, {.fail_at = 3, .fail_on = true})     that, and the first difference from the account
 */
#pragma once
#include "walk_model.h"

namespace recording {

using reference::id;

struct scenario {
    uint32_t seed = 0;
    id start = reference::top;
    uint32_t kind = 10;
    std::string tree{};
    /* "entries{...}": list entries that the framework pushes within additions of a list entry: how often, whether with
     * a callback, and whether their count is told. */
    std::string pushed{};
    uint32_t pushes = 1;
    bool called = true, counted = true;
    /* Written by hand in the rows of table(): the result and the summary of the outcome. */
    faultno rc = 0;
    std::string expected{};
    /* Whatever else is different from a plain request, done after planting. */
    std::function<void(host &)> change{};
    /* What is called of the start node: its walker, its hook ('h') or its augment handler ('a'). */
    char function = 'w';
    /* The framework pushes more than a walker takes off. */
    bool leaves_entries = false;
    std::vector<std::string> inventory = {"0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST",
                                          "0/2-CHMON-PRE", "0/3-CHMON-BST", "0/3-CHMON-PRE"};
};

/* As the members of the same name of `host`; sinks: 1 the trace buffer is open, 2 the log of errors, 4 that of traces;
 * with all open the states at each line count, too. */
constexpr std::size_t all_sinks = 7;
struct circumstance {
    std::size_t fail_at = 0;
    bool fail_on = false, fail_copies = false;
    faultno code = 0x1234;
    std::size_t sinks = all_sinks;
};

struct outcome {
    faultno rc = 0;
    /* The calls, each with a sum over all that may have changed at it; then result and trees. */
    std::vector<std::string> lines{};
    std::size_t calls = 0;
    /* What broke: violations of the contract, things left over, fields changed that are not the plug-in's. */
    std::string broken{};
    /* Additions in short, the request afterwards ("tag@operation:node_kind{...}", "!" a key), error_tag. */
    std::string summary{};
};

/* Rows with what they come to, over both directions. */
const std::vector<scenario> &table();
/* Any scenario, from a seed: all start nodes, odd trees, presets, entries pushed. */
scenario generated(uint32_t seed);
/* Things that may be odd about one node. */
extern const std::vector<void (*)(dtf_datatree &)> oddities;

outcome run(const scenario &s, const circumstance &c, bool by_account);

/* "" when the plug-in does what the account does and nothing broke; else what repeats it and the first difference.
 * calls: how many calls could have failed. */
std::string compare(const scenario &s, const circumstance &c, std::size_t *calls = nullptr);

/* "channel-monitors:3{channel-monitor@4:4{name:1!}}": operation, node_kind, key. */
std::string shape(const dtf_datatree *node);

/* Calls an exported function by its name; a container hook is given a count, too. */
faultno call(const std::string &name, dtf_map_ctx ctx, const dtf_datatree *in, dtf_datatree *out);

} // namespace recording
