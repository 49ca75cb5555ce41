#include "service/subtree_filter.h"

#include "service/tree_access.h"

#include "framework/packed_entries.h"
#include "framework/schema_facts.h"
#include "framework/tree.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

namespace service {

namespace {

using framework::schema_kind;
using framework::schema_node;

bool is_match(const dtf_datatree &filter) { return !value_of(filter).empty(); }

bool is_selection(const dtf_datatree &filter) { return children_of(filter).empty() && !is_match(filter); }

/* Whether the filter node speaks of nodes like this one (6.2.1). */
bool names(const dtf_datatree &filter, const dtf_datatree &data)
{
    return std::string_view(filter.tag) == data.tag &&
           (filter.ns == nullptr || framework::same_namespace(filter.ns, data.ns));
}

/* Whether a content match holds for one of the children of `data` (6.2.5). */
bool holds(const dtf_datatree &match, const dtf_datatree &data)
{
    return std::ranges::any_of(children_of(data), [&match](const dtf_datatree &leaf) {
        return names(match, leaf) && children_of(leaf).empty() && value_of(leaf) == value_of(match);
    });
}

class cutter
{
  public:
    explicit cutter(framework::arena &memory) : memory_(memory) {}

    /*
     * Adds to `out`, a copy of `data` without children, what the filter nodes from stack position `first` to the end
     * select of the children of `data`. True where that is something.
     */
    bool cut_children(const dtf_datatree &data, std::size_t first, const schema_node *facts, dtf_datatree &out)
    {
        const std::size_t last = stack_.size();
        bool selected = false;
        dtf_datatree single = data;
        framework::unpack_children(memory_, single);
        for (const dtf_datatree &child : children_of(single)) {
            for (std::size_t i = first; i < last; ++i)
                push_matching(*stack_[i], child);
            if (stack_.size() > last)
                selected |= cut_node(child, last, schema_of(child, data, facts), out);
            stack_.resize(last);
        }
        if (selected && facts != nullptr && facts->kind == schema_kind::list)
            add_keys(data, *facts, out);
        return selected;
    }

    void push(const dtf_datatree &filter) { stack_.push_back(&filter); }

  private:
    /* The children of a filter node that speak of this node. */
    void push_matching(const dtf_datatree &filter, const dtf_datatree &data)
    {
        for (const dtf_datatree &child : children_of(filter)) {
            if (names(child, data))
                stack_.push_back(&child);
        }
    }

    /* Adds to `parent` what the filter nodes from `first` to the end, all speaking of `data`, select of it. */
    bool cut_node(const dtf_datatree &data, std::size_t first, const schema_node *facts, dtf_datatree &parent)
    {
        const auto fails = [&data](const dtf_datatree *filter) {
            if (is_match(*filter))
                return !children_of(data).empty() || value_of(data) != value_of(*filter);
            return !std::ranges::all_of(children_of(*filter), [&data](const dtf_datatree &child) {
                return !is_match(child) || holds(child, data);
            });
        };
        const auto begin = stack_.begin() + static_cast<std::ptrdiff_t>(first);
        stack_.erase(std::remove_if(begin, stack_.end(), fails), stack_.end());
        if (stack_.size() == first)
            return false;
        if (std::any_of(stack_.begin() + static_cast<std::ptrdiff_t>(first), stack_.end(), takes_all)) {
            framework::add_child(memory_, parent) = data;
            return true;
        }
        dtf_datatree copy = data;
        copy.children = nullptr;
        copy.child_count = 0;
        copy.child_room = 0;
        copy.flags &= ~DTF_FLAG_HAS_SUBTREE;
        if (!cut_children(data, first, facts, copy))
            return false;
        framework::add_child(memory_, parent) = copy;
        return true;
    }

    /* Whether a filter node, once its content matches hold, selects all that is below (6.2.3 to 6.2.5). */
    static bool takes_all(const dtf_datatree *filter)
    {
        return is_selection(*filter) || std::ranges::all_of(children_of(*filter), is_match);
    }

    /* The key leaves that the filter did not select itself. */
    void add_keys(const dtf_datatree &data, const schema_node &facts, dtf_datatree &out)
    {
        for (const dtf_datatree &child : children_of(data)) {
            const schema_node *const leaf = facts.child(child.tag);
            if (leaf != nullptr && leaf->is_key && framework::find_child(out, child.tag) == nullptr)
                framework::add_child(memory_, out) = child;
        }
    }

    framework::arena &memory_;
    /* The filter nodes in force, those of the level that is being cut last. */
    std::vector<const dtf_datatree *> stack_;
};

std::string_view trimmed(std::string_view text)
{
    constexpr const char *white_space = " \t\r\n";
    const std::size_t first = text.find_first_not_of(white_space);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(white_space) + 1 - first);
}

} // namespace

void trim_texts(dtf_datatree &filter, framework::arena &memory)
{
    for (std::vector<dtf_datatree *> open = {&filter}; !open.empty();) {
        dtf_datatree &node = *open.back();
        open.pop_back();
        const std::string_view text = value_of(node), rest = trimmed(text);
        if (rest.size() != text.size())
            node.value = memory.copy(rest);
        if (rest.empty())
            node.flags &= ~DTF_FLAG_HAS_VALUE;
        for (dtf_datatree &child : children_of(node))
            open.push_back(&child);
    }
}

dtf_datatree cut_to_filter(const dtf_datatree &data, const dtf_datatree &filter, framework::arena &memory)
{
    dtf_datatree selected{};
    cutter work(memory);
    work.push(filter);
    work.cut_children(data, 0, nullptr, selected);
    return selected;
}

} // namespace service
