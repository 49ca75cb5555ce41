#include "print_tree.h"

#include "packed_entries.h"

#include <string>

namespace framework {

namespace {

/* A malformed tree might lead back to itself; nothing deeper than this was ever read from a document. */
constexpr std::size_t deepest = 512;

void print_node(debug_log &log, const dtf_datatree &node, std::size_t depth, std::string &line)
{
    if (is_packed(node)) { /* one that the walk is still at does not show */
        for (packed_cursor cursor(node); cursor.next();)
            print_node(log, cursor.entry(), depth, line);
        return;
    }
    line.assign(2 * depth, ' ').append(node.tag == nullptr ? "(no tag)" : node.tag);
    if (node.value != nullptr)
        line.append(" = ").append(node.value);
    if ((node.flags & DTF_FLAG_OP_SET) != 0)
        line.append(" (operation ").append(std::to_string(node.operation)).append(")");
    log.write_line(line);
    if ((node.flags & DTF_FLAG_HAS_SUBTREE) == 0 || node.children == nullptr || depth == deepest)
        return;
    for (std::uint32_t i = 0; i < node.child_count; ++i)
        print_node(log, node.children[i], depth + 1, line);
}

} // namespace

void print_tree(debug_log &log, const dtf_datatree *tree, const char *label)
{
    std::string line(label == nullptr ? "" : label);
    if (tree == nullptr)
        line.append(" (none)");
    log.write_line(line);
    if (tree != nullptr)
        print_node(log, *tree, 1, line);
}

} // namespace framework
