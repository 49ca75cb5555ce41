/* Trees as texts that a test can compare and a person read, and documents from literals. */
#ifndef TESTS_DOCUMENTS_TREE_TEXT_H
#define TESTS_DOCUMENTS_TREE_TEXT_H

#include "document.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

/* All that a reader sets, a line per node; also checks that flags, counts and pointers agree. */
inline void append_tree(std::string &text, const dtf_datatree &node, std::size_t level)
{
    const bool has_value = (node.flags & DTF_FLAG_HAS_VALUE) != 0;
    const bool has_children = (node.flags & DTF_FLAG_HAS_SUBTREE) != 0;
    const bool agree = has_value == (node.value != nullptr) && has_children == (node.child_count > 0) &&
                       has_children == (node.children != nullptr);
    EXPECT_TRUE(agree && (node.flags & DTF_FLAG_VALID) != 0) << text;
    if (node.tag != nullptr) {
        text += std::string(2 * level, ' ') + node.tag + " {" + (node.ns == nullptr ? "" : node.ns) + "}";
        text += has_value ? " = '" + std::string(node.value) + "'" : "";
        text += " op " + std::to_string(node.operation) + ((node.flags & DTF_FLAG_OP_SET) != 0 ? "!\n" : "\n");
    }
    for (std::uint32_t i = 0; i < node.child_count; ++i)
        append_tree(text, node.children[i], level + 1);
}

inline std::string tree_text(const dtf_datatree &root)
{
    std::string text;
    append_tree(text, root, 0);
    return text;
}

/* The tree of a document as text, or "error: " and the message. The document is called "doc" in messages. */
inline std::string parsed(std::string_view document, framework::document_use use)
{
    framework::arena memory;
    framework::document_options options;
    options.use = use;
    try {
        return tree_text(framework::parse_document(framework::make_document_text(document, "doc"), memory, options));
    } catch (const framework::parse_error &error) {
        EXPECT_EQ(std::string_view(error.what()).find('\n'), std::string_view::npos) << error.what();
        return std::string("error: ") + error.what();
    }
}

#endif
