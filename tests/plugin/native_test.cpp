/*
 * Both native walks against the reference: whole records of whole runs, in every circumstance the loops think of.
 */
#include "reference.h"
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using recording::host;
using recording::printed;
using reference::facts;
using reference::model;
using std::string;

namespace {

using walker = faultno (*)(dtf_map_ctx, const dtf_datatree *, dtf_datatree *);
using container_hook = faultno (*)(dtf_map_ctx, const dtf_datatree *, unsigned int, dtf_datatree *);

template <typename function> function find(const string &name)
{
    void *const found = dlsym(RTLD_DEFAULT, name.c_str());
    EXPECT_NE(found, nullptr) << name;
    return reinterpret_cast<function>(found);
}

struct scenario {
    const char *label;
    const model *m;
    string tree;
    uint32_t kind = 10, options = 0, scope = 0;
    uint8_t listed = 0;  /* length of the output list before */
    std::size_t top = 0; /* which of the model's walkers is called */
};

const string slices =
    "ots-spectrum-info{spectrum-slice-power-info{lower-frequency=191325000 upper-frequency=191375000 rx-power=-1234 "
    "x:aside} spectrum-slice-power-info@3{upper-frequency=2 odd=1 rx-power} spectrum-slice-power-info}";
const string ports = "ots-oper{ots-ports{ots-port{name=Ots0/2/0/1 " + slices + "} ots-port{" + slices +
                     " name=Ots0/4/0/1 after=1} "
                     "x:ots-port{name=Ots0/3/0/10} ots-port ots-port@4{-:bare name} other} x:foreign{name=1}}";
const string interfaces =
    "interface-configurations{interface-configuration{active=act interface-name=Ots0/2/0/1} x:aside "
    "interface-configuration{active=act interface-name=GigabitEthernet0/0/0/1 mtu=9000} "
    "interface-configuration{interface-name=Ots0/3/0/0 active=act} interface-configuration -:bare "
    "interface-configuration{x:active interface-name} interface-configuration{}}";
const std::vector<scenario> scenarios = {
    {"ports", &reference::ots, ports},
    {"ports, list full", &reference::ots, ports, 10, 0, 0, 255},
    {"ports, kind 0", &reference::ots, ports, 0},
    {"a port alone", &reference::ots, "ots-port{name=Ots0/3/0/01 " + slices + "}", 10, 0, 0, 0, 2},
    {"a slice alone", &reference::ots, "spectrum-slice-power-info@4{rx-power=5 lower-frequency=1}", 10, 0, 0, 0, 4},
    {"interfaces", &reference::ifmgr, interfaces, 0},
    {"interfaces, options, scope 2", &reference::ifmgr, interfaces, 10, 4, 2},
    {"interfaces, options, scope 1", &reference::ifmgr, interfaces, 10, 4, 1},
    {"interfaces, scope 2", &reference::ifmgr, interfaces, 1, 0, 2, 254},
};

struct circumstance {
    std::size_t fail_at = 0;
    bool fail_on = false, fail_copies = false;
    faultno code = 0x12345678;
    uint32_t trace_on = 1, levels = 9;
    std::function<void(host &)> change = [](host &) {};
};

/* Everything a run leaves, as text. The plug-in's run has to find the client library once before it compares. */
struct outcome {
    string text;
    std::size_t calls, asked, drawn, reports;
};
outcome run(const scenario &s, const circumstance &c, bool real)
{
    static const bool primed = [] {
        host h({"0/1-CHMON-PRE"});
        return check_controller_name_ots_is_good(&h.context, "Ots0/1/0/1");
    }();
    EXPECT_TRUE(primed);
    host h({"0/2-CHMON-PRE", "0/3-CHMON-BST", "0/3-CHMON-PRE"});
    dtf_datatree *const in = h.plant(s.tree, s.m->ns);
    h.request = {s.kind, s.options, s.scope};
    h.state.output_list_len = s.listed;
    h.state.req_flags = 0x40;
    h.context.trace_on = c.trace_on;
    h.context.debug_filter.levels = c.levels;
    h.fail_at = c.fail_at, h.fail_on = c.fail_on, h.fail_copies = c.fail_copies, h.fail_code = c.code;
    c.change(h);
    const facts &top = s.m->nodes[s.top];
    const faultno rc = real ? find<walker>(s.m->walker(top))(&h.context, in, &h.out) : reference::walk(*s.m, top, in);
    const string text = printed("%x, req_flags %x\n", rc, h.state.req_flags) + h.imbalance() + h.text() + h.dump(in);
    return {text, h.calls, h.should_log_calls, h.indices_drawn, h.reports.size()};
}

/* Runs both and tells what repeats a difference. Counts, so that a loop that ran nothing is noticed. */
struct loop {
    const char *name;
    std::size_t floor, cases = 0, told = 0;
    outcome compare(const scenario &s, const circumstance &c, const string &what)
    {
        ++cases;
        const outcome real = run(s, c, true), meant = run(s, c, false);
        if (real.text != meant.text && ++told <= 3) {
            EXPECT_EQ(real.text, meant.text)
                << name << ": " << s.label << ", " << what
                << printed(", call %zu fails%s with %x", c.fail_at, c.fail_on ? " and all after it" : "", c.code);
        }
        return real;
    }
    ~loop()
    {
        std::printf("%s: %zu cases\n", name, cases);
        EXPECT_GE(cases, floor) << name;
    }
};

} // namespace

