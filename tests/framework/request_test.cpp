/* What the operations do for requests: instances of a whole list, keys added to the request, edit operations. */
#include "faults.h"
#include "scripted_walk.h"

#include <gtest/gtest.h>

#include <array>

using namespace scripted;
using framework::direction;

namespace {

framework::mapping_options request(std::uint32_t kind)
{
    return {.way = direction::openconfig_to_native, .request_kind = kind, .request_key = [](std::string_view key) {
                return "M" + std::string(key);
            }};
}

/* Walks the instances on the stack as a list walker does; each gets an rx-power leaf. */
void walk_instances(walk &w)
{
    dtf_itree_entry *peeked = nullptr;
    dtf_map_util_itree_stack_peak(w.ctx, &peeked);
    ASSERT_NE(peeked, nullptr);
    for (std::uint32_t i = 0; i < peeked->count; ++i) {
        const dtf_datatree &node = peeked->children[i];
        w.entry(monitor, node, [&] {
            EXPECT_EQ(peeked->callback(w.ctx, &node, &w.out, 0), FAULT_SUCCESS);
            w.add("/ots-oper/ots-ports/ots-port/rx-power", node.children[0].value);
            w.add("/interface-configurations/interface-configuration/interface-name", node.children[0].value);
        });
    }
    dtf_map_util_itree_stack_pop(w.ctx);
}

TEST(request, a_whole_list_gets_one_instance_per_native_entry)
{
    for (const bool poison : {false, true}) {
        walk w(request(10));
        w.memory.set_poison(poison);
        dtf_datatree nameless{};
        nameless.ns = "urn:request";
        w.run([&](walk &walking) {
            walking.entry(monitor, nameless, [&] {
                for (const char *name : {"1", "2", "3", "4", "5", "6"}) {
                    walking.add_entry(ots_port);
                    walking.add("/ots-oper/ots-ports/ots-port/name", name);
                }
                EXPECT_EQ(dtf_map_util_itree_stack_size(walking.ctx), 1U);
                walk_instances(walking);
            });
            return FAULT_SUCCESS;
        });
        std::string ports;
        std::string interfaces;
        for (const std::string n : {"1", "2", "3", "4", "5", "6"}) {
            ports += (n == "1" ? "" : " ") + ("ots-port{name=" + n + " rx-power=M" + n + "}");
            interfaces += (n == "1" ? "" : " ") + ("interface-configuration{interface-name=M" + n + "}");
        }
        EXPECT_EQ(text_of(w.out), "{ots-oper{ots-ports{" + ports + "}} interface-configurations{" + interfaces + "}}");
        ASSERT_EQ(w.map.instances().size(), 6U);
        EXPECT_EQ(text_of(*w.map.instances()[5]), "channel-monitor{name=M6}");
        EXPECT_STREQ(w.map.instances()[5]->children[0].ns, "urn:request");
        EXPECT_TRUE(w.map.balanced());
    }
}

TEST(request, instances_are_registered_only_for_a_nameless_entry_and_its_first_key)
{
    framework::arena memory;
    dtf_datatree named{};
    dtf_datatree &key = framework::add_child(memory, named);
    key.tag = "name";
    const auto instances_of = [&](const char *list, const char *name, direction way) {
        auto options = request(1);
        options.way = way;
        walk w(options);
        key.value = name;
        key.flags = DTF_FLAG_VALID | (name == nullptr ? 0 : DTF_FLAG_HAS_VALUE);
        w.run([&](walk &walking) {
            walking.entry(list, named, [&] {
                walking.add_entry(interface_entry);
                walking.add("/interface-configurations/interface-configuration/interface-name", "1");
                walking.add("/interface-configurations/interface-configuration/active", "act");
            });
            return FAULT_SUCCESS;
        });
        return w.map.instances().size();
    };
    EXPECT_EQ(instances_of(monitor, nullptr, direction::openconfig_to_native), 1U);
    EXPECT_EQ(instances_of(monitor, "M1", direction::openconfig_to_native), 0U);
    EXPECT_EQ(instances_of(channel, nullptr, direction::openconfig_to_native), 0U);
    EXPECT_EQ(instances_of(monitor, nullptr, direction::native_to_openconfig), 0U);
}

TEST(request, the_second_pass_of_a_replace_binds_the_same_instances_anew)
{
    walk w(request(1));
    w.run([](walk &walking) {
        walking.entry(monitor, [&] {
            for (int pass = 0; pass < 2; ++pass) {
                for (const char *name : {"1", "2"}) {
                    walking.add_entry(ots_port);
                    walking.add("/ots-oper/ots-ports/ots-port/name", name);
                }
                EXPECT_EQ(dtf_map_util_itree_stack_size(walking.ctx), 1U);
            }
            walk_instances(walking);
        });
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(w.map.instances().size(), 2U);
    EXPECT_EQ(text_of(w.out.children[0]), "ots-oper{ots-ports{ots-port{name=1} ots-port{name=2} "
                                          "ots-port{name=1 rx-power=M1} ots-port{name=2 rx-power=M2}}}");
}

TEST(request, a_key_leaf_is_added_to_the_request_itself)
{
    /* An array as a walker leaves it: put back after it was parked, its room unknown. */
    std::array<dtf_datatree, 2> children{};
    children[0].tag = "config";
    children[1].tag = "state";
    dtf_datatree entry{};
    entry.tag = "channel-monitor";
    entry.children = children.data();
    entry.child_count = 2;
    entry.child_room = 7;
    entry.flags = DTF_FLAG_VALID | DTF_FLAG_HAS_SUBTREE;
    framework::arena memory;
    auto options = request(10);
    options.request_memory = &memory;
    walk w(options);
    w.run([&](walk &walking) {
        const char *const tags[] = {"name", "name", "other", "third", "fourth"};
        for (const char *tag : tags) {
            dtf_datatree *created = nullptr;
            EXPECT_EQ(dtf_map_datatree_add_path_flagged(walking.ctx, &entry, tag, "urn:test", nullptr, nullptr,
                                                        &created, 0, 0),
                      FAULT_SUCCESS);
            EXPECT_STREQ(created->tag, tag);
        }
        return FAULT_SUCCESS;
    });
    EXPECT_EQ(text_of(entry), "channel-monitor{config state name other third fourth}");
    EXPECT_EQ(text_of(w.out), "");
}

TEST(request, an_empty_value_is_a_value_except_in_the_request_of_a_read)
{
    const auto has_value = [](direction way, std::uint32_t kind) {
        walk w({.way = way, .request_kind = kind});
        w.run([](walk &walking) { return walking.add("/a", ""); });
        return (w.out.children[0].flags & DTF_FLAG_HAS_VALUE) != 0;
    };
    EXPECT_FALSE(has_value(direction::openconfig_to_native, 10));
    EXPECT_FALSE(has_value(direction::openconfig_to_native, 0));
    EXPECT_TRUE(has_value(direction::openconfig_to_native, 1));
    EXPECT_TRUE(has_value(direction::native_to_openconfig, 10));
}

TEST(request, a_key_must_agree_with_the_leaf_it_refers_to)
{
    const auto check = [](const char *key, bool container, const char *target) {
        framework::arena memory;
        dtf_datatree entry{};
        const auto give = [&memory](dtf_datatree &above, const char *tag, const char *value) -> dtf_datatree & {
            dtf_datatree &node = framework::add_child(memory, above);
            node.tag = tag;
            node.value = value;
            node.flags |= value == nullptr ? 0U : DTF_FLAG_HAS_VALUE;
            return node;
        };
        give(entry, "name", key);
        if (container)
            give(give(entry, "config", nullptr), "name", target);
        walk w(request(1));
        return w.run([&](walk &walking) {
            return static_cast<faultno>(dtf_map_check_oc_leafref(walking.ctx, monitor, "config", "name", &entry));
        });
    };
    EXPECT_EQ(check("A", true, "A"), FAULT_SUCCESS);
    EXPECT_EQ(check("A", true, nullptr), FAULT_SUCCESS);
    EXPECT_EQ(check("A", false, nullptr), FAULT_SUCCESS);
    EXPECT_EQ(check(nullptr, true, "A"), FAULT_SUCCESS);
    EXPECT_EQ(check("A", true, "B"), framework::fault_leafref_mismatch);
}

} // namespace
