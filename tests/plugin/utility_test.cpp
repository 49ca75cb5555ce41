/* Names, numbers, records, inventory, path search and texts: against the reference over products of odd parts. */
#include "figure.h"
#include "framework/guarded_page.h"
#include "scenarios.h"
#include <clocale>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

using namespace recording;
using namespace reference;

namespace {

/* The last bytes before an unmapped page, so that a byte beyond them stops the process. */
template <std::size_t size> struct buffer : guarded_page {
    char *const bytes = last(size);
    /* A text at the block's very end. */
    const char *hold(const string &text) { return std::strcpy(end() - 1 - text.size(), text.c_str()); }
    string text() const { return {bytes, strnlen(bytes, size)}; }
};

template <typename function> string converted(function convert, const char *name)
{
    static buffer<20> output;
    std::memset(output.bytes, '#', 20);
    convert(name, output.bytes);
    return output.text();
}

const string cycles[] = {"a",  "%s%n", "0/2-CHMON-PRE", "Ots0/2/0/1", "-7.5e1", "/", "00000000000000000000000000001x",
                         "a.b"};
string text_of(const string &cycle, std::size_t length)
{
    string text(length, ' ');
    for (std::size_t i = 0; i < length; ++i)
        text[i] = cycle[i % cycle.size()];
    return text;
}

} // namespace

/* Every text function, inputs of each length, the output ending at an unmapped page. */
TEST(utility, bounds)
{
    const host copies;
    figure all{"bounds", 20000 / share()};
    buffer<601> input, value;
    buffer<200> output;
    for (std::size_t length = 0; length <= 600; length += length < 30 || length % 100 > 50 ? 1 : share())
        for (const string &cycle : cycles) {
            const string given = text_of(cycle, length);
            const char *const text = input.hold(given);
            all.equal(converted(convert_ctrl_key_to_chmon_key, text), chmon_name(given), given);
            all.equal(converted(convert_oc_key_to_controller_key, text), controller_name(given), given);
            all.equal(converted(convert_amplifier_key_to_ingress_port, text), ingress_port(given), given);
            host store;
            (void)ostore_get_amp_name_from_inventory(&store.context, text, output.bytes);
            const string item = (replace_str(text, "/", "%2f") + string("/attrib/inv_basic_parcel")).substr(0, 255);
            all.equal(has(store.text(), ("get \"" + item + "\" 7 0\n").c_str()), true, given);
            (void)get_value_in_parcel(&store.context, text, 12, store.parcel({{18}}), 8, output.bytes);
            for (const uint32_t type : {12u, 13u}) {
                (void)get_value_in_parcel(&store.context, "a", 12, store.parcel({{type, "a", given}}), 8, output.bytes);
                all.equal(output.text(), given.substr(0, 199), given);
            }
            for (const id n : {name, config_name, state_name, state_power, port_name, slice_power, interface_name})
                if (length < 25 || length % 10 < 3) {
                    scenario hooked{0, n, length % 2 == 0 ? 10u : 0u, nodes[n].tag};
                    hooked.function = 'h';
                    hooked.change = [&](host &h) { h.nodes[0]->value = value.hold(given); };
                    hooked.inventory.resize(1);
                    all.expect(compare(hooked, {.sinks = length % 50}));
                }
        }
}

