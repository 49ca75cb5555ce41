#include "edit_operations.h"

#include "schema_facts.h"

#include <algorithm>
#include <array>
#include <vector>

namespace framework {

namespace {

/* In the order of the numbers. */
constexpr std::array<std::string_view, 5> words = {"merge", "replace", "create", "delete", "remove"};

constexpr std::uint32_t first_inherited = 2; /* create, and after it delete and remove */

struct visit {
    dtf_datatree *node;
    const schema_node *facts;
};

void inherit_from(const dtf_datatree &parent, dtf_datatree &node, const schema_node *facts)
{
    const bool is_key = facts != nullptr && facts->is_key;
    if ((node.flags & DTF_FLAG_OP_SET) == 0 && !is_key)
        node.operation = parent.operation >= first_inherited ? parent.operation : 0;
}

} // namespace

std::optional<std::uint32_t> operation_of(std::string_view word)
{
    const auto found = std::ranges::find(words, word);
    if (found == words.end())
        return std::nullopt;
    return static_cast<std::uint32_t>(found - words.begin());
}

std::string_view operation_word(std::uint32_t operation)
{
    return operation < words.size() ? words[operation] : words[0];
}

void set_operation(dtf_datatree &node, std::uint32_t operation)
{
    node.operation = operation;
    node.flags |= DTF_FLAG_OP_SET;
}

void inherit_operations(dtf_datatree &root)
{
    std::vector<visit> open = {{&root, nullptr}};
    while (!open.empty()) {
        const visit parent = open.back();
        open.pop_back();
        if ((parent.node->flags & DTF_FLAG_HAS_SUBTREE) == 0)
            continue;
        for (std::uint32_t i = 0; i < parent.node->child_count; ++i) {
            dtf_datatree &child = parent.node->children[i];
            const schema_node *const facts = schema_of(child, *parent.node, parent.facts);
            inherit_from(*parent.node, child, facts);
            open.push_back({&child, facts});
        }
    }
}

} // namespace framework
