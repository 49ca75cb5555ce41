#include "service/filter_request.h"

#include "service/tree_access.h"

#include "framework/schema_facts.h"
#include "framework/tree.h"

#include "oc_chmon.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

namespace service {

namespace {

using framework::schema_kind;
using framework::schema_node;

bool is_ours(const dtf_datatree &node)
{
    return node.ns == nullptr || framework::same_namespace(node.ns, CHMON_NS_OPENCONFIG_CHANNEL_MONITOR);
}

bool holds_match(const dtf_datatree &node)
{
    return std::ranges::any_of(children_of(node), [](const dtf_datatree &child) { return !value_of(child).empty(); });
}

/* The node alone. */
dtf_datatree bare(const dtf_datatree &node)
{
    dtf_datatree copy{};
    copy.tag = node.tag;
    copy.ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
    copy.value = node.value;
    copy.flags = DTF_FLAG_VALID | (node.flags & DTF_FLAG_HAS_VALUE);
    return copy;
}

/*
 * Keeps one leaf of each key of an entry's request, that with a value if there is one, for the plug-in takes a key that
 * is there twice for a mistake. False where two values are asked of one key at once, which no entry has.
 */
bool unite_keys(dtf_datatree &request, const schema_node &list)
{
    const auto is_key = [&list](const dtf_datatree &leaf) {
        const schema_node *const facts = list.child(leaf.tag);
        return facts != nullptr && facts->is_key;
    };
    std::uint32_t kept = 0;
    for (const dtf_datatree &child : children_of(request)) {
        const auto before = std::span(request.children, kept);
        const auto same = !is_key(child) ? before.end() : std::ranges::find_if(before, [&](const dtf_datatree &leaf) {
            return std::string_view(leaf.tag) == child.tag;
        });
        if (same == before.end())
            request.children[kept++] = child;
        else if (value_of(*same).empty())
            *same = child;
        else if (!value_of(child).empty() && value_of(*same) != value_of(child))
            return false;
    }
    request.child_count = kept;
    return true;
}

/*
 * The filter node as a request, none where it can select nothing. `facts` is what is known of it, null for an element
 * that our model does not have: the plug-in reports that one.
 */
std::optional<dtf_datatree> request_of(const dtf_datatree &node, const schema_node *facts, framework::arena &memory)
{
    dtf_datatree request = bare(node);
    /* Nothing is below what is unknown; so this goes no deeper than the model. */
    if (facts == nullptr)
        return request;
    /* Text beside elements never gets here, so this one is matched with text that a container does not have. */
    if (!is_leaf(*facts) && !value_of(node).empty())
        return std::nullopt;
    const auto children = children_of(node);
    const bool is_entry = facts->kind == schema_kind::list;
    for (const dtf_datatree &child : children) {
        if (!is_ours(child))
            continue;
        auto below = request_of(child, facts->child(child.tag), memory);
        if (!below)
            continue;
        if (is_entry && children.size() > 1 && holds_match(*below))
            *below = bare(child);
        framework::add_child(memory, request) = *below;
    }
    if (!children.empty() && children_of(request).empty())
        return std::nullopt;
    if (is_entry && !unite_keys(request, *facts))
        return std::nullopt;
    return request;
}

/*
 * The named entries of a request together, each other one in a request of its own: only in a request that names no
 * monitor does the plug-in ask for all of them.
 */
void add_requests(std::vector<dtf_datatree> &requests, const dtf_datatree &request, framework::arena &memory)
{
    const auto is_named = [](const dtf_datatree &entry) { return !leaf_value(entry, "name").empty(); };
    const auto entries = children_of(request);
    if (entries.size() < 2 || std::ranges::all_of(entries, is_named)) {
        requests.push_back(request);
        return;
    }
    dtf_datatree named = bare(request);
    for (const dtf_datatree &entry : entries) {
        if (is_named(entry)) {
            framework::add_child(memory, named) = entry;
            continue;
        }
        requests.push_back(bare(request));
        framework::add_child(memory, requests.back()) = entry;
    }
    if (!children_of(named).empty())
        requests.push_back(named);
}

} // namespace

std::vector<dtf_datatree> requests_of(const dtf_datatree &filter, framework::arena &memory)
{
    std::vector<dtf_datatree> requests;
    const schema_node *const facts = framework::find_schema_node(monitors_tag);
    for (const dtf_datatree &top : children_of(filter)) {
        if (!is_ours(top) || std::string_view(top.tag) != monitors_tag)
            continue;
        if (const auto request = request_of(top, facts, memory))
            add_requests(requests, *request, memory);
    }
    return requests;
}

dtf_datatree whole_request()
{
    dtf_datatree top{};
    top.tag = monitors_tag;
    top.ns = CHMON_NS_OPENCONFIG_CHANNEL_MONITOR;
    top.flags = DTF_FLAG_VALID;
    return top;
}

} // namespace service