TEST(utility, replace_and_copy)
{
    figure all{"replaced", 2000};
    const string text = "a/b/c";
    EXPECT_STREQ(replace_str(text.c_str(), "/", "%2f"), "a%2fb/c");
    EXPECT_STREQ(replace_str("%s/%n", "/", "%s%s"), "%s%s%s%n");
    EXPECT_STREQ(replace_str(replace_str(text.c_str(), "b", "//"), "//", "longer"), "alonger//c");
    EXPECT_EQ(replace_str(text.c_str(), "x", "y"), text.c_str());
    for (std::size_t length = 4000; length <= 4200; ++length)
        for (const std::size_t at : {std::size_t{0}, length / 2, length - 2})
            for (const string &replacement : {string(), string("%2f"), string("%s%n"), string(90, 'r')}) {
                const string input = string(length, 'a').replace(at, 2, "//");
                const char *const result = replace_str(input.c_str(), "//", replacement.c_str());
                if (length - 2 + replacement.size() < 4096)
                    all.equal(string(result), string(input).replace(at, 2, replacement), input);
                else
                    all.equal(result, input.c_str(), input);
            }
    buffer<8> room;
    for (std::size_t size = 1; size < 8; ++size)
        for (std::size_t count = 0; count < 8; ++count)
            for (const string &source : {string(), string("abc"), string("abcdefghij")}) {
                char *const destination = room.bytes + 8 - size;
                const string wanted = source.substr(0, count), held = wanted.substr(0, size - 1);
                all.equal(strncpy_s(destination, size, source.c_str(), count) != 0, held != wanted, source);
                all.equal(string(destination), held, source);
            }
    char byte = '#';
    EXPECT_NE(strncpy_s(nullptr, 5, "a", 1), 0);
    EXPECT_NE(strncpy_s(&byte, 0, "a", 1), 0);
    EXPECT_EQ(byte, '#');
    EXPECT_NE(strncpy_s(&byte, 1, nullptr, 1), 0);
    EXPECT_EQ(byte, '\0');
}

