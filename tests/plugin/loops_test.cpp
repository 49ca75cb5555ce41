/* The plug-in's walkers and hooks against the account of them: whole runs, in every circumstance the loops think of. */
#include "figure.h"
#include "scenarios.h"
#include <csetjmp>
#include <csignal>
#include <gtest/gtest.h>
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
    const char *const one = std::getenv("CHMON_SEED"), *const many = std::getenv("CHMON_CASES");
    const std::size_t first = one == nullptr ? 1 : std::strtoul(one, nullptr, 10),
                      cases = one != nullptr    ? 1
                              : many != nullptr ? std::strtoul(many, nullptr, 10)
                                                : 3000 / share();
    figure compared{"compared", cases};
    for (std::size_t seed = first; seed < first + cases && compared.wrong == 0; ++seed) {
        const scenario s = generated(static_cast<uint32_t>(seed));
        std::size_t calls = 0;
        const auto told = [seed](const string &text) { return text.empty() ? "" : printed("seed %zu, ", seed) + text; };
        compared.expect(told(compare(s, {}, &calls)));
        if (calls != 0)
            compared.expect(told(compare(s, {1 + seed % calls, seed % 3 == 0, false,
                                             seed % 2 == 0 ? 0x1234 : FAULT_SKIP_ENTRY, seed % 4 != 0})));
    }
}

TEST(walks, every_call_fails)
{
    figure positions{"positions", 3000 / share()};
    std::vector<scenario> all = table();
    for (uint32_t seed = 1; seed <= 60; ++seed)
        all.push_back(generated(seed));
    for (const scenario &s : all) {
        const outcome clean = run(s, {}, false);
        for (std::size_t k = 1 + clean.calls % share(); k <= clean.calls; k += share())
            for (const bool on : {false, true})
                positions.expect(
                    compare(s, {k, on, false, (k ^ on) % 2 == 0 ? 0x1234u : FAULT_SKIP_ENTRY, k % 3 == 0}));
        for (std::size_t k = 1, copies = 1; k <= copies; k += share())
            for (const bool on : {false, true}) {
                const outcome is = run(s, {k, on, true, 0, false}, false);
                copies = is.calls;
                positions.expect(is.broken);
            }
        EXPECT_EQ(run(s, {}, false).lines, clean.lines) << s.tree << ": after all that failed";
    }
}

TEST(walks, every_field_odd)
{
    figure mutations{"mutations", 20000 / share()};
    for (const scenario &row : table()) {
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
            mutations.expect(i / share() % 2 == 0 ? compare(s, {.reports = i / share() % 8 == 0})
                                                  : run(s, {.reports = false}, false).broken);
        }
    }
}

TEST(walks, keys_are_counted_in_8_bits)
{
    for (const uint32_t kind : {0u, 1u, 8u, 10u})
        for (const std::size_t count : {2u, 128u, 256u, 257u})
            for (const string key : {"name ", "name=0/1-CHMON-PRE "}) {
                scenario many{monitor, kind, "channel-monitor{"};
                for (std::size_t i = 0; i < count; ++i)
                    many.tree += key;
                many.tree += '}';
                many.inventory.resize(1);
                EXPECT_EQ(compare(many, {.reports = false}), "");
                const uint8_t valued = static_cast<uint8_t>(key == "name " ? 0 : count),
                              keys = static_cast<uint8_t>(count);
                const bool passes =
                    kind == 1 ? valued == 1 && keys < 2 : (keys | valued) <= 1 && (kind != 8 || valued == 1);
                EXPECT_EQ(run(many, {}, false).rc == FAULT_LIST_KEY_ERROR, !passes)
                    << kind << ' ' << count << ' ' << key;
            }
}

