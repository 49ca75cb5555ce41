/* Names, numbers, records, inventory, path search and texts: against the reference over products of odd parts. */
#include "figure.h"
#include "scenarios.h"
#include <climits>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sys/mman.h>

using namespace recording;
using namespace reference;

namespace {

/* Blocks that end where an unmapped page begins, so that a byte beyond them stops the process. */
template <std::size_t size> struct buffer {
    static constexpr std::size_t pages = (size + 4095) / 4096 * 4096;
    char *map =
        static_cast<char *>(mmap(nullptr, pages + 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    char *const bytes = map + pages - size;
    buffer()
    {
        EXPECT_EQ(mprotect(map + pages, 4096, PROT_NONE), 0);
        std::memset(bytes, '#', size);
        *bytes = '\0';
    }
    ~buffer() { munmap(map, pages + 4096); }
    /* A text at the block's very end. */
    const char *hold(const string &text) { return std::strcpy(bytes + size - 1 - text.size(), text.c_str()); }
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
    string text;
    while (text.size() < length)
        text += cycle;
    return text.substr(0, length);
}

} // namespace

/* Every text function, inputs of each length, the output ending at an unmapped page. */
TEST(utility, bounds)
{
    const host copies;
    figure all{"bounds", 20000 / share()};
    buffer<601> input, value;
    buffer<200> path, output;
    string expected;
    for (std::size_t length = 0; length <= 600; length += length < 30 || length % 100 > 50 ? 1 : share())
        for (const string &cycle : cycles) {
            const string given = text_of(cycle, length);
            const char *const text = input.hold(given);
            ASSERT_EQ(converted(convert_ctrl_key_to_chmon_key, text), chmon_name(given)) << given;
            ASSERT_EQ(converted(convert_oc_key_to_controller_key, text), controller_name(given)) << given;
            ASSERT_EQ(converted(convert_amplifier_key_to_ingress_port, text), ingress_port(given)) << given;
            const auto both = [&](auto plugin, auto account) {
                string told[2];
                for (const bool real : {true, false}) {
                    host h({"0/2-CHMON-PRE"});
                    h.context.trace_on = length % 16 == 0;
                    h.context.debug_filter.levels = length % 16 < 2 ? 9 : 0;
                    expected = std::strcpy(output.bytes, "untouched");
                    const auto rc = real ? plugin(h) : account(h);
                    told[real] =
                        printed("%x %s\n", static_cast<unsigned>(rc), real ? output.text().c_str() : expected.c_str()) +
                        h.text("access copy") + h.imbalance();
                }
                ++all.cases;
                ASSERT_EQ(told[1], told[0]) << given;
            };
            both([&](host &h) { return check_controller_name_ots_is_good(&h.context, text); },
                 [&](host &) { return controller_is_good(given); });
            both([&](host &h) { return ostore_get_amp_name_from_inventory(&h.context, text, output.bytes); },
                 [&](host &) { return inventory_name(given, expected); });
            const std::vector<token> tokens = {{5, "a"}, {12, given, given}, {13, "b", given}, {18}};
            for (const string &field : {given, string("a.b")})
                both(
                    [&](host &h) {
                        return get_value_in_parcel(&h.context, field == given ? text : "a.b", 12, h.parcel(tokens), 8,
                                                   output.bytes);
                    },
                    [&](host &h) { return get_value(field, 12, h.parcel(tokens), 8, expected); });
            dtf_datatree leaf{}, root{};
            root.tag = leaf.tag = text, leaf.value = value.hold(given);
            root.flags = DTF_FLAG_VALID | DTF_FLAG_HAS_SUBTREE, leaf.flags = DTF_FLAG_VALID | DTF_FLAG_HAS_VALUE;
            root.children = &leaf, root.child_count = 1;
            const string wanted = (given.substr(0, 199) + '/' + given).substr(0, 199);
            *path.bytes = '\0';
            both([&, w = wanted.c_str()](
                     host &h) { return compare_path_and_return_data(&h.context, &root, w, path.bytes, output.bytes); },
                 [&](host &) { return find_value(&root, wanted, "", expected); });
            for (const id n : {name, config_name, state_name, state_power, port_name, slice_power, interface_name})
                if (length < 25 || length % 50 < 3) {
                    scenario hooked{n, length % 2 == 0 ? 10u : 0u, nodes[n].tag};
                    hooked.function = 'h';
                    hooked.change = [&](host &h) { h.nodes[0]->value = value.hold(given); };
                    hooked.inventory.resize(1);
                    ++all.cases;
                    ASSERT_EQ(compare(hooked, {.reports = length % 50 == 0}), "") << given;
                }
        }
}

TEST(utility, replace_and_copy)
{
    const host copies;
    figure all{"replaced", 2000};
    const string text = "a/b/c";
    EXPECT_STREQ(replace_str(text.c_str(), "/", "%2f"), "a%2fb/c");
    EXPECT_STREQ(replace_str("%s/%n", "/", "%s%s"), "%s%s%s%n");
    EXPECT_STREQ(replace_str(replace_str(text.c_str(), "b", "//"), "//", "longer"), "alonger//c");
    EXPECT_EQ(replace_str(text.c_str(), "x", "y"), text.c_str());
    buffer<4300> given;
    for (std::size_t length = 4000; length <= 4200; ++length)
        for (const std::size_t at : {std::size_t{0}, length / 2, length - 2})
            for (const string &replacement : {string(), string("%2f"), string("%s%n"), string(90, 'r')}) {
                const string input = string(length, 'a').replace(at, 2, "//");
                const char *const held = given.hold(input), *const result =
                                                                replace_str(held, "//", replacement.c_str());
                ++all.cases;
                if (length - 2 + replacement.size() < 4096)
                    ASSERT_EQ(result, string(input).replace(at, 2, replacement)) << length;
                else
                    ASSERT_EQ(static_cast<const void *>(result), held) << length;
            }
    buffer<8> room;
    for (std::size_t size = 1; size < 8; ++size)
        for (std::size_t count = 0; count < 8; ++count)
            for (const string &source : {string(), string("abc"), string("abcdefghij")}) {
                char *const destination = room.bytes + 8 - size;
                const string wanted = source.substr(0, count), held = wanted.substr(0, size - 1);
                EXPECT_EQ(strncpy_s(destination, size, given.hold(source), count) != 0, held != wanted)
                    << size << ' ' << count << source;
                EXPECT_EQ(string(destination), held);
            }
    char byte = '#';
    EXPECT_NE(strncpy_s(nullptr, 5, "a", 1), 0);
    EXPECT_NE(strncpy_s(&byte, 0, "a", 1), 0);
    EXPECT_EQ(byte, '#');
    EXPECT_NE(strncpy_s(&byte, 1, nullptr, 1), 0);
    EXPECT_EQ(byte, '\0');
}

/* Products of odd components; the reference counts in 64 bits and stops counting where no 32-bit number can be. */
TEST(utility, names)
{
    const host copies;
    figure all{"names", 30000};
    std::size_t accepted_out_of_range = 0, roundtrip = 0;
    // clang-format off
    const std::vector<string> numbers = {"", "0", "1", "2", "3", "4", "12", " 2", "\t\n+2", "+-1", "- 1", "-1", "-0", "000000000000000000001", "1x", "0x1",
        "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967296", "4294967298", "18446744073709551617"};
    // clang-format on
    for (const char *prefix : {"Ots0/", "ots0/", "Ots1/", "Ots0/ ", " Ots0/", "O", "", "%s%n"})
        for (const string &slot : numbers)
            for (const char *middle : {"/0/", "/1/", "/00/", "/0/ ", " /0/", "/", ""})
                for (const string &port_number : numbers) {
                    const string given = prefix + slot + middle + port_number;
                    ++all.cases;
                    ASSERT_EQ(converted(convert_ctrl_key_to_chmon_key, given.c_str()), chmon_name(given)) << given;
                    host h({"0/0-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST"});
                    h.context.trace_on = h.context.debug_filter.levels = 0;
                    const int good = check_controller_name_ots_is_good(&h.context, given.c_str());
                    const auto read = scan(given, {"Ots0/", "/0/"});
                    accepted_out_of_range += good == 1 && (read[0] < 0 || read[0] > 3 || read[1] < 0 || read[1] > 1);
                    ASSERT_EQ(good, controller_is_good(given)) << given;
                }
    for (const char *prefix : {"0/", "0/ ", "1/", "/", ""})
        for (const string &slot : numbers)
            for (const char *middle : {"-CHMON-", "-CHMON", "CHMON-", "-", ""})
                for (const char *amplifier : {"PRE", "BST", "XPREX", "PR", "pre", "", "----------------PRE"}) {
                    const string given = prefix + slot + middle + amplifier;
                    ++all.cases;
                    ASSERT_EQ(converted(convert_oc_key_to_controller_key, given.c_str()), controller_name(given))
                        << given;
                    ASSERT_EQ(converted(convert_amplifier_key_to_ingress_port, given.c_str()), ingress_port(given))
                        << given;
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

/* The nearest double to top / bottom times 2^scale, ties to even, as 53 bits: the count of units of 2^-scale. */
__extension__ using wide = unsigned __int128;
wide nearest(wide top_, wide bottom)
{
    const wide quotient = top_ / bottom, twice = top_ % bottom * 2;
    return quotient + (twice > bottom || (twice == bottom && quotient % 2 == 1));
}

/* digits / 10^places times 100 as doubles do it, and cut: in integers alone. */
int64_t cut_hundredths(uint64_t digits, uint64_t power_of_ten)
{
    if (digits == 0)
        return 0;
    int scale = 0;
    wide scaled = digits;
    for (; scaled / power_of_ten < wide{1} << 52; scaled <<= 1)
        ++scale;
    const wide product = nearest(scaled, power_of_ten) * 100;
    int extra = 0;
    while (product >> extra >= wide{1} << 53)
        ++extra;
    const wide rounded = nearest(product, wide{1} << extra);
    scale -= extra;
    return static_cast<int64_t>(scale >= 0 ? rounded >> scale : rounded << -scale);
}

string added_for(id n, const char *value, uint32_t kind = 10)
{
    host h;
    h.context.trace_on = h.context.debug_filter.levels = 0;
    h.request.data_input = kind;
    dtf_datatree leaf{};
    leaf.value = value;
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
    for (const char *before : {"", " ", "\n\t", "+", "-", "--", "+-", "- ", "x"})
        for (const string &body : {string(), string("0"), string("7.5"), string(".5"), string("5."), string("."), string("1e"), string("1e+"), string("1e3"),
                 string("25e-1x"), string("1e308"), string("1e-400"), string("0x"), string("0x.8"), string("0X1p4"), string("0xg"), string("0x1p"), string("nan"),
                 string("NAN(12)"), string("nan("), string("inf"), string("infinity"), string("infinit"), string("INFINIT"), string("2147483648"), string(300, '9'), string(199, '0') + '5'}) {
            to_high[before + body] = power((before + body).c_str());
            to_low[before + body] = native_power((before + body).c_str());
        }
    // clang-format on
    const auto check = [&](const char *locale) {
        for (const auto &[native, expected] : to_high)
            EXPECT_EQ(added_for(slice_power, native.c_str()), expected) << native << locale;
        for (const auto &[decimal, expected] : to_low)
            EXPECT_EQ(added_for(state_power, decimal.c_str()), expected) << decimal << locale;
    };
    check("");
    std::mt19937_64 random(1);
    const std::size_t end = 1000000 / share() / share();
    figure decimals{"decimals", end};
    for (; decimals.cases < end; ++decimals.cases) {
        const bool negative = random() % 2 == 0;
        const uint64_t count = random() >> (14 + random() % 50); // up to 15 digits
        const string sign = negative ? "-" : "";
        if (decimals.cases % 2 == 0) {
            const string native = sign + printed("%ju", count),
                         high = sign + printed("%ju.%02ju", count / 100, count % 100);
            ASSERT_EQ(added_for(slice_power, native.c_str()), high) << native;
            continue;
        }
        uint64_t ten = 1;
        int places = static_cast<int>(random() % 9);
        for (int i = 0; i < places; ++i)
            ten *= 10;
        const string decimal = sign + printed(places == 0 ? "%ju." : "%ju.%0*ju", count / ten, places, count % ten);
        const int64_t cut = cut_hundredths(count, ten),
                      low = negative ? std::max<int64_t>(-cut, INT32_MIN) : std::min<int64_t>(cut, INT32_MAX);
        ASSERT_EQ(added_for(state_power, decimal.c_str()), std::to_string(low)) << decimal;
    }
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

/* Fields of records, every library call failing in turn. */
TEST(utility, records)
{
    figure all{"records", 800};
    const string name199 = string(99, 'a') + '.' + string(99, 'b');
    // clang-format off
    std::vector<std::pair<string, std::vector<token>>> records = {
        {"a.b", {{5, "b", {}, 1}, {5, "a"}, {4, {}}, {4, "c"}, {4, "b", {}, 0x80000000}, {4, "b"}, {18}}},
        {"a", {{14, "a"}, {5, "x", {}, 5}, {12, "Name", "in group"}, {12, "late", "no"}, {15}, {18}}},
        {"a", {{14, "a"}, {5, "x"}, {15}, {12, "a", "behind"}, {18}}}, {"a", {{14, "a"}, {5, "x"}, {18}, {12, "x", "found"}}},
        {"a.a", {{14, "a"}, {14, "a"}, {15}, {18}}}, {"a", {{5, "b"}, {18}, {5, "a", {}, 3}}}, {"a", {{5, "b"}}}, {"x", {{5}, {18}}},
        {"a", {{18, "a"}}}, {"a", {{13, "a", "second %s%n"}}}, {"a", {{12, "a"}}}, {"a", {{13, "a"}}},
        {"..a...b.", {{1, "a"}, {1, "b", {}, 9}}}, {name199, {{1, string(99, 'a')}, {1, string(99, 'b'), {}, 251}}},
        {name199 + 'b', {{1, string(99, 'a')}, {1, string(100, 'b'), {}, 251}}},
        {"0.1.2.3.4.5.6.7.8.9", {{1, "0"}, {1, "1"}, {1, "2"}, {1, "3"}, {1, "4"}, {1, "5"}, {1, "6"}, {1, "7"}, {1, "8"}, {10, "9", {}, 7}}}};
    // clang-format on
    for (const char *field : {"", "...", "0.1.2.3.4.5.6.7.8.9.10", "inv_phy_entity_basic_info."})
        records.push_back({field, {{1, "0"}, {1, ""}, {18}}});
    for (const uint32_t type : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 16u, 17u, 19u, 255u, 0xffffffffu})
        for (const uint32_t count : {0u, 7u, 251u, 0xfffffffbu, 0x80000000u, 0x0100000au, 65531u})
            records.push_back({"a", {{type, "a", {}, count}}});
    for (const auto &[field, tokens] : records)
        for (const bool on : {false, true})
            for (std::size_t k = 0, calls = 0; k <= calls; ++k, ++all.cases) {
                const auto go = [&, &f = field, &t = tokens](bool real) {
                    host h;
                    h.fail_at = k, h.fail_on = on, h.fail_code = 0x4321;
                    buffer<200> output;
                    string text = std::strcpy(output.bytes, "untouched");
                    const void *const parcel = h.parcel(t);
                    const faultno rc =
                        real ? get_value_in_parcel(&h.context, f.c_str(), 12, parcel, host::parcel_length, output.bytes)
                             : get_value(f, 12, parcel, host::parcel_length, text);
                    calls = std::max(calls, h.calls);
                    return printed("%x ", rc) + (real ? output.text() : text) + '\n' + h.imbalance() + h.text();
                };
                ASSERT_EQ(go(true), go(false)) << "field " << field << ", first token of type " << tokens[0].type << ' '
                                               << tokens[0].number << ", call " << k << (on ? " and on" : "");
            }
    host h;
    buffer<200> output;
    EXPECT_EQ(get_value_in_parcel(&h.context, nullptr, 12, nullptr, 0, output.bytes), FAULT_INVALID_ARGS);
    EXPECT_EQ(get_value_in_parcel(&h.context, "a", 12, nullptr, 0, output.bytes), 0xffffffffu);
    EXPECT_EQ(h.text(), "TRC get_value_in_parcel: Start\nTRC get_value_in_parcel: Start\nTRC get_value_in_parcel: NULL "
                        "== parcel_data\n");
    parcel_token_td address{8, {}, {}, {}};
    std::memcpy(&address.value, "\x0a\x00\x00\x01", 4);
    convert_parcel_value_to_str(&h.context, &address, output.bytes);
    EXPECT_EQ(output.text(), "10.0.0.1");
}

/* By hand, so that the reference's search is held too; then over odd trees. */
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
    std::mt19937 random(1);
    for (uint32_t seed = 1; seed < 3000 / share(); ++seed) {
        host h;
        h.plant(generated(seed).tree, "");
        oddities[random() % oddities.size()](*h.nodes[random() % h.nodes.size()]);
        std::vector<string> paths; // of all nodes, by their tags
        const std::function<void(const dtf_datatree &, string)> list = [&](const dtf_datatree &node, string at) {
            paths.push_back(at += node.tag == nullptr ? "" : node.tag);
            for (uint32_t i = 0; node.children != nullptr && i < node.child_count; ++i)
                list(node.children[i], at + '/');
        };
        list(*h.nodes[0], "");
        search(h, paths[random() % paths.size()]);
    }
}

/* In a process of its own: whether the client library was found is remembered as long as the process lives. */
TEST(utility, client_library_looked_for)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto sequence = [] {
        host h({"0/1-CHMON-PRE"});
        void *data = nullptr;
        uint32_t length = 0;
        const auto read = [&](const char *item) {
            h.lines.push_back(
                printed("= %x", ostore_get_data(&h.context, "/oper/inventory/gl/entity/", item, &data, &length)));
        };
        h.context.trace_on = 0;
        h.library_readable = false;
        read("x");
        read("x");
        h.library_readable = true;
        read("0%2f1-CHMON-PRE/attrib/inv_basic_parcel");
        std::free(data);
        h.library_readable = false;
        read("x");
        h.null_handle = true;
        read("x");
        const string absent = "TRC path x\naccess 4\nTRC ostore_bind failed fault 8081c200\n= 8081c200\n",
                     bind = "bind /oper/inventory/gl/entity/ 0\n", unbind = "TRC ostore_unbind\nunbind\nTRC return\n",
                     item = "0%2f1-CHMON-PRE/attrib/inv_basic_parcel",
                     expected = absent + absent + "TRC path " + item + "\naccess 4\n" + bind + "get " + item +
                                " 7 0\n" + unbind + "= 0\nTRC path x\n" + bind +
                                "get x 7 0\nTRC ostore_item_get failed: fault 8081c205\n" + unbind +
                                "= 8081c205\nTRC path x\n" + bind + "TRC return\n= 0\n";
        std::fputs((h.imbalance() + h.text()).c_str(), stderr);
        std::exit(h.imbalance() + h.text() == expected && length == host::parcel_length ? 0 : 1);
    };
    EXPECT_EXIT(sequence(), testing::ExitedWithCode(0), "");
}