/* Products of odd components, numbers beyond 64 bits among them. */
TEST(utility, names)
{
    const host copies;
    figure all{"names", 30000};
    std::size_t accepted_out_of_range = 0, roundtrip = 0;
    // clang-format off
    const std::vector<string> numbers = {"", "0", "1", "2", "3", "4", "12", " 2", "\t\n+2", "+-1", "- 1", "-1", "-0", "000000000000000000001", "1x", "0x1",
        "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967296", "4294967298", "18446744073709551617", "-18446744073709551615", string(17, '0') + "2", "36893488147419103234"};
    // clang-format on
    for (const string &given : products({{"Ots0/", "ots0/", "Ots1/", "Ots0/ ", " Ots0/", "O", "", "%s%n"},
                                         numbers,
                                         {"/0/", "/1/", "/00/", "/0/ ", " /0/", "/", ""},
                                         numbers})) {
        all.equal(converted(convert_ctrl_key_to_chmon_key, given.c_str()), chmon_name(given), given);
        host h({"0/0-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST"});
        h.context.trace_on = h.context.debug_filter.levels = 0;
        const bool good = check_controller_name_ots_is_good(&h.context, given.c_str()) == 1;
        const auto read = scan(given, {"Ots0/", "/0/"});
        accepted_out_of_range += good && (read[0] < 0 || read[0] > 3 || read[1] < 0 || read[1] > 1);
        all.equal(good, read[0] >= 0 && read[0] <= 2 && read[1] == read[0] % 2, given);
    }
    for (const string &given : products({{"0/", "0/ ", "1/", "/", ""},
                                         numbers,
                                         {"-CHMON-", "-CHMON", "CHMON-", "-", ""},
                                         {"PRE", "BST", "XPREX", "PR", "pre", "", "----------------PRE"}})) {
        all.equal(converted(convert_oc_key_to_controller_key, given.c_str()), controller_name(given), given);
        all.equal(converted(convert_amplifier_key_to_ingress_port, given.c_str()), ingress_port(given), given);
    }
    // By hand, so that the reference is held too.
    // clang-format off
    const struct { void (*convert)(const char *, char *); string from, to; } by_hand[] = {
        {convert_ctrl_key_to_chmon_key, "Ots0/1/0/0", "0/1-CHMON-BST"}, {convert_ctrl_key_to_chmon_key, "xyz", "0/-1-CHMON-PRE"},
        {convert_ctrl_key_to_chmon_key, "Ots0/2/0/7", "0/2-CHMON-PRE"}, {convert_ctrl_key_to_chmon_key, "Ots0/2/1/1", "0/2-CHMON-PRE"},
        {convert_ctrl_key_to_chmon_key, "Ots0/2147483647/0/0", "0/2147483647-CHMON-"},
        {convert_ctrl_key_to_chmon_key, "Ots0/4294967298/0/1", "0/-1-CHMON-PRE"},
        {convert_oc_key_to_controller_key, "0/2-foo", "Ots0/2/0/0"}, {convert_oc_key_to_controller_key, "0/2-CHMON-XPREX", "Ots0/2/0/1"},
        {convert_amplifier_key_to_ingress_port, "0/12-CHMON-PRE", "0/1-OtsCtrl-0/1"},
        {convert_amplifier_key_to_ingress_port, "Ots0/2/0/1", "-OtsCtrl-0/0"}};
    // clang-format on
    for (const auto &[convert, from, to] : by_hand)
        EXPECT_EQ(converted(convert, from.c_str()), to) << from;
    for (const string refused :
         {"Ots0/2/0/2 and port id [2]", "Ots0/4/0/1 and slot id [4]", "Ots0/-1/0/0 and slot id [-1]"}) {
        host h;
        const string controller = refused.substr(0, refused.find(' ')), reason = refused.substr(controller.size());
        EXPECT_EQ(check_controller_name_ots_is_good(&h.context, controller.c_str()), 0);
        EXPECT_EQ(h.lines.at(0), "TRC check_controller_name_ots_is_good: controller_name = " + controller);
        EXPECT_EQ(h.lines.at(1),
                  printed("ERR check_controller_name_ots_is_good: Invalid controller_name [%s]%s, discard it!",
                          controller.c_str(), reason.c_str()));
    }
    string list;
    for (const char *const *controller = controller_chmon_ots_list; *controller != nullptr; ++controller) {
        const string chmon = converted(convert_ctrl_key_to_chmon_key, *controller);
        roundtrip += converted(convert_oc_key_to_controller_key, chmon.c_str()) == *controller;
        list += string(*controller) + ' ';
    }
    EXPECT_EQ(list, "Ots0/1/0/0 Ots0/1/0/1 Ots0/2/0/0 Ots0/2/0/1 Ots0/3/0/0 Ots0/3/0/1 ");
    std::printf("accepted_out_of_range=%zu roundtrip=%zu/6\n", accepted_out_of_range, roundtrip);
    EXPECT_EQ(accepted_out_of_range, 0u);
    EXPECT_EQ(roundtrip, 6u);
}

namespace {

/* What a power leaf with this value comes to. */
string added_for(id n, const string &value)
{
    host h;
    h.context.trace_on = h.context.debug_filter.levels = 0;
    dtf_datatree leaf{};
    leaf.value = value.c_str();
    EXPECT_EQ(call(nodes[n].transformation, &h.context, &leaf, &h.out), 0u);
    return h.additions.empty() ? "none" : *h.additions[0].value;
}

} // namespace

