/* The plug-in's walkers and hooks against the account of them: whole runs, in every circumstance the loops think of. */
#include "figure.h"
#include "scenarios.h"
#include <csetjmp>
#include <csignal>
#include <regex>

using namespace recording;
using namespace reference;

TEST(walks, come_to_what_is_written_there)
{
    EXPECT_GE(table().size(), 40u);
    for (const scenario &row : table()) {
        const outcome is = run(row, {}, false);
        EXPECT_EQ(is.rc, row.rc) << row.kind << ' ' << row.tree;
        EXPECT_EQ(is.summary, row.expected) << row.kind << ' ' << row.tree;
    }
}

/* CHMON_SEED repeats one case; CHMON_CASES sets how many there are. */
TEST(walks, equal_the_plain_account)
{
    const std::size_t first = setting("CHMON_SEED", 1),
                      cases = setting("CHMON_CASES", std::getenv("CHMON_SEED") == nullptr ? 3000 / share() : 1);
    figure compared{"compared", cases, figure::crashes};
    compared.in_children(cases, [&](std::size_t i) {
        const scenario s = generated(static_cast<uint32_t>(first + i));
        std::size_t calls = 0;
        compared.expect(compare(s, {}, &calls));
        if (calls != 0)
            compared.expect(compare(s, {1 + s.seed % calls, s.seed % 3 == 0, false,
                                        s.seed % 2 == 0 ? 0x1234 : FAULT_SKIP_ENTRY, s.seed % 8}));
    });
}

TEST(walks, every_call_fails)
{
    figure positions{"positions", 3000 / share(), figure::unbalanced};
    std::vector<scenario> all = table();
    for (uint32_t seed = 1; seed <= 60; ++seed)
        all.push_back(generated(seed));
    positions.in_children(all.size(), [&](std::size_t i) {
        const scenario &s = all[i];
        const outcome clean = run(s, {}, false);
        for (std::size_t k = 1 + clean.calls % share(); k <= clean.calls; k += share())
            for (const bool on : {false, true})
                positions.expect(compare(s, {k, on, false, (k ^ on) % 2 == 0 ? 0x1234u : FAULT_SKIP_ENTRY, k % 8}));
        for (std::size_t k = 1, copies = 1; k <= copies; k += share())
            for (const bool on : {false, true}) {
                const outcome is = run(s, {k, on, true, 0, 0}, false);
                copies = is.calls;
                positions.expect(is.broken);
            }
        EXPECT_EQ(run(s, {}, false).lines, clean.lines) << s.tree << ": after all that failed";
    });
}

TEST(walks, every_field_odd)
{
    figure mutations{"mutations", 20000 / share(), figure::crashes};
    mutations.in_children(table().size(), [&](std::size_t row_number) {
        const scenario &row = table()[row_number];
        host counted;
        counted.plant(row.tree, ns_of(row.start));
        const std::size_t all = counted.nodes.size() * oddities.size();
        for (std::size_t i = all % share(); i < (counted.nodes.size() < 20 ? 4 : 1) * all; i += share()) {
            scenario s = row;
            const std::size_t second = i < all ? i : i * 7919 % all; // then pairs
            s.change = [&](host &h) {
                if (row.change)
                    row.change(h);
                oddities[i % oddities.size()](*h.nodes[i % all / oddities.size()]);
                if (second / oddities.size() != i % all / oddities.size())
                    oddities[second % oddities.size()](*h.nodes[second / oddities.size()]);
            };
            s.inventory = {"0/2-CHMON-PRE"};
            mutations.expect(i / share() % 2 == 0 ? compare(s, {.sinks = i / share() % 8 == 0 ? all_sinks : 0})
                                                  : run(s, {.sinks = 0}, false).broken);
        }
    });
}

TEST(walks, keys_are_counted_in_8_bits)
{
    const std::vector<std::tuple<uint32_t, int, string, faultno>> rows = {
        {0, 2, "name ", FAULT_LIST_KEY_ERROR},     {0, 256, "name ", 0},   {0, 257, "name ", 0},
        {8, 256, "name=a ", FAULT_LIST_KEY_ERROR}, {8, 257, "name=a ", 0}, {1, 257, "name=a ", 0},
        {1, 128, "name=a ", FAULT_LIST_KEY_ERROR}};
    for (const auto &[kind, keys, key, rc] : rows) {
        scenario many{0, monitor, kind, "channel-monitor{"};
        for (int i = 0; i < keys; ++i)
            many.tree += key;
        many.tree += '}';
        many.inventory.resize(1);
        EXPECT_EQ(compare(many, {.sinks = 0}), "");
        EXPECT_EQ(run(many, {}, false).rc, rc) << kind << ' ' << keys << ' ' << key;
    }
}

TEST(functions, print_data)
{
    host h;
    h.plant("a{b c d e f g}", "");
    h.state.hierarchy_len = 2;
    h.state.hierarchy[0].node_data = h.nodes[0], h.state.hierarchy[1].node_data = h.nodes[1];
    h.state.root_node = h.nodes[2], h.state.parent_node = h.nodes[3], h.state.current_node = h.nodes[4];
    h.state.reg_dup_datatree = h.nodes[5], h.state.plist = h.nodes[6];
    print_data(&h.context);
    EXPECT_EQ(h.context.data_printed, 1u);
    EXPECT_EQ(h.text(), "TRC print_data: iteration 0\nprint a#0 \"node_data\"\nTRC print_data: iteration 1\nprint b#1 "
                        "\"node_data\"\nprint c#2 \"root_node\"\nprint d#3 \"parent_node\"\nprint e#4 "
                        "\"current_node\"\nprint f#5 \"reg_dup_datatree\"\nprint g#6 \"plist\"\n");
}

