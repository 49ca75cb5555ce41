/* The framework's few schema facts against the modules themselves, node by node, both ways. */
#include "schema_facts.h"

#include <gtest/gtest.h>
#include <iostream>
#include <libyang/libyang.h>
#include <memory>
#include <string>

using namespace framework;

namespace {

schema_kind leaf_kind(const lysc_node_leaf &leaf)
{
    const lysc_type *type = leaf.type;
    while (type->basetype == LY_TYPE_LEAFREF)
        type = reinterpret_cast<const lysc_type_leafref *>(type)->realtype;
    switch (type->basetype) {
    case LY_TYPE_EMPTY:
        return schema_kind::empty_leaf;
    case LY_TYPE_BOOL:
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
        return schema_kind::bare_leaf;
    default:
        return schema_kind::text_leaf;
    }
}

schema_kind kind_of(const lysc_node &node)
{
    switch (node.nodetype) {
    case LYS_CONTAINER:
        return schema_kind::container;
    case LYS_LIST:
        return schema_kind::list;
    default:
        EXPECT_EQ(node.nodetype, LYS_LEAF) << node.name;
        return leaf_kind(reinterpret_cast<const lysc_node_leaf &>(node));
    }
}

/* Compares a schema node and all below it, and returns how many there were. */
std::size_t compare(const lysc_node &node, const std::string &path_above)
{
    const std::string path = path_above + "/" + node.name;
    const schema_node *const fact = find_schema_node(path);
    EXPECT_NE(fact, nullptr) << path;
    if (fact == nullptr)
        return 0;
    EXPECT_EQ(fact->kind, kind_of(node)) << path;
    EXPECT_EQ(fact->is_key, (node.flags & LYS_KEY) != 0) << path;
    std::size_t count = 1;
    for (const lysc_node *child = lysc_node_child(&node); child != nullptr; child = child->next)
        count += compare(*child, path);
    return count;
}

std::size_t count_facts(std::span<const schema_node> nodes)
{
    std::size_t count = nodes.size();
    for (const schema_node &node : nodes)
        count += count_facts(node.children);
    return count;
}

TEST(schema_facts, are_those_of_the_modules)
{
    ly_ctx *context = nullptr;
    ASSERT_EQ(ly_ctx_new(CHMON_SOURCE "/yang", 0, &context), LY_SUCCESS);
    const std::unique_ptr<ly_ctx, void (*)(ly_ctx *)> owner(context, ly_ctx_destroy);
    for (const schema_module &known : schema_modules()) {
        const lys_module *const module = ly_ctx_load_module(context, std::string(known.name).c_str(), nullptr, nullptr);
        ASSERT_NE(module, nullptr) << known.name;
        EXPECT_STREQ(module->ns, known.ns);
        EXPECT_EQ(find_module_by_namespace(known.ns), &known);
        std::size_t count = 0;
        for (const lysc_node *top = module->compiled->data; top != nullptr; top = top->next)
            count += compare(*top, "");
        EXPECT_EQ(count, count_facts(known.top)) << known.name;
        std::cout << known.name << ": " << count << " nodes\n";
    }
}

} // namespace
