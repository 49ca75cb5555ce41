#include "entry_packer.h"

#include "tree.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace framework {

namespace {

/* Texts lie in blocks that double from the first size to the last one. */
constexpr std::size_t first_block = std::size_t{1} << 10;
constexpr std::size_t last_block = std::size_t{64} << 10;

template <typename T> T *make_in(arena &memory) { return new (memory.allocate(sizeof(T))) T{}; }

/* The node that a path names below an entry of its last list. */
dtf_datatree &node_below(dtf_datatree &entry, const parsed_path &path)
{
    dtf_datatree *node = &entry;
    for (std::size_t i = path.lists_end; i < path.segments.size(); ++i)
        node = find_child(*node, path.segments[i].tag());
    return *node;
}

void add_below(arena &memory, dtf_datatree &entry, const parsed_path &path, const char *ns)
{
    dtf_datatree *node = &entry;
    for (std::size_t i = path.lists_end; i < path.segments.size(); ++i) {
        dtf_datatree *child = find_child(*node, path.segments[i].tag());
        if (child == nullptr) {
            child = &add_child(memory, *node);
            *child = path.segments[i].blank;
            child->ns = ns;
        }
        node = child;
    }
}

} // namespace

void entry_packer::begin(packed_entries &to, std::uint32_t first_step)
{
    /* With the open entry. */
    if (to.count >= std::numeric_limits<std::uint32_t>::max() - 1)
        throw std::bad_alloc();
    make_spares();
    end();
    if (spare_run_ == nullptr)
        spare_run_ = std::exchange(next_spare_run_, nullptr);
    entries_ = &to;
    at_ = first_step;
    begin_ = next_;
}

bool entry_packer::add(const parsed_path &path, const char *ns, const char *value)
{
    const std::uint32_t found = find_step(at_, path, ns, value != nullptr);
    if (found == 0)
        return false;
    if (value != nullptr) {
        const std::size_t size = std::strlen(value);
        if (size > std::numeric_limits<std::uint32_t>::max())
            return false;
        const std::size_t room = packed_size::room_for(size);
        if (room > left_)
            make_room(room);
        std::memcpy(packed_size::put(next_, size), value, size + 1);
        next_ += room;
        left_ -= room;
    }
    at_ = found;
    return true;
}

void entry_packer::end()
{
    if (entries_ == nullptr)
        return;
    packed_entries &to = *std::exchange(entries_, nullptr);
    entry_shape *const shape = steps_[at_].shape;
    const bool is_taken_back = run_ != nullptr && to.last == run_ && run_->count == 0;
    if (is_taken_back) {
        *run_ = {shape, 0, begin_, nullptr};
    } else if (to.last == nullptr || to.last != run_ || run_->shape != shape || run_end_ != begin_) {
        run_ = std::exchange(spare_run_, nullptr);
        *run_ = {shape, 0, begin_, nullptr};
        (to.last == nullptr ? to.first : to.last->next) = run_;
        to.last = run_;
    }
    ++run_->count;
    ++to.count;
    run_end_ = next_;
}

void entry_packer::reopen(packed_entries &to)
{
    --run_->count;
    --to.count;
    run_end_ = begin_;
    entries_ = &to;
}

std::uint32_t entry_packer::first_step(const parsed_path &path, const char *ns)
{
    make_spares();
    return find_step(0, path, ns, false);
}

void entry_packer::make_spares()
{
    for (packed_run **spare : {&spare_run_, &next_spare_run_}) {
        if (*spare == nullptr)
            *spare = make_in<packed_run>(*memory_);
    }
}

std::uint32_t entry_packer::add_step(std::uint32_t before, const parsed_path &path, const char *ns, bool has_value)
{
    if (steps_.size() == most_steps)
        return 0;
    const auto added = static_cast<std::uint32_t>(steps_.size());
    steps_.push_back({&path, ns, has_value, before, 0, steps_[before].next, nullptr});
    try {
        steps_.back().shape = make_shape(added);
    } catch (...) {
        steps_.pop_back();
        throw;
    }
    steps_[before].next = added;
    return added;
}

/* The nodes are there once all steps were gone; only then they stay where they are. */
entry_shape *entry_packer::make_shape(std::uint32_t last) const
{
    std::vector<const step *> way;
    for (std::uint32_t i = last; i != 0; i = steps_[i].before)
        way.push_back(&steps_[i]);
    std::ranges::reverse(way);
    auto *const shape = make_in<entry_shape>(*memory_);
    shape->entry = way.front()->path->segments.back().blank;
    shape->entry.ns = way.front()->ns;
    for (const step *const gone : way)
        add_below(*memory_, shape->entry, *gone->path, gone->ns);
    std::erase_if(way, [](const step *gone) { return !gone->has_value; });
    shape->leaves = {static_cast<dtf_datatree **>(memory_->allocate(way.size() * sizeof(void *))), way.size()};
    std::ranges::transform(way, shape->leaves.begin(), [shape](const step *gone) {
        dtf_datatree &leaf = node_below(shape->entry, *gone->path);
        leaf.flags |= DTF_FLAG_HAS_VALUE;
        return &leaf;
    });
    return shape;
}

/* The open entry moves along, so that its values stay together. */
void entry_packer::make_room(std::size_t size)
{
    const auto begun = static_cast<std::size_t>(next_ - begin_);
    const std::size_t doubled = std::clamp(2 * block_size_, first_block, last_block);
    const std::size_t block = std::max(doubled, 2 * (begun + size));
    char *const fresh = static_cast<char *>(memory_->allocate(block));
    std::copy(begin_, next_, fresh);
    begin_ = fresh;
    next_ = fresh + begun;
    left_ = block - begun;
    block_size_ = doubled;
}

} // namespace framework
