/* Names, records, inventory, path search and texts: against the reference over products of odd parts, and by table. */
#include "reference.h"
#include <gtest/gtest.h>

using recording::host;
using recording::printed;
using recording::token;
using std::string;

namespace {

/* A buffer of exactly its stated size, so that a byte beyond it is a fault. */
template <std::size_t size> struct buffer {
    std::unique_ptr<char[]> bytes = std::make_unique<char[]>(size);
    string text() const { return {bytes.get(), strnlen(bytes.get(), size)}; }
};

template <typename function> string converted(function convert, const string &name)
{
    buffer<20> output;
    std::memset(output.bytes.get(), '#', 20);
    convert(std::make_unique<string>(name)->c_str(), output.bytes.get());
    return output.text();
}

const std::vector<string> numbers = {"",
                                     "0",
                                     "1",
                                     "2",
                                     "3",
                                     "4",
                                     "12",
                                     " 2",
                                     "\t\n+2",
                                     "+-1",
                                     "- 1",
                                     "-1",
                                     "-0",
                                     "000000000000000000001",
                                     "1x",
                                     "0x1",
                                     "2147483647",
                                     "2147483648",
                                     "-2147483648",
                                     "-2147483649",
                                     "4294967296",
                                     "4294967298",
                                     "18446744073709551617"};

} // namespace

TEST(utility, names)
{
    host texts;
    std::size_t cases = 0;
    for (const char *prefix : {"Ots0/", "ots0/", "Ots1/", "Ots0/ ", " Ots0/", "O", "", "%s%n"})
        for (const string &slot : numbers)
            for (const char *middle : {"/0/", "/1/", "/00/", "/0/ ", " /0/", "/", ""})
                for (const string &port : numbers) {
                    const string name = prefix + slot + middle + port;
                    ++cases;
                    ASSERT_EQ(converted(convert_ctrl_key_to_chmon_key, name), reference::chmon_name(name)) << name;
                    if (cases % 7 != 0)
                        continue;
                    host h({"0/1-CHMON-PRE", "0/2-CHMON-BST", "0/0-CHMON-PRE"});
                    const int good = check_controller_name_ots_is_good(&h.context, name.c_str());
                    const string text = h.imbalance() + h.text("access copy"); // the first one looks for the library
                    host again({"0/1-CHMON-PRE", "0/2-CHMON-BST", "0/0-CHMON-PRE"});
                    ASSERT_EQ(good, reference::controller_is_good(name)) << name;
                    ASSERT_EQ(text, again.imbalance() + again.text()) << name;
                }
    for (const char *prefix : {"0/", "0/ ", "1/", "/", ""})
        for (const string &slot : numbers)
            for (const char *middle : {"-CHMON-", "-CHMON", "CHMON-", "-", ""})
                for (const char *amplifier : {"PRE", "BST", "XPREX", "PR", "pre", "", "----------------PRE"}) {
                    const string name = prefix + slot + middle + amplifier;
                    ++cases;
                    ASSERT_EQ(converted(convert_oc_key_to_controller_key, name), reference::controller_name(name))
                        << name;
                    ASSERT_EQ(converted(convert_amplifier_key_to_ingress_port, name), reference::ingress_port(name))
                        << name;
                }
    // By hand, so that the reference is held too.
    // clang-format off
    const struct { void (*convert)(const char *, char *); string from, to; } table[] = {
        {convert_ctrl_key_to_chmon_key, "Ots0/1/0/0", "0/1-CHMON-BST"}, {convert_ctrl_key_to_chmon_key, "xyz", "0/-1-CHMON-PRE"},
        {convert_ctrl_key_to_chmon_key, "Ots0/2/0/7", "0/2-CHMON-PRE"}, {convert_ctrl_key_to_chmon_key, "Ots0/2/1/1", "0/2-CHMON-PRE"},
        {convert_ctrl_key_to_chmon_key, "Ots0/2147483647/0/0", "0/2147483647-CHMON-"},
        {convert_ctrl_key_to_chmon_key, "Ots0/4294967298/0/1", "0/-1-CHMON-PRE"},
        {convert_oc_key_to_controller_key, "0/2-foo", "Ots0/2/0/0"}, {convert_oc_key_to_controller_key, "0/2-CHMON-XPREX", "Ots0/2/0/1"},
        {convert_amplifier_key_to_ingress_port, "0/12-CHMON-PRE", "0/1-OtsCtrl-0/1"},
        {convert_amplifier_key_to_ingress_port, "Ots0/2/0/1", "-OtsCtrl-0/0"}};
    // clang-format on
    for (const auto &[convert, from, to] : table)
        EXPECT_EQ(converted(convert, from), to) << from;
    string all;
    for (std::size_t i = 0; controller_chmon_ots_list[i] != nullptr; ++i) {
        const string controller = controller_chmon_ots_list[i],
                     monitor = converted(convert_ctrl_key_to_chmon_key, controller);
        EXPECT_EQ(converted(convert_oc_key_to_controller_key, monitor), controller);
        all += controller + ' ';
    }
    EXPECT_EQ(all, "Ots0/1/0/0 Ots0/1/0/1 Ots0/2/0/0 Ots0/2/0/1 Ots0/3/0/0 Ots0/3/0/1 ");
    std::printf("names: %zu cases\n", cases);
    EXPECT_GE(cases, 30000u);
}