/* Power both ways, as "%lf" takes and "%.2f" gives it, also where the process writes decimals with a comma. */
TEST(utility, numbers)
{
    // clang-format off
    std::map<string, string> to_high = {{"-1234", "-12.34"}, {"5", "0.05"}, {"0", "0.00"}, {"-1", "-0.01"}, {"250", "2.50"}, {"dark", "0.00"}, {"12,5", "0.12"},
                                        {"0x10", "0.16"}, {"1e400", "inf"}, {"2147483648", "21474836.48"}, {"-2147483649", "-21474836.49"}};
    std::map<string, string> to_low = {{"-12.34", "-1234"}, {"-4.35", "-434"}, {"0.29", "28"}, {"-0.004", "0"}, {"", "0"}, {"abc", "0"}, {"-", "0"}, {"-.e1", "0"},
        {"1e3", "100000"}, {"%s%n", "0"}, {"7dBm", "700"}, {"nan", "0"}, {"inf", "2147483647"}, {"-1e308", "-2147483648"}, {"0x10", "1600"}, {"1,5", "100"},
        {string(250, '1'), "2147483647"}, {"21474836.46", "2147483646"}, {"21474836.47", "2147483647"}, {"21474836.48", "2147483647"}, {"21474836.49", "2147483647"},
        {"-21474836.47", "-2147483647"}, {"-21474836.48", "-2147483648"}, {"-21474836.49", "-2147483648"}, {"-inf", "-2147483648"}};
    for (const auto &[native, expected] : to_high)
        EXPECT_EQ(power(native.c_str()), expected); // the reference, held by hand
    for (const auto &[decimal, expected] : to_low)
        EXPECT_EQ(native_power(decimal.c_str()), expected);
    for (const string &text : products({{"", " ", "\n\t", "+", "-", "--", "+-", "- ", "x"},
            {"", "0", "7.5", ".5", "5.", ".", "1e", "1e+", "1e3", "25e-1x", "1e308", "1e-400", "0x", "0x.8", "0x-5", "0xinf", "0X1p4", "0xg", "0x1p", "nan", "NAN(12)", "nan(", "inf",
             "infinity", "infinit", "INFINIT", "2147483648", string(300, '9'), string(199, '0') + '5'}}))
        to_high[text] = power(text.c_str()), to_low[text] = native_power(text.c_str());
    // clang-format on
    const auto check_boundaries = [&](const char *name) {
        figure boundaries{name, 500};
        for (const auto &[native, expected] : to_high)
            boundaries.equal(added_for(slice_power, native), expected, native);
        for (const auto &[decimal, expected] : to_low)
            boundaries.equal(added_for(state_power, decimal), expected, decimal);
    };
    check_boundaries("boundaries");
    std::mt19937_64 random(1);
    const std::size_t end = 1000000 / share() / share();
    figure decimals{"decimals", end};
    for (std::size_t i = 0; i < end; ++i) {
        const string sign = random() % 2 == 0 ? "-" : "";
        const uint64_t count = random() >> (14 + random() % 50); // up to 15 digits
        if (i % 2 == 0) {
            const string native = sign + printed("%ju", count);
            decimals.equal(added_for(slice_power, native), sign + printed("%ju.%02ju", count / 100, count % 100),
                           native);
            continue;
        }
        const int places = static_cast<int>(random() % 9);
        const auto ten = static_cast<uint64_t>(std::pow(10, places));
        const string decimal = sign + printed(places == 0 ? "%ju." : "%ju.%0*ju", count / ten, places, count % ten);
        // Both are whole numbers that a double holds exactly, so the quotient is the double nearest to the decimal.
        const auto cut = static_cast<int64_t>(static_cast<double>(count) / static_cast<double>(ten) * 100),
                   low = sign.empty() ? std::min<int64_t>(cut, INT32_MAX) : std::max<int64_t>(-cut, INT32_MIN);
        decimals.equal(added_for(state_power, decimal), std::to_string(low), decimal);
    }
    // The C locale's numbers with every point made a comma; no machine here need have another locale.
    const auto folder = std::filesystem::path(testing::TempDir()) / "comma_locale";
    std::filesystem::create_directories(folder / "xx");
    std::ifstream from("/usr/lib/locale/C.utf8/LC_NUMERIC", std::ios::binary);
    string bytes{std::istreambuf_iterator<char>(from), {}};
    std::replace(bytes.begin(), bytes.end(), '.', ',');
    std::ofstream(folder / "xx" / "LC_NUMERIC", std::ios::binary) << bytes;
    setenv("LOCPATH", folder.c_str(), 1);
    if (std::setlocale(LC_NUMERIC, "xx") == nullptr || printed("%.1f", 0.5) != "0,5")
        GTEST_SKIP() << "no locale with a decimal comma can be made here: numbers are not tested under one";
    check_boundaries("boundaries_under_a_comma_locale");
    std::setlocale(LC_NUMERIC, "C");
}

