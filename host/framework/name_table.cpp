#include "name_table.h"

#include "schema_facts.h"

#include <algorithm>

namespace framework {

namespace {

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool is_name_character(char c) { return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }

/* An identifier of YANG (RFC 7950, 6.2); letters beyond ASCII pass, since XML names may have them. */
bool is_name(std::string_view text)
{
    return !text.empty() && is_letter(text.front()) && std::ranges::all_of(text, is_name_character);
}

} // namespace

name_table::name_table(arena &memory) : memory_(memory)
{
    start_.text = "\xff"; /* in no UTF-8 text, so that it is never the right guess */
    start_.next = &start_;
}

name_entry *name_table::find(std::string_view name)
{
    const auto known = entries_.find(name);
    name_entry *const entry = known != entries_.end() ? &known->second : make(name);
    if (entry != nullptr)
        last_ = last_->next = entry;
    return entry;
}

/*
 * The prefix is what stands before the last colon: a namespace that is not ours may have colons itself when it comes
 * from XML and goes to JSON.
 */
name_entry *name_table::make(std::string_view name)
{
    const std::size_t colon = name.rfind(':');
    const std::string_view tag = colon == std::string_view::npos ? name : name.substr(colon + 1);
    if (colon == 0 || !is_name(tag))
        return nullptr;
    name_entry entry = {};
    entry.text = {memory_.copy(name), name.size()};
    entry.next = &start_;
    if (colon == std::string_view::npos) {
        entry.tag = entry.text.data();
    } else {
        entry.prefix = entry.text.substr(0, colon);
        entry.plain = find(tag);
        entry.tag = entry.plain->tag;
        entry.ns = module_namespace(entry.prefix);
    }
    name_entry *const made = &entries_.emplace(entry.text, entry).first->second;
    if (made->plain == nullptr)
        made->plain = made;
    return made;
}

const char *name_table::namespace_of(std::string_view uri)
{
    if (const auto known = namespaces_.find(uri); known != namespaces_.end())
        return known->second;
    const schema_module *const module = find_module_by_namespace(uri);
    const char *const text = module != nullptr ? module->ns : memory_.copy(uri);
    namespaces_.emplace(std::string_view(text, uri.size()), text);
    return text;
}

const char *name_table::module_namespace(std::string_view module)
{
    const schema_module *const known = find_module_by_name(module);
    return known != nullptr ? known->ns : namespace_of(module);
}

} // namespace framework