/* Hooks and augment handlers by themselves, for every kind and operation, with and without value. */
TEST(functions, equal_the_plain_account)
{
    figure compared{"functions", 5000 / share()};
    std::size_t turn = 0;
    for (int n = 0; n < ids; ++n)
        for (const uint32_t kind : {0u, 1u, 2u, 8u, 10u, 15u, 16u, 17u, 32u, 42u})
            for (const string &rest :
                 products({{"", "@0", "@1", "@2", "@3", "@4"}, {"", "=0/2-CHMON-PRE", "=Ots0/2/0/1", "=%s%n"}})) {
                const facts &f = nodes[n];
                if ((f.kind != 'f' && has(rest, "=")) || ++turn % share() != 0)
                    continue;
                scenario s{0, static_cast<id>(n), kind, (f.kind == 'f' ? "" : "x:") + (f.tag + rest)};
                s.function = 'h';
                s.inventory = {"0/2-CHMON-PRE"};
                std::size_t calls = 0;
                compared.expect(compare(s, {.sinks = turn % 8}, &calls));
                if (calls < 5) // each addition that fails; those of an inventory read are other loops'
                    for (std::size_t k = 1; k <= calls; ++k)
                        compared.expect(compare(s, {.fail_at = k, .sinks = 0}));
                s.function = 'a';
                if (f.kind != 'f')
                    compared.expect(compare(s, {}));
            }
}

namespace {

jmp_buf stopped;

/* A null context stops the process, and what is left on standard error names the function: a regular expression. */
void expect_stop(const string &signature, const std::function<void()> &call_with_null)
{
    const auto before = std::signal(SIGABRT, [](int) { std::longjmp(stopped, 1); });
    testing::internal::CaptureStderr();
    if (setjmp(stopped) == 0)
        call_with_null();
    std::signal(SIGABRT, before);
    const std::regex told("\\.cpp:[0-9]+: \\w+ " + signature + ": Assertion .NULL != ctx");
    const string text = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(std::regex_search(text, told)) << signature << text;
}

} // namespace

/* What missing arguments do to every function; the native augment handlers and one hook look at nothing. */
TEST(functions, missing_arguments)
{
    std::map<string, int> functions; // by name: 2 says Start first, 1 only refuses, 0 looks at nothing
    for (int i = 0; i < ids; ++i) {
        const id n = static_cast<id>(i);
        functions[function_name(n)] = 2;
        functions[hook_name(n)] = n == interface ? 0 : hook_starts(n) ? 2 : 1;
        if (nodes[n].kind != 'f')
            functions[function_name(n) + "_parse_augments"] = is_request(n) ? 1 : 0;
        if (nodes[n].transformation != nullptr)
            functions[nodes[n].transformation] = 2;
    }
    EXPECT_EQ(functions.size(), 2 * 29 + 14 + 11u);
    for (const auto &[name, says] : functions) {
        for (const int given : {0, 1, 2, 3}) { // neither, a node, an output tree; neither, with both sinks closed
            host h;
            if (given == 3)
                h.context.trace_on = h.context.debug_filter.levels = 0;
            const dtf_datatree leaf{};
            EXPECT_EQ(call(name, &h.context, given == 1 ? &leaf : nullptr, given == 2 ? &h.out : nullptr),
                      says == 0 ? 0 : FAULT_INVALID_ARGS);
            const string start = says == 2 ? "TRC " + name + ": Start\n" : "",
                         refusal = "ERR " + name + ": Invalid arguments passed!\n";
            EXPECT_EQ(h.text(), says == 0 ? "" : (given == 3 ? "" : start + refusal) + "error_path null\n");
            EXPECT_EQ(h.imbalance(), "");
        }
        if (says == 0)
            EXPECT_EQ(call(name, nullptr, nullptr, nullptr), 0u);
        else
            expect_stop(name + "\\(dtf_map_ctx, const.*dtf_datatree.*, .*dtf_datatree.*\\)",
                        [&n = name] { call(n, nullptr, nullptr, nullptr); });
    }
    char text[200];
    const parcel_token_td unknown{6, {}, {}, {}};
    expect_stop("compare_path_.*", [&] { compare_path_and_return_data(nullptr, nullptr, "", text, text); });
    expect_stop("convert_parcel_.*", [&] { convert_parcel_value_to_str(nullptr, &unknown, text); });
    expect_stop("print_data.*", [] { print_data(nullptr); });
    expect_stop("ostore_get_data.*", [] { ostore_get_data(nullptr, "", "", nullptr, nullptr); });
    expect_stop("get_value_.*", [&] { get_value_in_parcel(nullptr, "a", 12, nullptr, 0, text); });
    expect_stop("check_controller_.*", [] { check_controller_name_ots_is_good(nullptr, ""); });
    expect_stop("ostore_get_amp_.*", [&] { ostore_get_amp_name_from_inventory(nullptr, "", text); });
    host h; // no request state, no tag to keep
    h.request.data_input = 1;
    h.context.req_ctx = nullptr;
    EXPECT_EQ(call(function_name(top) + "_parse_augments", &h.context, h.plant("x:new", ""), &h.out),
              FAULT_UNSUPPORTED_AUGMENT);
}
