#include "landing.h"

#include "tree.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace framework {

namespace {

bool is_list_entry(const dtf_datatree &node)
{
    return (node.kind_flags & kind_is_set) != 0 && node.node_kind == list_entry_kind;
}

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

landing::landing(dtf_datatree &out, arena &memory)
    : out_(&out), memory_(&memory), foreign_tags_(out.child_count != 0), frames_(1)
{
}

landed landing::add(const parsed_path &path, const addition &what)
{
    const std::size_t length = path.segments.size();
    const bool names_entry = what.new_list_entry || path.closing_slash;
    const char *const value = what.value == nullptr || names_entry ? nullptr : memory_->copy(what.value);
    position here;
    enter_start(here, path, what.new_list_entry ? length - 1 : length);
    landed result;
    while (here.depth < length && path.segments[here.depth].list == nullptr &&
           enter_existing(here, path.segments[here.depth].tag())) {
    }
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
        give_entry_operation(node_at(here, length - 1), what.entry_operation);
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        result.keyed_entry = take_awaiting(*path.segments[length - 2].list);
    return result;
}

dtf_datatree *landing::add_to_last_entry(const parsed_path &path, const char *ns, const char *value)
{
    std::vector<entry_place> &places = frames_[open_ - 1].places;
    const path_segment *at = path.segments.data() + path.lists_end;
    const path_segment *const end = path.segments.data() + path.segments.size();
    if (places.empty() || !path.is_below_list || places.back().list != at[-1].list)
        return nullptr;
    const char *const copy = value == nullptr ? nullptr : memory_->copy(value);
    dtf_datatree *node = node_of(places.back());
    for (; at != end; ++at) {
        dtf_datatree *const child = existing_child(*node, at->tag());
        if (child == nullptr)
            break;
        node = child;
    }
    if (at != end)
        node = create_below(*node, at, end, ns);
    if (copy != nullptr) {
        node->value = copy;
        node->flags |= DTF_FLAG_HAS_VALUE;
    }
    return node;
}

/*
 * Creates below `above` a node for each segment from `missing` to the path's end; a segment for `above` stands before
 * them. None is a list entry, so nothing has to be remembered. Returns the last.
 */
inline dtf_datatree *landing::create_below(dtf_datatree &above, const path_segment *missing, const path_segment *end,
                                           const char *ns)
{
    dtf_datatree *node = &new_child(above, *missing[-1].usual_children, *missing, ns);
    try {
        while (++missing != end)
            node = &new_child(*node, *missing[-1].usual_children, *missing, ns);
    } catch (...) {
        drop_last_child(above);
        throw;
    }
    return node;
}

/*
 * The entry to start from: the deepest on the path among those of the innermost frame that has any. Entries of frames
 * further out may belong to another entry of a list above. At most the first `limit` segments are passed that way.
 */
void landing::enter_start(position &here, const parsed_path &path, std::size_t limit)
{
    entry_place *deepest = nullptr;
    /* Mostly it is the entry of the path's last list, which the innermost frame has added last. */
    std::vector<entry_place> &innermost = frames_[open_ - 1].places;
    if (!innermost.empty() && path.lists_end != 0 && path.lists_end <= limit &&
        innermost.back().list == path.segments[path.lists_end - 1].list)
        deepest = &innermost.back();
    for (std::size_t i = open_; i-- > 0 && deepest == nullptr;) {
        for (entry_place &place : frames_[i].places) {
            const bool on_path = place.depth <= limit && path.segments[place.depth - 1].list == place.list;
            if (on_path && (deepest == nullptr || place.depth > deepest->depth))
                deepest = &place;
        }
    }
    here.start = deepest;
    here.start_depth = deepest == nullptr ? 0 : deepest->depth;
    here.node = deepest == nullptr ? out_ : node_of(*deepest);
    here.depth = here.start_depth;
}

/* A node that was passed on the way, at `depth` >= the start's. */
dtf_datatree &landing::node_at(const position &here, std::size_t depth) const
{
    dtf_datatree *const start = here.start == nullptr ? out_ : here.start->node;
    return *descend(start, here.steps.data() + here.start_depth, depth - here.start_depth);
}

/* Makes the steps count from the root: the entry that the way started from may be forgotten then. */
void landing::complete_steps(position &here)
{
    if (here.start != nullptr)
        std::copy_n(here.start->steps.begin(), here.start_depth, here.steps.begin());
    here.start = nullptr;
    here.start_depth = 0;
}

bool landing::enter_existing(position &here, const char *tag) const
{
    dtf_datatree *const child = existing_child(*here.node, tag);
    if (child == nullptr)
        return false;
    here.steps[here.depth++] = static_cast<std::uint32_t>(child - here.node->children);
    here.node = child;
    return true;
}

inline dtf_datatree *landing::existing_child(const dtf_datatree &parent, const char *tag) const
{
    if ((parent.flags & DTF_FLAG_HAS_SUBTREE) == 0)
        return nullptr;
    dtf_datatree *const end = parent.children + parent.child_count;
    for (dtf_datatree *child = parent.children; child != end; ++child) {
        if (child->tag == tag)
            return child;
    }
    return foreign_tags_ ? find_child(parent, tag) : nullptr;
}

void landing::create_rest(position &here, const parsed_path &path, const addition &what)
{
    const std::size_t first = here.depth;
    const std::size_t length = path.segments.size();
    const bool makes_entries = first < path.lists_end;
    if (makes_entries) {
        /* What remembering needs is allocated first: once the nodes are there, nothing fails. That may move the start.
         */
        complete_steps(here);
        std::vector<entry_place> &places = frames_[open_ - 1].places;
        places.reserve(places.size() + path.list_count);
    }
    try {
        while (here.depth < length) {
            dtf_datatree &parent = *here.node;
            std::uint32_t &usual_children =
                here.depth == 0 ? roots_children_ : *path.segments[here.depth - 1].usual_children;
            here.node = &new_child(parent, usual_children, path.segments[here.depth], what.ns);
            here.steps[here.depth++] = parent.child_count - 1;
        }
    } catch (...) {
        if (here.depth > first)
            drop_last_child(node_at(here, first));
        throw;
    }
    if (makes_entries)
        remember_created(here, path, first, what.new_list_entry);
}

/* A child for the segment of a path. `usual_children` counts those of the segment before it. */
inline dtf_datatree &landing::new_child(dtf_datatree &parent, std::uint32_t &usual_children,
                                        const path_segment &segment, const char *ns)
{
    const bool has_room = (parent.flags & DTF_FLAG_HAS_SUBTREE) != 0 && parent.child_count < parent.child_room;
    if (!has_room || memory_->poison())
        make_room(parent, usual_children);
    dtf_datatree &child = parent.children[parent.child_count++];
    usual_children = parent.child_count;
    child = segment.blank;
    child.ns = ns;
    return child;
}

/*
 * Nodes of one name mostly have as many children as the one before them: so much room is made at once, and an array is
 * neither moved nor larger than it needs to be.
 */
void landing::make_room(dtf_datatree &parent, std::uint32_t usual_children)
{
    const bool is_first = (parent.flags & DTF_FLAG_HAS_SUBTREE) == 0 || parent.child_count == 0;
    if (is_first)
        reserve_children(*memory_, parent, usual_children);
    else
        ++moves_;
    grow_children(*memory_, parent);
}

void landing::remember_created(const position &here, const parsed_path &path, std::size_t first, bool names_new_entry)
{
    for (std::size_t depth = first; depth < path.lists_end; ++depth) {
        if (const list_schema *const list = path.segments[depth].list)
            remember(here, depth + 1, *list, names_new_entry && depth + 1 == here.depth);
    }
}

/* Makes the entry at the first `depth` steps the innermost frame's for `list`; what it had of it and below goes. */
void landing::remember(const position &here, std::size_t depth, const list_schema &list, bool awaits_key)
{
    std::vector<entry_place> &places = frames_[open_ - 1].places;
    std::erase_if(places, [&list](const entry_place &place) {
        return place.list == &list ||
               (place.list->path.starts_with(list.path) && place.list->path[list.path.size()] == '/');
    });
    entry_place &place = places.emplace_back();
    place.list = &list;
    std::copy_n(here.steps.begin(), depth, place.steps.begin());
    place.depth = static_cast<std::uint8_t>(depth);
    place.awaits_key = awaits_key;
    if (depth == here.depth) {
        place.node = here.node;
        place.moves = moves_;
    }
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

dtf_datatree *landing::node_of(entry_place &place)
{
    if (place.node == nullptr || place.moves != moves_) {
        place.node = descend(out_, place.steps.data(), place.depth);
        place.moves = moves_;
    }
    return place.node;
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
    for (entry_place &place : closing.places) {
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
