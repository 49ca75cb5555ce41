#include "path_table.h"

#include "constant_text.h"
#include "schema_facts.h"

#include <algorithm>
#include <cstring>

namespace framework {

namespace {

/* What the plug-in and the writers see of a node's kind. */
void describe(dtf_datatree &node, bool is_list_entry, bool is_key)
{
    node.node_kind = is_list_entry ? list_entry_kind : 0;
    node.kind_flags = is_list_entry ? kind_is_set : 0;
    node.is_key = is_key ? 1 : 0;
    node.flags = DTF_FLAG_VALID | (is_key ? DTF_FLAG_KEY : 0);
}

} // namespace

bool list_schema::is_key(std::string_view tag) const { return std::find(keys.begin(), keys.end(), tag) != keys.end(); }

bool parsed_path::is_below(const parsed_path &ancestor) const
{
    const std::size_t length = ancestor.text.size();
    return text.size() > length && text[length] == '/' && text.compare(0, length, ancestor.text) == 0;
}

const parsed_path *path_table::look_up(const char *path)
{
    const auto met = by_address_.find(path);
    if (met != by_address_.end() && met->second != nullptr) {
        literals_[slot_of(path)] = {path, met->second};
        return met->second;
    }
    const std::string_view text(path);
    const auto known = by_text_.find(text);
    const parsed_path *const found = known != by_text_.end() ? known->second.get() : parse(text);
    if (met == by_address_.end())
        by_address_.emplace(path, is_constant_text(path) ? found : nullptr);
    return found;
}

void path_table::mark_list(const parsed_path &path)
{
    if (path.segments.back().list != nullptr)
        return;
    const std::string list_path(path.text, 0, path.text.size() - (path.closing_slash ? 1 : 0));
    lists_.emplace(list_path, std::make_unique<list_schema>(list_schema{list_path, {}, false}));
    for (auto &[text, parsed] : by_text_)
        bind_lists(*parsed);
}

const parsed_path *path_table::parse(std::string_view text)
{
    auto path = std::make_unique<parsed_path>();
    path->text = text;
    path->relative = !text.starts_with('/');
    std::string_view rest = path->relative ? text : text.substr(1);
    path->closing_slash = !path->relative && rest.ends_with('/');
    if (path->closing_slash)
        rest.remove_suffix(1);
    for (bool more = true; more;) {
        const std::size_t end = rest.find('/');
        more = end != std::string_view::npos;
        const std::string_view tag = rest.substr(0, end);
        if (tag.empty() || path->segments.size() == max_segments)
            return nullptr;
        dtf_datatree blank = {};
        blank.tag = intern(tag);
        path->segments.push_back({blank, nullptr});
        if (more)
            rest.remove_prefix(end + 1);
    }
    bind_lists(*path);
    const std::string_view key = path->text;
    return by_text_.emplace(key, std::move(path)).first->second.get();
}

const char *path_table::intern(std::string_view tag)
{
    if (const auto known = tags_.find(tag); known != tags_.end())
        return known->data();
    return tags_.emplace(memory_->copy(tag), tag.size()).first->data();
}

/* The list at a schema path, from the facts when it is met first; null when the path is no list. */
const list_schema *path_table::list_at(std::string_view path)
{
    if (const auto known = lists_.find(path); known != lists_.end())
        return known->second.get();
    const schema_node *const facts = find_schema_node(path);
    if (facts == nullptr || facts->kind != schema_kind::list)
        return nullptr;
    auto list = std::make_unique<list_schema>();
    list->path = path;
    for (const schema_node &child : facts->children) {
        if (child.is_key)
            list->keys.push_back(child.tag);
    }
    /* OpenConfig's style: what can be configured has a `config` container. */
    list->needs_keys = !list->keys.empty() && facts->child("config") != nullptr;
    return lists_.emplace(list->path, std::move(list)).first->second.get();
}

/* Allocates for lists that are met first only, and those are not new to paths that were parsed before. */
void path_table::bind_lists(parsed_path &path)
{
    path.list_count = 0;
    path.lists_end = 0;
    if (path.relative)
        return;
    std::size_t end = 0;
    const list_schema *above = nullptr;
    for (path_segment &segment : path.segments) {
        end += 1 + std::strlen(segment.tag());
        segment.list = list_at(std::string_view(path.text).substr(0, end));
        describe(segment.blank, segment.list != nullptr, above != nullptr && above->is_key(segment.tag()));
        above = segment.list;
        if (segment.list != nullptr) {
            ++path.list_count;
            path.lists_end = static_cast<std::uint32_t>(&segment - path.segments.data()) + 1;
        }
    }
    path.is_below_list = path.lists_end != 0 && path.lists_end < path.segments.size() && !path.closing_slash;
}

} // namespace framework
