/* The framework's few schema facts against the modules themselves, node by node, both ways. */
#include "schema_facts.h"

#include <gtest/gtest.h>
#include <iostream>
#include <libyang/libyang.h>
#include <memory>
#include <set>
#include <string>

using namespace framework;

namespace {

schema_kind kind_of(const lysc_node &node)
{
    if (node.nodetype != LYS_LEAF)
        return node.nodetype == LYS_LIST ? schema_kind::list : schema_kind::container;
    const lysc_type *type = reinterpret_cast<const lysc_node_leaf &>(node).type;
    while (type->basetype == LY_TYPE_LEAFREF)
        type = reinterpret_cast<const lysc_type_leafref *>(type)->realtype;
    static const std::set<LY_DATA_TYPE> bare = {LY_TYPE_BOOL,  LY_TYPE_INT8,   LY_TYPE_INT16, LY_TYPE_INT32,
                                                LY_TYPE_UINT8, LY_TYPE_UINT16, LY_TYPE_UINT32};
    return type->basetype == LY_TYPE_EMPTY ? schema_kind::empty_leaf
           : bare.contains(type->basetype) ? schema_kind::bare_leaf
                                           : schema_kind::text_leaf;
}

/* Compares schema nodes and all below them, and returns how many there were. */
std::size_t compare(const lysc_node *first, std::span<const schema_node> facts, const std::string &above)
{
    std::size_t here = 0, below = 0;
    for (const lysc_node *node = first; node != nullptr; node = node->next) {
        const std::string path = above + "/" + node->name;
        const schema_node *const fact = find_schema_node(path);
        ++here;
        EXPECT_NE(fact, nullptr) << path;
        if (fact == nullptr)
            continue;
        EXPECT_EQ(fact->kind, kind_of(*node)) << path;
        EXPECT_EQ(fact->is_key, (node->flags & LYS_KEY) != 0) << path;
        below += compare(lysc_node_child(node), fact->children, path);
    }
    EXPECT_EQ(here, facts.size()) << above;
    return here + below;
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
        const std::size_t count = compare(module->compiled->data, known.top, "");
        std::cout << known.name << ": " << count << " nodes\n";
    }
}

} // namespace