TEST(native, every_call_fails)
{
    loop each{"every_call_fails", 1000};
    for (const scenario &s : scenarios) {
        const outcome clean = each.compare(s, {}, "clean");
        for (std::size_t k = 1; k <= clean.calls; ++k)
            for (const bool on : {false, true})
                for (const faultno code : {0x12345678u, FAULT_SKIP_ENTRY})
                    each.compare(s, {k, on, false, code}, "failing");
        EXPECT_EQ(run(s, {}, true).text, clean.text) << s.label << ": the clean run after all failing ones";
    }
}

TEST(native, every_copy_fails)
{
    loop each{"every_copy_fails", 30};
    for (const scenario &s : scenarios)
        for (std::size_t k = 1; s.listed == 0 && s.top == 0 && (k == 1 || k <= run(s, {0, false, true}, true).calls);
             ++k, ++each.cases)
            for (const bool on : {false, true})
                EXPECT_TRUE(run(s, {k, on, true}, true).text.starts_with("0, req_flags 40\nTRC"))
                    << s.label << ", copy " << k;
}

/* One field of one node missing or odd, and pairs of them. */
TEST(native, every_field_missing_or_odd)
{
    static const string long_text(300, '7');
    // clang-format off
    const std::vector<std::function<void(dtf_datatree &)>> oddities = {
        [](auto &n) { n.tag = nullptr; }, [](auto &n) { n.tag = "%s%n"; }, [](auto &n) { n.tag = long_text.c_str(); },
        [](auto &n) { n.tag = "name"; }, [](auto &n) { n.tag = "rx-power"; }, [](auto &n) { n.ns = nullptr; },
        [](auto &n) { n.ns = "urn:foreign"; }, [](auto &n) { n.ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR; },
        [](auto &n) { n.value = nullptr; }, [](auto &n) { n.value = ""; }, [](auto &n) { n.value = "%s%n%d"; },
        [](auto &n) { n.value = long_text.c_str(); }, [](auto &n) { n.value = "Ots0/3/0/1"; },
        [](auto &n) { n.value = " -5e2x"; }, [](auto &n) { n.value = "Ots0/4294967298/0/1"; },
        [](auto &n) { n.flags = ~DTF_FLAG_HAS_SUBTREE, n.child_count = 1000, n.children = nullptr; },
        [](auto &n) { n.flags |= DTF_FLAG_HAS_SUBTREE, n.child_count = 1, n.children = nullptr; },
        [](auto &n) { n.flags |= DTF_FLAG_HAS_SUBTREE, n.child_count = 0, n.children = nullptr; },
        [](auto &n) { n.flags ^= DTF_FLAG_HAS_SUBTREE; }, [](auto &n) { n.child_count = 0; },
        [](auto &n) { n.flags |= DTF_FLAG_ERROR_KIND, n.error_kind = 5; }, [](auto &n) { n.error_kind = 5; },
        [](auto &n) { n.flags |= DTF_FLAG_ERROR_KIND, n.error_kind = 4; }, [](auto &n) { n.flags &= ~1u; },
        [](auto &n) { n.operation = 3; }, [](auto &n) { n.operation = 0xffffffff; },
        [](auto &n) { n.is_key = 7, n.kind_flags = 0xff, n.node_kind = 9; }};
    // clang-format on
    loop each{"every_field_missing_or_odd", 3000};
    for (const scenario &s : scenarios) {
        if (s.listed != 0 || s.options != 0)
            continue;
        host counted;
        counted.plant(s.tree, s.m->ns);
        const std::size_t all = counted.nodes.size() * oddities.size();
        for (std::size_t i = 0; i < all + all / 4; ++i) {
            const std::size_t second = i < all ? i : i * 7919 % all;
            const auto change = [&](host &h) {
                oddities[i % oddities.size()](*h.nodes[i % all / oddities.size()]);
                if (second != i && second / oddities.size() != i % all / oddities.size())
                    oddities[second % oddities.size()](*h.nodes[second / oddities.size()]);
            };
            each.compare(s, {.change = change}, printed("oddities %zu and %zu", i % all, second));
        }
    }
}