TEST(utility, replace_and_copy)
{
    host texts;
    const string text = "a/b/c";
    EXPECT_STREQ(replace_str(text.c_str(), "/", "%2f"), "a%2fb/c");
    EXPECT_STREQ(replace_str("%s/%n", "/", "%s%s"), "%s%s%s%n");
    EXPECT_EQ(replace_str(text.c_str(), "x", "y"), text.c_str());
    for (std::size_t length = 4000; length <= 4200; ++length)
        for (const std::size_t at : {std::size_t{0}, length / 2, length - 2})
            for (const string &replacement : {string(), string("%2f"), string(90, 'r')}) {
                string input(length, 'a');
                input.replace(at, 2, "//");
                const char *const result = replace_str(input.c_str(), "//", replacement.c_str());
                if (length - 2 + replacement.size() < 4096)
                    ASSERT_EQ(result, string(input).replace(at, 2, replacement)) << length;
                else
                    ASSERT_EQ(static_cast<const void *>(result), input.c_str()) << length;
            }
    for (std::size_t size = 1; size < 8; ++size)
        for (std::size_t count = 0; count < 8; ++count)
            for (const string &source : {string(), string("abc"), string("abcdefghij")}) {
                std::vector<char> destination(size, '#');
                const string wanted = source.substr(0, count), held = wanted.substr(0, size - 1);
                EXPECT_EQ(strncpy_s(destination.data(), size, source.c_str(), count) != 0, held != wanted)
                    << size << ' ' << count << source;
                EXPECT_EQ(string(destination.data()), held);
            }
    char byte = '#';
    EXPECT_NE(strncpy_s(nullptr, 5, "a", 1), 0);
    EXPECT_NE(strncpy_s(&byte, 0, "a", 1), 0);
    EXPECT_EQ(byte, '#');
    EXPECT_NE(strncpy_s(&byte, 1, nullptr, 1), 0);
    EXPECT_EQ(byte, '\0');
}

/* Fields of records, every library call failing in turn. */
TEST(utility, records)
{
    const string long_text(300, 't'), name199 = string(99, 'a') + '.' + string(99, 'b');
    // clang-format off
    std::vector<std::pair<string, std::vector<token>>> records = {
        {"a.b", {{5, "b", {}, 1}, {5, "a"}, {4, {}}, {4, "c"}, {4, "b", {}, 0x80000000}, {4, "b"}, {18}}},
        {"a", {{14, "a"}, {5, "x", {}, 5}, {12, "Name", "in group"}, {12, "late", "no"}, {15}, {18}}},
        {"a", {{14, "a"}, {5, "x"}, {15}, {12, "a", "behind"}, {18}}}, {"a", {{14, "a"}, {5, "x"}, {18}, {12, "x", "found"}}},
        {"a.a", {{14, "a"}, {14, "a"}, {15}, {18}}}, {"a", {{5, "b"}, {18}, {5, "a", {}, 3}}}, {"a", {{5, "b"}}}, {"x", {{5}, {18}}},
        {"a", {{18, "a"}}}, {"a", {{12, "a", long_text}}}, {"a", {{13, "a", "second %s%n"}}}, {"a", {{12, "a"}}}, {"a", {{13, "a"}}},
        {"..a...b.", {{1, "a"}, {1, "b", {}, 9}}}, {name199, {{1, string(99, 'a')}, {1, string(99, 'b'), {}, 251}}},
        {name199 + 'b', {{1, string(99, 'a')}, {1, string(100, 'b'), {}, 251}}},
        {"0.1.2.3.4.5.6.7.8.9", {{1, "0"}, {1, "1"}, {1, "2"}, {1, "3"}, {1, "4"}, {1, "5"}, {1, "6"}, {1, "7"}, {1, "8"}, {10, "9", {}, 7}}}};
    // clang-format on
    for (const char *field : {"", "...", "0.1.2.3.4.5.6.7.8.9.10", "inv_phy_entity_basic_info."})
        records.push_back({field, {{1, "0"}, {1, ""}, {18}}});
    for (const uint32_t type :
         std::initializer_list<uint32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 19, 255, 0xffffffff})
        for (const uint32_t number : {0u, 7u, 251u, 0xfffffffbu, 0x80000000u, 0x0100000au, 65531u})
            records.push_back({"a", {{type, "a", {}, number}}});
    std::size_t cases = 0;
    for (const auto &[field, tokens] : records)
        for (const bool on : {false, true})
            for (std::size_t k = 0, calls = 0; k <= calls; ++k, ++cases) {
                const auto go = [&, &f = field, &t = tokens](bool real) {
                    host h;
                    h.fail_at = k, h.fail_on = on, h.fail_code = 0x4321;
                    buffer<200> output;
                    string text = "untouched";
                    std::strcpy(output.bytes.get(), text.c_str());
                    const void *const parcel = h.parcel(t);
                    const faultno rc = real ? get_value_in_parcel(&h.context, f.c_str(), 12, parcel,
                                                                  host::parcel_length, output.bytes.get())
                                            : reference::get_value(f, 12, parcel, host::parcel_length, text);
                    calls = std::max(calls, h.calls);
                    return printed("%x ", rc) + (real ? output.text() : text) + '\n' + h.imbalance() + h.text();
                };
                ASSERT_EQ(go(true), go(false)) << "field " << field << ", first token of type " << tokens[0].type << ' '
                                               << tokens[0].number << ", call " << k << (on ? " and on" : "");
            }
    std::printf("records: %zu cases\n", cases);
    EXPECT_GE(cases, 800u);
    host h;
    buffer<200> output;
    EXPECT_EQ(get_value_in_parcel(&h.context, "a", 12, nullptr, 0, output.bytes.get()), 0xffffffffu);
    EXPECT_EQ(h.text(), "TRC get_value_in_parcel: Start\nTRC get_value_in_parcel: NULL == parcel_data\n");
    uint32_t address = 0;
    std::memcpy(&address, "\x0a\x00\x00\x01", 4);
    convert_parcel_value_to_str(&h.context,
                                std::make_unique<parcel_token_td>(parcel_token_td{8, {.ipv4 = address}, {}, {}}).get(),
                                output.bytes.get());
    EXPECT_EQ(output.text(), "10.0.0.1");
}