/* Hooks and augment handlers by themselves, for every kind and operation, with and without value. */
TEST(functions, equal_the_plain_account)
{
    figure compared{"functions", 5000 / share()};
    std::size_t turn = 0;
    for (int n = 0; n < ids; ++n)
        for (const uint32_t kind : {0u, 1u, 2u, 8u, 10u, 15u, 16u, 17u, 32u, 42u})
            for (const string operation : {"", "@0", "@1", "@2", "@3", "@4"})
                for (const string value : {"", "=0/2-CHMON-PRE", "=Ots0/2/0/1", "=%s%n"}) {
                    const facts &f = nodes[n];
                    if ((f.kind != 'f' && !value.empty()) || ++turn % share() != 0)
                        continue;
                    scenario s{static_cast<id>(n), kind,
                               (f.kind == 'f' ? f.tag : "x:" + string(f.tag)) + operation + value};
                    s.function = 'h';
                    s.inventory = {"0/2-CHMON-PRE"};
                    std::size_t calls = 0;
                    compared.expect(compare(s, {}, &calls));
                    if (calls < 5) // each addition that fails; those of an inventory read are other loops'
                        for (std::size_t k = 1; k <= calls; ++k)
                            compared.expect(compare(s, {.fail_at = k, .reports = false}));
                    s.function = 'a';
                    if (f.kind != 'f')
                        compared.expect(compare(s, {}));
                }
}

namespace {

jmp_buf stopped;

/* What stands on standard error when a null context stops the process; "" when it does not. */
string assertion_of(const std::function<void()> &call_with_null)
{
    const auto before = std::signal(SIGABRT, [](int) { std::longjmp(stopped, 1); });
    testing::internal::CaptureStderr();
    if (setjmp(stopped) == 0)
        call_with_null();
    std::signal(SIGABRT, before);
    return testing::internal::GetCapturedStderr();
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
        const string text = assertion_of([&n = name] { call(n, nullptr, nullptr, nullptr); });
        const string signature = "faultno " + name + "\\(dtf_map_ctx, const.*dtf_datatree.*, .*dtf_datatree.*\\): ";
        EXPECT_TRUE(says == 0
                        ? text.empty()
                        : std::regex_search(text, std::regex("\\.cpp:[0-9]+: " + signature + "Assertion .NULL != ctx")))
            << name << text;
    }
    char text[200];
    parcel_token_td unknown{6, {}, {}, {}};
    const std::pair<const char *, std::function<void()>> others[] = {
        {"compare_path_and_return_data", [&] { compare_path_and_return_data(nullptr, nullptr, "", text, text); }},
        {"convert_parcel_value_to_str", [&] { convert_parcel_value_to_str(nullptr, &unknown, text); }},
        {"print_data", [] { print_data(nullptr); }},
        {"ostore_get_data", [] { ostore_get_data(nullptr, "", "", nullptr, nullptr); }},
        {"get_value_in_parcel", [&] { get_value_in_parcel(nullptr, "a", 12, nullptr, 0, text); }},
        {"check_controller_name_ots_is_good", [] { check_controller_name_ots_is_good(nullptr, ""); }},
        {"ostore_get_amp_name_from_inventory", [&] { ostore_get_amp_name_from_inventory(nullptr, "", text); }}};
    for (const auto &[name, with_null] : others)
        EXPECT_TRUE(std::regex_search(assertion_of(with_null), std::regex(string(name) + "\\(.*NULL != ctx"))) << name;
    host h; // no request state, no tag to keep
    h.request.data_input = 1;
    h.context.req_ctx = nullptr;
    EXPECT_EQ(call(function_name(top) + "_parse_augments", &h.context, h.plant("x:new", ""), &h.out),
              FAULT_UNSUPPORTED_AUGMENT);
}

/* A closed sink costs its question and nothing else; End stands behind Start. */
TEST(functions, sinks)
{
    for (const scenario &s : table()) {
        std::size_t reports = 0;
        for (const uint32_t levels : {9u, 0u, 1u, 8u})
            for (const uint32_t trace_on : {0x80000000u, 0u}) {
                host h(s.inventory);
                const dtf_datatree *const in = h.plant(s.tree, ns_of(s.start));
                h.request.data_input = s.kind;
                h.context.trace_on = trace_on;
                h.context.debug_filter.levels = levels;
                call(function_name(s.start), &h.context, in, &h.out);
                reports = reports == 0 ? h.reports.size() : reports;
                EXPECT_EQ(h.should_log_calls, reports);
                EXPECT_EQ(h.indices_drawn, trace_on != 0 ? reports : 0);
                std::map<string, int> start;
                for (const auto &r : h.reports)
                    if (trace_on != 0 && r.text == "Start")
                        start[r.function] = r.line;
                    else
                        EXPECT_TRUE(trace_on == 0 || r.text != "End" || start.at(r.function) < r.line) << r.function;
                EXPECT_EQ(h.imbalance(), "");
            }
    }
}