/* Fields of records: code, what is written and how many library calls, by hand; then each of the calls failing. */
TEST(utility, records)
{
    figure all{"records", 400};
    buffer<200> output;
    const string a99(99, 'a'), b99(99, 'b');
    // clang-format off
    std::vector<std::tuple<string, std::vector<token>, string>> records = {
        {"a.b", {{5, "b", {}, 1}, {5, "a"}, {4, {}}, {4, "c"}, {4, "b", {}, 0x80000000}, {4, "b"}, {18}}, "0 -2147483648 7"},
        {"a", {{14, "a"}, {5, "x", {}, 5}, {12, "Name", "in group"}, {12, "late", "no"}, {15}, {18}}, "0 in group 5"},
        {"a", {{14, "a"}, {5, "x"}, {15}, {12, "a", "behind"}, {18}}, "0 untouched 5"},
        {"a", {{14, "a"}, {5, "x"}, {18}, {12, "x", "found"}}, "0 found 6"},
        {"a.a", {{14, "a"}, {14, "a"}, {15}, {18}}, "0 untouched 5"},
        {"a", {{5, "b"}, {18}, {5, "a", {}, 3}}, "0 untouched 4"},
        {"a", {{5, "b"}}, "8081f001 untouched 4"}, {"a", {{14, "a"}}, "8081f001 untouched 4"}, {"x", {{5}, {18}}, "0 untouched 4"},
        {"a", {{18, "a"}}, "0 untouched 3UNKNOWN TOKEN TYPE 18 - ERROR]\n"}, {"a", {{13, "a", "second %s%n"}}, "0 second %s%n 3"}, {"a", {{12, "a"}}, "0  3"}, {"a", {{13, "a"}}, "0  3"},
        {"..a...b.", {{1, "a"}, {1, "b", {}, 9}}, "0 9 4"}, {a99 + '.' + b99, {{1, a99}, {1, b99, {}, 251}}, "0 251 4"},
        {a99 + '.' + b99 + 'b', {{1, a99}}, "aaf2a000 untouched 0"},
        {"0.1.2.3.4.5.6.7.8.9", {{1, "0"}, {1, "1"}, {1, "2"}, {1, "3"}, {1, "4"}, {1, "5"}, {1, "6"}, {1, "7"}, {1, "8"}, {10, "9", {}, 7}}, "0 TRUE 12"},
        {"0.1.2.3.4.5.6.7.8.9.10", {}, "aaf2a000 untouched 0"}, {"", {}, "aaf2a000 untouched 0"}, {"...", {}, "aaf2a000 untouched 0"},
        {"inv_phy_entity_basic_info.", {{1, "0"}, {1, ""}, {18}}, "0 untouched 5"}};
    const uint32_t numbers[] = {0, 7, 0xfffffffb, 0x0100000a, 65531};
    const std::map<uint32_t, std::vector<string>> types = {
        {0, {"0", "7", "-5", "10", "-5"}}, {1, {"0", "7", "251", "10", "251"}}, {2, {"0", "7", "-5", "10", "-5"}}, {3, {"0", "7", "65531", "10", "65531"}},
        {4, {"0", "7", "-5", "16777226", "65531"}}, {5, {"0", "7", "4294967291", "16777226", "65531"}}, {9, {"0", "7", "-5", "16777226", "65531"}},
        {8, {"0.0.0.0", "7.0.0.0", "251.255.255.255", "10.0.0.1", "251.255.0.0"}}, {10, {"FALSE", "TRUE", "TRUE", "TRUE", "TRUE"}}};
    // clang-format on
    for (const uint32_t type : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 16u, 17u, 19u, 255u, 0xffffffffu})
        for (std::size_t i = 0; i < std::size(numbers); ++i)
            records.push_back({"a",
                               {{type, "a", {}, numbers[i]}},
                               types.contains(type) ? "0 " + types.at(type)[i] + " 3"
                                                    : printed("0 untouched 3UNKNOWN TOKEN TYPE %d - ERROR]\n", type)});
    for (const auto &[field, tokens, expected] : records)
        for (std::size_t k = 0, calls = 0; k <= calls; ++k) {
            host h;
            h.fail_at = k, h.fail_code = 0x4321;
            std::strcpy(output.bytes, "untouched");
            const faultno rc = get_value_in_parcel(&h.context, field.c_str(), 12, h.parcel(tokens), 8, output.bytes);
            calls = std::max(calls, h.calls);
            const string text = h.text(), failed = k == 1 ? "header_info" : k == 2 ? "generic_init" : "generic_token";
            const auto odd = std::min(text.find("UNKNOWN"), text.size());
            all.equal(printed("%x %s %zu", rc, output.text().c_str(), h.calls) +
                          text.substr(odd, text.find('\n', odd) + 1 - odd),
                      k == 0 ? expected : printed("4321 untouched %zu", k), field);
            const bool told = has(text, ("parcel: parcel_" + failed + " failed: fault 00004321\n").c_str());
            EXPECT_EQ(h.imbalance(), "") << field << k;
            EXPECT_EQ(told, k != 0) << field << k;
        }
    host h;
    EXPECT_EQ(get_value_in_parcel(&h.context, nullptr, 12, nullptr, 0, output.bytes), FAULT_INVALID_ARGS);
    EXPECT_EQ(get_value_in_parcel(&h.context, "a", 12, nullptr, 0, output.bytes), 0xffffffffu);
    EXPECT_EQ(get_value_in_parcel(&h.context, "a", 12, h.parcel({{18}}), 8, output.bytes), 0u);
    const string me = "TRC get_value_in_parcel: ", start = me + "Start\n";
    EXPECT_EQ(h.text(), start + start + me + "NULL == parcel_data\n" + start + "header\n" + me +
                            "[parcel (len 8)] \t (inv_basic v3.-1)\nwalk 8\ntoken 0\nrelease null\n" + me +
                            "parcel_generic_destroy\ndestroy\n");
    h.lines.clear();
    h.context.trace_on = h.context.debug_filter.levels = 0;
    EXPECT_EQ(get_value_in_parcel(&h.context, "a", 12, nullptr, 0, output.bytes), 0xffffffffu);
    EXPECT_EQ(h.text(), "");
}