TEST(utility, trees_printed)
{
    host h;
    h.plant("a{b}", "");
    h.state.hierarchy_len = 2;
    h.state.hierarchy[0].node_data = h.nodes[0];
    h.state.hierarchy[1].node_data = h.nodes[1];
    h.state.current_node = h.state.plist = h.nodes[1];
    h.state.root_node = h.nodes[0];
    h.state.reg_dup_datatree = &h.out;
    h.context.trace_on = 0;
    print_data(&h.context);
    EXPECT_EQ(h.text(),
              "TRC iteration 0\nprint a#0 node_data\nTRC iteration 1\nprint b#1 node_data\nprint a#0 root_node\n"
              "print null parent_node\nprint b#1 current_node\nprint out reg_dup_datatree\nprint b#1 plist\n");
    EXPECT_EQ(h.context.data_printed, 1u);
}

TEST(utility, path_search)
{
    const string path = "channel-monitors/channel-monitor/name", deep(250, 'd');
    const string monitors =
        "channel-monitors{channel-monitor{config{name=inner} name=first} channel-monitor{name=second}}";
    // clang-format off
    const struct { string tree, wanted, found; std::function<void(host &)> change = [](host &) {}; int answer = 2; } table[] = {
        {monitors, path, "first"}, {monitors, '/' + path, ""}, {monitors, "channel-monitors/channel-monitor/config/name", "inner"},
        {monitors, path, "second", [](host &h) { h.nodes[4]->flags &= ~DTF_FLAG_HAS_VALUE; }},
        {monitors, path, "second", [](host &h) { h.nodes[1]->flags &= ~DTF_FLAG_VALID; }},
        {monitors, path, "", [](host &h) { h.nodes[0]->flags = 0; }},
        {monitors, path, "first", [](host &h) { h.nodes[0]->flags &= ~DTF_FLAG_HAS_SUBTREE; }},
        {monitors, path, "second", [](host &h) { h.nodes[1]->child_count = 0; }},
        {monitors, path, "second", [](host &h) { h.nodes[1]->children = nullptr; }},
        {monitors, path, "", [](host &h) { h.nodes[4]->value = nullptr; }, 1}, {monitors, "name", ""},
        {"a{?{b=1}}", "a//b", "1"}, {"?{b=1}", "/b", "1"}, {"a=1{a=2}", "a", "1"}, {deep + "=1", deep.substr(0, 199), "1"},
        {"a=" + deep, "a", deep.substr(0, 199)}, {"%s%n{%n=%d}", "%s%n/%n", "%d"}};
    // clang-format on
    for (const auto &[tree, wanted, found, change, answer] : table) {
        host h;
        const dtf_datatree *const root = h.plant(tree, "");
        change(h);
        buffer<200> so_far, output;
        EXPECT_EQ(
            compare_path_and_return_data(&h.context, root, wanted.c_str(), so_far.bytes.get(), output.bytes.get()),
            answer == 2 ? !found.empty() : answer)
            << tree << ' ' << wanted;
        EXPECT_EQ(output.text(), found) << tree << ' ' << wanted;
        EXPECT_EQ(h.text() + h.imbalance(), "");
    }
    host h;
    buffer<200> so_far, output;
    EXPECT_EQ(compare_path_and_return_data(&h.context, nullptr, "a", so_far.bytes.get(), output.bytes.get()), 0);
    EXPECT_EQ(h.text(), "ERR compare_path_and_return_data: return, req is NULL\n");
    EXPECT_DEATH(compare_path_and_return_data(nullptr, nullptr, "", nullptr, nullptr), "compare_path.*NULL != ctx");
    parcel_token_td unknown{6, {}, {}, {}};
    EXPECT_DEATH(convert_parcel_value_to_str(nullptr, &unknown, nullptr),
                 "convert_parcel_value_to_str\\(.*NULL != ctx");
    EXPECT_DEATH(print_data(nullptr), "print_data\\(.*NULL != ctx");
    EXPECT_DEATH(ostore_get_data(nullptr, "", "", nullptr, nullptr), "ostore_get_data\\(.*NULL != ctx");
    EXPECT_DEATH(get_value_in_parcel(nullptr, "a", 12, nullptr, 0, nullptr), "get_value_in_parcel\\(.*NULL != ctx");
    EXPECT_DEATH(check_controller_name_ots_is_good(nullptr, ""), "check_controller_name_ots_is_good\\(.*NULL != ctx");
    EXPECT_DEATH(ostore_get_amp_name_from_inventory(nullptr, "", nullptr), "ostore_get_amp_name.*NULL != ctx");
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
                     bind = "bind /oper/inventory/gl/entity/ 0\n", unbind = "TRC ostore_unbind\nunbind\nTRC return\n";
        const string item = "0%2f1-CHMON-PRE/attrib/inv_basic_parcel",
                     expected = absent + absent + "TRC path " + item + "\naccess 4\n" + bind + "get " + item +
                                " 7 0\n" + unbind + "= 0\nTRC path x\n" + bind +
                                "get x 7 0\nTRC ostore_item_get failed: fault 8081c205\n" + unbind +
                                "= 8081c205\nTRC path x\n" + bind + "TRC return\n= 0\n";
        std::fputs((h.imbalance() + h.text()).c_str(), stderr);
        std::exit(h.imbalance() + h.text() == expected && length == host::parcel_length ? 0 : 1);
    };
    EXPECT_EXIT(sequence(), testing::ExitedWithCode(0), "");
}

