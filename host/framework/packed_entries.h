/*
 * List entries kept as their values alone.
 *
 * A list's entries mostly have the same leaves. Those that a walk adds one after the other need not be nodes each: all
 * of one shape share the nodes of that shape, and an entry is the texts of its values, about a tenth of the memory. In
 * a tree they stand behind an entry of their list that is a node: another one with the flag `packed_flag`, the list's
 * tag and namespace, and no children. Where mapping_options::packs_entries is not set there are no such nodes.
 */
#ifndef FRAMEWORK_PACKED_ENTRIES_H
#define FRAMEWORK_PACKED_ENTRIES_H

#include "arena.h"
#include "dtf.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace framework {

/* Of dtf_datatree.flags, beside those of the plug-in: the node stands for packed entries. */
inline constexpr std::uint32_t packed_flag = 0x8000'0000;

/* What entries have in common. */
struct entry_shape {
    /* An entry with all below; the values of its leaves hold only for packed_cursor::entry(). */
    dtf_datatree entry;
    /* The leaf of each value, in the order of the values. */
    std::span<dtf_datatree *> leaves;
};

/* Entries of one shape, one after the other. */
struct packed_run {
    entry_shape *shape;
    std::uint32_t count;
    /* Of all entries: each value's size (packed_size), its bytes and a NUL. */
    const char *values;
    packed_run *next;
};

struct packed_entries {
    std::uint32_t count; /* in all runs; one that is being added is not counted */
    packed_run *first;
    packed_run *last;
};

inline bool is_packed(const dtf_datatree &node) { return (node.flags & packed_flag) != 0; }

/* What a node with packed_flag stands for. */
inline packed_entries &packed_in(const dtf_datatree &node)
{
    return *reinterpret_cast<packed_entries *>(const_cast<char *>(node.value));
}

/* Makes a node one that stands for packed entries, which must stay as long as it. */
inline void set_packed(dtf_datatree &node, packed_entries &entries)
{
    node.value = reinterpret_cast<const char *>(&entries);
    node.flags |= packed_flag;
}

/* A size before a text: one byte, or for long texts four behind a byte that no size has. */
struct packed_size {
    static constexpr unsigned char long_mark = 0xff;
    static constexpr std::size_t long_bytes = 1 + sizeof(std::uint32_t);

    /* Bytes of a text with its size and NUL. */
    static std::size_t room_for(std::size_t size) { return size + 1 + (size < long_mark ? 1 : long_bytes); }

    static char *put(char *to, std::size_t size)
    {
        if (size < long_mark) {
            *to = static_cast<char>(size);
            return to + 1;
        }
        *to = static_cast<char>(long_mark);
        const auto bytes = static_cast<std::uint32_t>(size);
        std::memcpy(to + 1, &bytes, sizeof bytes);
        return to + long_bytes;
    }

    /* Moves `from` behind the size. */
    static std::size_t take(const char *&from)
    {
        const auto size = static_cast<unsigned char>(*from);
        if (size != long_mark) {
            ++from;
            return size;
        }
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, from + 1, sizeof bytes);
        from += long_bytes;
        return bytes;
    }
};

/* Goes through the packed entries of a node. Entries share their nodes, so there is one cursor at a time. */
class packed_cursor
{
  public:
    explicit packed_cursor(const dtf_datatree &node) : run_(packed_in(node).first), rest_(packed_in(node).count) {}

    /* Comes to the next entry, first to the first. False behind the last. */
    bool next()
    {
        if (rest_ == 0)
            return false;
        --rest_;
        if (left_in_run_ == 0)
            enter_run();
        --left_in_run_;
        for (std::string_view &value : values_) {
            const std::size_t size = packed_size::take(at_);
            value = {at_, size};
            at_ += size + 1;
        }
        return true;
    }

    entry_shape &shape() const { return *shape_; }

    /* Of the entry, each NUL-terminated, in the order of the shape's leaves; they stay as long as the tree. */
    std::span<const std::string_view> values() const { return values_; }

    /* The entry as a node with all below, until the next one is looked at. */
    const dtf_datatree &entry() const
    {
        for (std::size_t i = 0; i < values_.size(); ++i)
            shape_->leaves[i]->value = values_[i].data();
        return shape_->entry;
    }

  private:
    void enter_run();

    const packed_run *run_;
    std::uint32_t rest_;
    std::uint32_t left_in_run_ = 0;
    entry_shape *shape_ = nullptr;
    const char *at_ = nullptr;
    std::vector<std::string_view> values_;
};

/* Copies of the entries of a node with packed_flag, each with nodes of its own, in `memory`. */
std::span<dtf_datatree> unpack(arena &memory, const dtf_datatree &packed);

/* Puts them in its place where such nodes are among the children of `parent`. */
void unpack_children(arena &memory, dtf_datatree &parent);

/* The same for a whole tree. */
void unpack_all(arena &memory, dtf_datatree &root);

} // namespace framework

#endif