/* By hand, so that the reference's search is held too; then with names of each length. */
TEST(utility, path_search)
{
    figure all{"searches", 3000 / share()};
    const string path = "channel-monitors/channel-monitor/name", deep(250, 'd');
    const string monitors =
        "channel-monitors{channel-monitor{config{name=inner} name=first} channel-monitor{name=second}}";
    // clang-format off
    const string rows[][3] = {
        {monitors, path, "first"}, {monitors, '/' + path, ""}, {monitors, "channel-monitors/channel-monitor/config/name", "inner"}, {monitors, "name", ""},
        {"a{?{b=1}}", "a//b", "1"}, {"?{b=1}", "/b", "1"}, {"a=1{a=2}", "a", "1"}, {deep + "=1", deep.substr(0, 199), "1"},
        {"a=" + deep, "a", deep.substr(0, 199)}, {"%s%n{%n=%d}", "%s%n/%n", "%d"}};
    // clang-format on
    buffer<200> so_far, output;
    const auto search = [&](host &h, const string &wanted) {
        string found;
        *so_far.bytes = *output.bytes = '\0';
        const bool is_found = find_value(h.nodes[0], wanted, "", found);
        const int answer =
            compare_path_and_return_data(&h.context, h.nodes[0], wanted.c_str(), so_far.bytes, output.bytes);
        all.expect(answer == is_found && output.text() == found ? h.text() + h.imbalance()
                                                                : wanted + " in " + shape(h.nodes[0]));
        return found;
    };
    for (const auto &[tree, wanted, found] : rows) {
        host h;
        h.plant(tree, "");
        EXPECT_EQ(search(h, wanted), found) << tree;
    }
    host none;
    EXPECT_EQ(compare_path_and_return_data(&none.context, nullptr, "a", so_far.bytes, output.bytes), 0);
    none.lines.clear();
    none.plant("a{b=1}", "")->child_count = 0x80000001; // past 2^31: as good as none
    search(none, "a/b");
    for (std::size_t length = 1; length <= 600; length += share())
        for (const string &cycle : cycles) {
            const string text = text_of(cycle, length);
            host h;
            h.plant(printed("%s{%s=%s}", text.c_str(), text.c_str(), text.c_str()), "");
            search(h, (text.substr(0, 199) + '/' + text).substr(0, 199));
        }
}