/* What the inventory says is what counts, not what it is called; and a database that serves nothing has no monitor. */
TEST(utility, inventory)
{
    host h({"0/0-CHMON-PRE", "0/3-CHMON-BST"});
    h.context.debug_filter.levels = 1;
    h.context.trace_on = 0;
    EXPECT_EQ(check_controller_name_ots_is_good(&h.context, "Ots0/0/0/1"), 1);
    EXPECT_EQ(check_controller_name_ots_is_good(&h.context, "Ots0/3/0/0"), 1);
    for (const char *name : {"Ots0/3/0/1", "Ots0/1/0/2", "Ots0/4/0/1", "Ots0/9/0/7", "xyz", "Ots0/%s/0/0"})
        EXPECT_EQ(check_controller_name_ots_is_good(&h.context, name), 0);
    h.null_handle = true;
    EXPECT_EQ(check_controller_name_ots_is_good(&h.context, "Ots0/3/0/0"), 0);
    const string wrong = "ERR Invalid controller_name [", discard = ", discard it!\n",
                 absent = "] is not present in ostore inventory" + discard;
    EXPECT_EQ(h.text("access bind get unbind header walk token release destroy copy"),
              "ERR Chmon_name [0/3-CHMON-PRE" + absent + wrong + "Ots0/1/0/2] and port id [2]" + discard + wrong +
                  "Ots0/4/0/1] and slot id [4]" + discard + wrong + "Ots0/9/0/7] and port id [7]" + discard + wrong +
                  "xyz] and port id [-1]" + discard + wrong + "Ots0/%s/0/0] and port id [-1]" + discard +
                  "ERR Chmon_name [0/3-CHMON-BST" + absent);
    h.null_handle = false;
    buffer<200> output;
    EXPECT_EQ(ostore_get_amp_name_from_inventory(&h.context, "0/3-CHMON-BST", output.bytes.get()), 0u);
    EXPECT_EQ(output.text(), "0/3-CHMON-BST");
    EXPECT_EQ(ostore_get_amp_name_from_inventory(&h.context, string(400, '/').c_str(), output.bytes.get()),
              0x8081c205u);
    EXPECT_EQ(h.imbalance(), "");
}
