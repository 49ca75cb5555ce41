/*
 * What both readers share: nodes that arrive in document order become a tree whose child arrays are each allocated
 * once, at their exact size.
 */
#ifndef FRAMEWORK_TREE_BUILDER_H
#define FRAMEWORK_TREE_BUILDER_H

#include "arena.h"
#include "document.h"
#include "dtf.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace framework {

/*
 * Nodes wait in one stack until their parent ends; then they move to the arena together. An open node lies right below
 * its children so far.
 */
class tree_builder
{
  public:
    tree_builder(arena &memory, const document_text &text, const document_options &options);

    /* Adds a node below the innermost open node. Tag and namespace are kept by reference. */
    dtf_datatree &add(const char *tag, const char *ns)
    {
        if (open_.size() > depth_limit_)
            fail_too_deep();
        dtf_datatree &node = waiting_.emplace_back();
        node.tag = tag;
        node.ns = ns;
        node.flags = DTF_FLAG_VALID;
        return node;
    }

    /* The same, and opens it: what is added until close() is below it. */
    dtf_datatree &open(const char *tag, const char *ns)
    {
        dtf_datatree &node = add(tag, ns);
        open_.push_back(waiting_.size() - 1);
        return node;
    }

    /* Ends the innermost open node. */
    void close();

    /* The innermost open node, and what was added below it. Valid until the next addition. */
    dtf_datatree &current() { return waiting_[open_.back()]; }
    std::span<dtf_datatree> children() { return std::span(waiting_).subspan(open_.back() + 1); }

    /* Nothing was added below the innermost open node. */
    bool is_childless() const { return open_.back() + 1 == waiting_.size(); }

    /* Open nodes without the virtual root. */
    std::size_t depth() const { return open_.size() - 1; }

    /* Ends the virtual root and returns it. */
    dtf_datatree finish();

    /* Throws parse_error about the innermost open node, or about its child `tag`. */
    [[noreturn]] void fail(const std::string &what) const;
    [[noreturn]] void fail_child(std::string_view tag, const std::string &what) const;
    /* Throws attribute_error about its child `tag`, or where that is empty about itself. */
    [[noreturn]] void fail_attribute(attribute_error::kind how, std::string_view tag, std::string_view attribute,
                                     const std::string &what) const;

    /* How a child that is added next is called in a path: "b", or "b[3]" behind two others. */
    std::string next_child(const std::string &tag) const;

  private:
    [[noreturn]] void fail_too_deep() const;
    std::string step(const std::string &tag, std::size_t parent_level, std::size_t end) const;
    std::string path() const;

    arena &memory_;
    const document_text &text_;
    std::size_t depth_limit_;
    std::vector<dtf_datatree> waiting_; /* the virtual root first */
    std::vector<std::size_t> open_;     /* the open nodes, outermost first: indexes into waiting_ */
};

/* Gives a leaf its value, which must be NUL-terminated and stay as long as the tree. */
inline void set_value(dtf_datatree &leaf, const char *value)
{
    leaf.value = value;
    leaf.flags |= DTF_FLAG_HAS_VALUE;
}

} // namespace framework

#endif
