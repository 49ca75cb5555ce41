#include "tree_builder.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace framework {

tree_builder::tree_builder(arena &memory, const document_text &text, const document_options &options)
    : memory_(memory), text_(text), depth_limit_(options.depth_limit)
{
    waiting_.emplace_back().flags = DTF_FLAG_VALID;
    open_.push_back(0);
}

void tree_builder::close()
{
    dtf_datatree &node = current();
    const std::span<dtf_datatree> below = children();
    open_.pop_back();
    if (below.empty())
        return;
    node.children = static_cast<dtf_datatree *>(memory_.allocate(below.size_bytes()));
    std::memcpy(node.children, below.data(), below.size_bytes());
    node.child_count = node.child_room = static_cast<std::uint32_t>(below.size());
    node.flags |= DTF_FLAG_HAS_SUBTREE;
    waiting_.resize(waiting_.size() - below.size());
}

dtf_datatree tree_builder::finish()
{
    close();
    memory_.keep(text_.bytes);
    return waiting_.front();
}

/* The path would be as deep as the document: its first node has to do. */
void tree_builder::fail_too_deep() const
{
    const std::string start = depth() == 0 ? "" : waiting_[open_[1]].tag;
    throw parse_error(text_.name + ": /" + start + ": elements are nested deeper than the limit of " +
                      std::to_string(depth_limit_) + " levels");
}

void tree_builder::fail(const std::string &what) const
{
    throw parse_error(text_.name + ": " + (depth() == 0 ? "/" : path()) + ": " + what);
}

void tree_builder::fail_child(std::string_view tag, const std::string &what) const
{
    throw parse_error(text_.name + ": " + path() + "/" + std::string(tag) + ": " + what);
}

void tree_builder::fail_attribute(attribute_error::kind how, std::string_view tag, std::string_view attribute,
                                  const std::string &what) const
{
    std::string place = path();
    if (!tag.empty())
        place.append("/").append(tag);
    throw attribute_error(text_.name, how, std::move(place), std::string(attribute), what);
}

std::string tree_builder::next_child(const std::string &tag) const
{
    return step(tag, open_.size() - 1, waiting_.size());
}

/* A tag with its ordinal among the equal ones of its siblings, those of an open node's children that wait before `end`.
 */
std::string tree_builder::step(const std::string &tag, std::size_t parent_level, std::size_t end) const
{
    const std::size_t first = open_[parent_level] + 1;
    const auto before = std::ranges::count_if(std::span(waiting_).subspan(first, end - first),
                                              [&tag](const dtf_datatree &sibling) { return tag == sibling.tag; });
    return before == 0 ? tag : tag + "[" + std::to_string(before + 1) + "]";
}

/* Tags of the open nodes, each with its ordinal among equal siblings when it is not the first ("/a/b[3]/c"). */
std::string tree_builder::path() const
{
    std::string path;
    for (std::size_t level = 1; level < open_.size(); ++level)
        path.append("/").append(step(waiting_[open_[level]].tag, level - 1, open_[level]));
    return path;
}

} // namespace framework
