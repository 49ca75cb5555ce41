#include "landing.h"

#include "tree.h"

#include <algorithm>
#include <limits>
#include <new>
#include <span>
#include <utility>

namespace framework {

namespace {

dtf_datatree *descend(dtf_datatree *node, const std::uint32_t *steps, std::size_t depth)
{
    for (std::size_t i = 0; i < depth; ++i)
        node = &node->children[steps[i]];
    return node;
}

/* Takes the last child away again. */
void drop_last_child(dtf_datatree &parent)
{
    if (--parent.child_count == 0)
        parent.flags &= ~DTF_FLAG_HAS_SUBTREE;
}

/* The entry has a value for each key of its list. */
bool has_all_keys(const dtf_datatree &entry, const list_schema &list)
{
    return std::all_of(list.keys.begin(), list.keys.end(), [&entry](std::string_view key) {
        const dtf_datatree *const leaf = find_child(entry, key);
        return leaf != nullptr && (leaf->flags & DTF_FLAG_HAS_VALUE) != 0;
    });
}

void give_value(dtf_datatree &node, const char *value, const addition &what)
{
    if (value == nullptr)
        return;
    node.value = value;
    if (*value != '\0' || !what.empty_is_valueless)
        node.flags |= DTF_FLAG_HAS_VALUE;
    else
        node.flags &= ~DTF_FLAG_HAS_VALUE;
}

/* An added node does what its source asks for. */
void give_operation(dtf_datatree &node, const addition &what)
{
    if (what.source == nullptr)
        return;
    node.operation = what.source->operation;
    node.flags = (node.flags & ~DTF_FLAG_OP_SET) | (what.source->flags & DTF_FLAG_OP_SET);
    node.source_index = what.source_index;
}

/* A list entry does what the request asks for the entry that it stands for, unless its own source said it already. */
void give_entry_operation(dtf_datatree &entry, std::uint32_t operation)
{
    if ((entry.flags & DTF_FLAG_OP_SET) != 0)
        return;
    entry.operation = operation;
    entry.flags |= DTF_FLAG_OP_SET;
}

} // namespace

landing::landing(dtf_datatree &out, arena &memory) : out_(&out), memory_(&memory), frames_(1), packer_(memory) {}

landed landing::add(const parsed_path &path, const addition &what)
{
    unpack_open();
    const std::size_t length = path.segments.size();
    const bool names_entry = what.new_list_entry || path.closing_slash;
    const char *const value = what.value == nullptr || names_entry ? nullptr : memory_->copy(what.value);
    position here = follow(path, what.new_list_entry ? length - 1 : length);
    landed result;
    result.created = here.depth < length;
    if (result.created)
        create_rest(here, path, what);
    dtf_datatree &node = *here.node;
    const bool is_key = path.segments.back().is_key();
    result.node = &node;
    /* In a read the first key names the entry: another one is a content match, which the filter of the reply is for. */
    const bool keeps_key =
        what.empty_is_valueless && !result.created && is_key && (node.flags & DTF_FLAG_HAS_VALUE) != 0;
    give_value(node, keeps_key ? nullptr : value, what);
    give_operation(node, what);
    if (!result.created || !is_key)
        return result;
    if (what.entry_operation != 0)
        give_entry_operation(*descend(out_, here.steps.data(), length - 1), what.entry_operation);
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        result.keyed_entry = take_awaiting(*path.segments[length - 2].list);
    return result;
}

/*
 * Only behind another entry, since what a list is like shows in its first one; and only inside another list: entries of
 * outer lists are few, and looked at one by one.
 */
bool landing::start_packing(const parsed_path &path, const char *ns)
{
    unpack_open();
    const list_schema *const list = path.segments.back().list;
    if (list == nullptr || list->needs_keys || path.list_count < 2 || path.closing_slash)
        return false;
    const std::size_t above = path.segments.size() - 1;
    const position parent = follow(path, above);
    const std::uint32_t first_step = packer_.first_step(path, ns);
    if (parent.depth != above || first_step == 0)
        return false;
    packed_entries *const entries = packed_behind(*parent.node, path, ns);
    if (entries == nullptr)
        return false;
    packing_ = {&path, ns, first_step, parent, entries, open_ - 1};
    packer_.begin(*entries, first_step);
    return true;
}

/*
 * The packed entries that the children of `parent` end with, made where there is an entry for them to stand behind. An
 * entry has no value; one that was given one all the same is none to go by.
 */
packed_entries *landing::packed_behind(dtf_datatree &parent, const parsed_path &path, const char *ns)
{
    if ((parent.flags & DTF_FLAG_HAS_SUBTREE) == 0 || parent.child_count == 0)
        return nullptr;
    const dtf_datatree &last = parent.children[parent.child_count - 1];
    const path_segment *const segment = &path.segments.back();
    if (last.tag != segment->tag() || last.ns != ns || (last.flags & DTF_FLAG_HAS_VALUE) != 0)
        return nullptr;
    if (is_packed(last))
        return &packed_in(last);
    auto *const entries = new (memory_->allocate(sizeof(packed_entries))) packed_entries{};
    set_packed(add_segment(parent, *segment, ns), *entries);
    return entries;
}

/* The entry that is open in packed form is to be a node, and so are those packed with it, since they come before it. */
void landing::unpack_open()
{
    if (!packer_.is_open())
        return;
    frame &by = frames_[packing_.frame];
    by.places.reserve(by.places.size() + 1);
    position here = packing_.parent;
    dtf_datatree &parent = *here.node;
    const std::size_t before = parent.child_count - 1;
    const std::size_t count = before + packing_.entries->count + 1;
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    if (count > most)
        throw std::bad_alloc();
    if (count > parent.child_room)
        reserve_children(*memory_, parent, static_cast<std::uint32_t>(std::clamp(2 * before, count, most)));
    packer_.end();
    std::span<const dtf_datatree> entries;
    try {
        entries = unpack(*memory_, parent.children[before]);
    } catch (...) {
        packer_.reopen(*packing_.entries);
        throw;
    }
    std::ranges::copy(entries, parent.children + before);
    parent.child_count = static_cast<std::uint32_t>(count);
    here.steps[here.depth++] = parent.child_count - 1;
    remember(by, here, here.depth, *std::exchange(packing_.path, nullptr)->segments.back().list, false);
}

/*
 * Follows a path as far as its nodes are there, `limit` segments at most. The start is an entry: the deepest on the
 * path among those of the innermost frame that has any. Entries of frames further out may belong to another entry of a
 * list above.
 */
landing::position landing::follow(const parsed_path &path, std::size_t limit) const
{
    const entry_place *start = nullptr;
    for (std::size_t i = open_; i-- > 0 && start == nullptr;) {
        for (const entry_place &place : frames_[i].places) {
            const bool on_path = place.depth <= limit && path.segments[place.depth - 1].list == place.list;
            if (on_path && (start == nullptr || place.depth > start->depth))
                start = &place;
        }
    }
    position here{out_, 0, {}};
    if (start != nullptr)
        here = {node_of(*start), start->depth, start->steps};
    for (; here.depth < limit && path.segments[here.depth].list == nullptr; ++here.depth) {
        dtf_datatree *const child = find_child(*here.node, path.segments[here.depth].tag());
        if (child == nullptr)
            break;
        here.steps[here.depth] = static_cast<std::uint32_t>(child - here.node->children);
        here.node = child;
    }
    return here;
}

void landing::create_rest(position &here, const parsed_path &path, const addition &what)
{
    packing_.path = nullptr;
    const std::size_t first = here.depth;
    const std::size_t length = path.segments.size();
    const bool makes_entries = first < path.lists_end;
    if (makes_entries) {
        /* What remembering needs is allocated first: once the nodes are there, nothing fails. */
        std::vector<entry_place> &places = frames_[open_ - 1].places;
        places.reserve(places.size() + path.list_count);
    }
    try {
        while (here.depth < length) {
            dtf_datatree &parent = *here.node;
            here.node = &add_segment(parent, path.segments[here.depth], what.ns);
            here.steps[here.depth++] = parent.child_count - 1;
        }
    } catch (...) {
        if (here.depth > first)
            drop_last_child(*descend(out_, here.steps.data(), first));
        throw;
    }
    if (makes_entries)
        remember_created(here, path, first, what.new_list_entry);
}

dtf_datatree &landing::add_segment(dtf_datatree &parent, const path_segment &segment, const char *ns)
{
    dtf_datatree &child = add_child(*memory_, parent);
    child = segment.blank;
    child.ns = ns;
    return child;
}

void landing::remember_created(const position &here, const parsed_path &path, std::size_t first, bool names_new_entry)
{
    for (std::size_t depth = first; depth < path.lists_end; ++depth) {
        if (const list_schema *const list = path.segments[depth].list)
            remember(frames_[open_ - 1], here, depth + 1, *list, names_new_entry && depth + 1 == here.depth);
    }
}

/* Makes the entry at the first `depth` steps the frame's for `list`; what it had of it and below goes. */
void landing::remember(frame &by, const position &here, std::size_t depth, const list_schema &list, bool awaits_key)
{
    std::vector<entry_place> &places = by.places;
    std::erase_if(places, [&list](const entry_place &place) {
        return place.list == &list ||
               (place.list->path.starts_with(list.path) && place.list->path[list.path.size()] == '/');
    });
    entry_place &place = places.emplace_back();
    place.list = &list;
    std::copy_n(here.steps.begin(), depth, place.steps.begin());
    place.depth = static_cast<std::uint8_t>(depth);
    place.awaits_key = awaits_key;
}

/* The innermost frame's entry of `list` if its key was awaited; it is not any longer. */
const entry_place *landing::take_awaiting(const list_schema &list)
{
    for (entry_place &place : frames_[open_ - 1].places) {
        if (place.list == &list && std::exchange(place.awaits_key, false))
            return &place;
    }
    return nullptr;
}

dtf_datatree *landing::node_of(const entry_place &place) const
{
    return descend(out_, place.steps.data(), place.depth);
}

bool landing::open_frame(const parsed_path &schema, std::uint8_t hierarchy_len, bool withdraw_keyless)
{
    /* Mostly it is the frame that was closed last, for the next entry of the same list: then it is known to fit. */
    const bool fits = open_ < frames_.size() && frames_[open_].schema == &schema &&
                      frames_[open_].schema_above == frames_[open_ - 1].schema;
    while (!fits && open_ > 1 && !schema.is_below(*frames_[open_ - 1].schema))
        close_innermost(withdraw_keyless);
    if (open_ > max_frames)
        return false;
    if (open_ == frames_.size())
        frames_.emplace_back();
    frame &opened = frames_[open_];
    opened.schema_above = frames_[open_++ - 1].schema;
    opened.schema = &schema;
    opened.hierarchy_len = hierarchy_len;
    return true;
}

void landing::close_frames_below(std::uint8_t hierarchy_len, bool withdraw_keyless)
{
    while (open_ > 1 && frames_[open_ - 1].hierarchy_len > hierarchy_len)
        close_innermost(withdraw_keyless);
}

void landing::finish(bool withdraw_keyless)
{
    close_frames_below(0, withdraw_keyless);
    packer_.end();
}

void landing::make_current(const entry_place &place)
{
    std::vector<entry_place> &places = frames_[open_ - 1].places;
    const entry_place copy = place;
    places.clear();
    places.push_back(copy);
    places.back().awaits_key = false;
}

void landing::close_innermost(bool withdraw_keyless)
{
    frame &closing = frames_[--open_];
    if (open_ == packing_.frame)
        packer_.end();
    /* The entry that the way to the packed ones starts from is forgotten. */
    if (open_ < packing_.frame || (open_ == packing_.frame && !closing.places.empty()))
        packing_.path = nullptr;
    for (const entry_place &place : closing.places) {
        if (!withdraw_keyless || !place.list->needs_keys || has_all_keys(*node_of(place), *place.list))
            continue;
        withdraw(place);
        /* What else the frame remembers of this model lies below. */
        break;
    }
    closing.places.clear();
}

/*
 * Takes the entry away with all below, and the containers above that it leaves empty. Entries are added at the end of
 * their array, so this is one step per level.
 */
void landing::withdraw(const entry_place &place)
{
    for (std::size_t depth = place.depth; depth-- > 0;) {
        dtf_datatree &parent = *descend(out_, place.steps.data(), depth);
        if (place.steps[depth] + 1 != parent.child_count)
            return;
        drop_last_child(parent);
        if (parent.child_count != 0 || is_list_entry(parent))
            return;
    }
}

} // namespace framework