/* A closed sink costs its question and nothing else. */
TEST(native, sinks)
{
    loop each{"sinks", 40};
    for (const scenario &s : scenarios) {
        const outcome open = run(s, {}, true);
        for (const uint32_t levels : {0u, 1u, 8u, 9u})
            for (const uint32_t trace_on : {0u, 0x80000000u}) {
                const outcome seen = each.compare(s, {.trace_on = trace_on, .levels = levels},
                                                  printed("levels %u, trace %u", levels, trace_on));
                EXPECT_EQ(seen.asked, open.reports);
                EXPECT_EQ(seen.drawn, trace_on != 0 ? open.reports : 0);
            }
    }
}

/* What a null argument does to each kind of function; the native augment handlers and one hook look at nothing. */
TEST(native, null_arguments)
{
    GTEST_FLAG_SET(death_test_style, "fast");
    std::vector<std::pair<string, string>> functions; // name, its lines for a null argument; none: looks at nothing
    const auto fails = [](const string &name, bool start) {
        return (start ? "TRC " + name + ": Start\n" : "") + "ERR " + name +
               ": Invalid arguments passed!\nerror_path null\n";
    };
    for (const model *m : {&reference::ots, &reference::ifmgr})
        for (const facts &f : m->nodes) {
            functions.emplace_back(m->walker(f), fails(m->walker(f), true));
            const bool passes_on = f.kind == 'f' && f.part.find("frequency") == string::npos,
                       empty = f.kind == 'l' && m == &reference::ifmgr;
            functions.emplace_back(m->hook(f), empty ? "" : fails(m->hook(f), !passes_on));
            if (f.kind != 'f')
                functions.emplace_back(m->walker(f) + "_parse_augments", "");
        }
    for (const char *name :
         {"oc_chmon_list_to_high", "opt_key_to_high", "oc_opt_chmon_state_power_to_high", "op_chmon_cfg_name_to_high"})
        functions.emplace_back(name, fails(name, true));
    for (const auto &[name, lines] : functions) {
        const bool counted = name.find("_cont_") != string::npos;
        const auto call = [&, &n = name](dtf_map_ctx ctx, const dtf_datatree *in, dtf_datatree *out) {
            return counted ? find<container_hook>(n)(ctx, in, 77, out) : find<walker>(n)(ctx, in, out);
        };
        for (const int given : {0, 1, 2}) {
            host h;
            const dtf_datatree leaf{};
            EXPECT_EQ(call(&h.context, given == 1 ? &leaf : nullptr, given == 2 ? &h.out : nullptr),
                      lines.empty() ? 0 : FAULT_INVALID_ARGS)
                << name;
            EXPECT_EQ(h.text(), lines);
            EXPECT_EQ(h.imbalance(), "");
            const string signature = "faultno " + name + "\\(dtf_map_ctx, const (struct )?dtf_datatree ?\\*, " +
                                     (counted ? "unsigned int, " : "") + "(struct )?dtf_datatree ?\\*\\)";
            if (lines.empty()) {
                EXPECT_EQ(call(nullptr, given == 1 ? &leaf : nullptr, nullptr), 0u) << name;
            } else if (given == 1) {
                EXPECT_DEATH(call(nullptr, &leaf, nullptr),
                             "\\.cpp:[0-9]+: " + signature + ": Assertion .NULL != ctx. failed")
                    << name;
            }
        }
    }
    EXPECT_EQ(functions.size(), 2 * 12 + 7 + 4u);
}

TEST(native, lines_of_start_and_end)
{
    host h({"0/2-CHMON-PRE"});
    const dtf_datatree *const in = h.plant(ports, reference::ots.ns);
    (void)find<walker>(reference::ots.walker(reference::ots.nodes[0]))(&h.context, in, &h.out);
    std::map<string, int> start;
    for (const auto &r : h.reports) {
        if (r.text == "Start")
            start[r.function] = r.line;
        EXPECT_TRUE(r.text != "End" || start.at(r.function) < r.line) << r.function;
    }
    EXPECT_GE(start.size(), 15u);
}