/* In a process of its own: whether the client library was found is remembered as long as the process lives. */
TEST(utility, system_database)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto sequence = [] {
        host h({"0/1-CHMON-PRE"});
        h.context.trace_on = 0;
        h.fail_code = 0x4321;
        void *data = nullptr;
        uint32_t length = 0;
        const string item = "0%2f1-CHMON-PRE/attrib/inv_basic_parcel", access = "access 4\n",
                     bind = "bind \"/oper/inventory/gl/entity/\" 0\n",
                     end = "TRC ostore_unbind\nunbind\nTRC return\n= ";
        const auto read = [&](const string &wanted, std::size_t failing, const string &expected) {
            h.lines.clear();
            h.fail_at = failing == 0 ? 0 : h.calls + failing;
            const faultno rc =
                ostore_get_data(&h.context, "/oper/inventory/gl/entity/", wanted.c_str(), &data, &length);
            EXPECT_EQ(h.text() + printed("= %x", rc), "TRC path " + wanted + '\n' + expected);
        };
        const auto refused = [](const string &step, const char *code) { return "TRC ostore_" + step + code + '\n'; };
        h.library_readable = false;
        read("x", 0, access + refused("bind failed fault ", "8081c200") + "= 8081c200");
        h.library_readable = true;
        read(item, 0, access + bind + "get \"" + item + "\" 7 0\n" + end + "0");
        EXPECT_EQ(length, host::parcel_length);
        std::free(data);
        h.library_readable = false;
        read("x", 0, bind + "get \"x\" 7 0\n" + refused("item_get failed: fault ", "8081c205") + end + "8081c205");
        read("x", 1, bind + refused("bind failed fault ", "00004321") + "= 4321");
        read("x", 2, bind + "get \"x\" 7 0\n" + refused("item_get failed: fault ", "00004321") + end + "4321");
        h.null_handle = true;
        read("x", 0, bind + "TRC return\n= 0");
        h.null_handle = false;
        buffer<200> name;
        EXPECT_EQ(ostore_get_amp_name_from_inventory(&h.context, "0/1-CHMON-PRE", name.bytes), 0u);
        EXPECT_EQ(name.text(), "0/1-CHMON-PRE");
        h.lines.clear();
        EXPECT_EQ(ostore_get_amp_name_from_inventory(&h.context, "0/2", name.bytes), 0x8081c205u);
        EXPECT_EQ(h.text().substr(0, 23), "TRC chmon_name_key 0/2\n");
        EXPECT_EQ(h.lines.back(), "TRC rc != FAULT_SUCCESS");
        h.lines.clear();
        EXPECT_EQ(check_controller_name_ots_is_good(&h.context, "Ots0/2/0/0"), 0);
        EXPECT_EQ(h.lines.back(), "ERR Chmon_name [0/2-CHMON-BST] is not present in ostore inventory, discard it!");
        EXPECT_EQ(h.imbalance(), "");
        std::exit(testing::Test::HasFailure());
    };
    EXPECT_EXIT(sequence(), testing::ExitedWithCode(0), "");
}