/* Told by hand, so that the reference is held too. */
TEST(native, what_ports_and_interfaces_become)
{
    const string oc = "/channel-monitors/channel-monitor", channel = oc + "/channels/channel";
    const auto added = [](const scenario &s) {
        host h({"0/2-CHMON-PRE", "0/3-CHMON-BST"});
        h.request.data_input = s.kind;
        const dtf_datatree *const in = h.plant(s.tree, s.m->ns);
        EXPECT_EQ(find<walker>(s.m->walker(s.m->nodes[0]))(&h.context, in, &h.out), 0u);
        return h.added();
    };
    EXPECT_EQ(added({"", &reference::ots,
                     "ots-oper{ots-ports{ots-port{name=Ots0/2/0/1 "
                     "ots-spectrum-info{spectrum-slice-power-info{lower-frequency=191325000 "
                     "upper-frequency=191375000 rx-power=-1234}}} ots-port{ots-spectrum-info name=Ots0/9/0/0 after} "
                     "ots-port{name=Ots0/3/0/01}}}"}),
              oc + " new\n" + oc + "/name=0/2-CHMON-PRE\n" + oc + "/state/name=0/2-CHMON-PRE\n" + oc +
                  "/state/monitor-port=0/2-OtsCtrl-0/1\n" + channel + " new\n" + channel +
                  "/lower-frequency=191325000\n" + channel + "/state/lower-frequency=191325000\n" + channel +
                  "/state/upper-frequency=191375000\n" + channel + "/upper-frequency=191375000\n" + channel +
                  "/state/power=-12.34\n" + oc + " new\n" + oc + " new\n" + oc + "/name=0/3-CHMON-BST\n" + oc +
                  "/state/name=0/3-CHMON-BST\n" + oc + "/state/monitor-port=0/3-OtsCtrl-0/0\n");
    EXPECT_EQ(added({"", &reference::ots, ports, 1}), "");
    EXPECT_EQ(added({"", &reference::ifmgr, interfaces}),
              oc + "/name=0/2-CHMON-PRE\n" + oc + "/config/name=0/2-CHMON-PRE\n" + oc +
                  "/config/monitor-port=0/2-OtsCtrl-0/1\n" + oc + "/name=0/3-CHMON-BST\n" + oc +
                  "/config/name=0/3-CHMON-BST\n" + oc + "/config/monitor-port=0/3-OtsCtrl-0/0\n");
}

/* Hundredths to a decimal, as "%lf" takes and "%.2f" gives them, also where the process writes decimals with a comma.
 */
TEST(native, power)
{
    // clang-format off
    std::map<string, string> powers = {{"-1234", "-12.34"}, {"5", "0.05"}, {"0", "0.00"}, {"-1", "-0.01"}, {"250", "2.50"},
                                       {"dark", "0.00"}, {"12,5", "0.12"}, {"0x10", "0.16"}, {"1e400", "inf"}};
    for (const auto &[native, expected] : powers)
        EXPECT_EQ(reference::power(native.c_str()), expected); // the reference, held by hand
    for (const char *before : {"", " ", "\n\t", "+", "-", "--", "+-", "- ", "x"})
        for (const string &body : {string(), string("0"), string("7.5"), string(".5"), string("5."), string("."), string("1e"), string("1e+"), string("1e3"),
                 string("25e-1x"), string("1e308"), string("1e-400"), string("0x"), string("0x.8"), string("0X1p4"), string("0xg"), string("0x1p"), string("nan"),
                 string("NAN(12)"), string("nan("), string("inf"), string("infinity"), string("infinit"), string("2147483648"), string(300, '9'), string(199, '0') + '5'})
            powers[before + body] = reference::power((before + body).c_str());
    // clang-format on
    const auto check = [&](const string &locale) {
        for (const auto &[native, expected] : powers) {
            host h;
            dtf_datatree leaf{};
            leaf.value = h.keep(native);
            EXPECT_EQ(oc_opt_chmon_state_power_to_high(&h.context, &leaf, &h.out), 0u);
            EXPECT_EQ(h.added(), "/channel-monitors/channel-monitor/channels/channel/state/power=" + expected + '\n')
                << native << locale;
        }
    };
    check("");
    // The C locale's numbers with every point made a comma; no machine here need have another locale.
    const auto folder = std::filesystem::path(testing::TempDir()) / "comma_locale" / "xx";
    std::filesystem::create_directories(folder);
    std::ifstream from("/usr/lib/locale/C.utf8/LC_NUMERIC", std::ios::binary);
    string bytes{std::istreambuf_iterator<char>(from), {}};
    std::replace(bytes.begin(), bytes.end(), '.', ',');
    std::ofstream(folder / "LC_NUMERIC", std::ios::binary) << bytes;
    setenv("LOCPATH", folder.parent_path().c_str(), 1);
    if (std::setlocale(LC_NUMERIC, "xx") == nullptr || printed("%.1f", 0.5) != "0,5")
        GTEST_SKIP() << "no locale with a comma can be made here";
    check(" under a comma locale");
    std::setlocale(LC_NUMERIC, "C");
}
