/*
 * The mapping between trees of plain structs, all of a tree in one block of memory: the least that mapping from tree to
 * tree can cost. Every text of the result is a copy, as in the other trees.
 */
#ifndef PEERS_STRUCT_MAPPING_H
#define PEERS_STRUCT_MAPPING_H

#include "naming.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace peers {

struct struct_node {
    const char *tag = nullptr;
    const char *value = nullptr;
    struct_node *first = nullptr, *last = nullptr, *next = nullptr;

    const struct_node *child(const char *name) const
    {
        const struct_node *at = first;
        while (at != nullptr && std::strcmp(at->tag, name) != 0)
            at = at->next;
        return at;
    }
};

/* New memory for every tree, handed out from its beginning to its end. */
class struct_memory
{
  public:
    explicit struct_memory(std::size_t size)
        : block_(std::make_unique_for_overwrite<std::byte[]>(size)), at_(block_.get())
    {
    }

    struct_node *add(struct_node *parent, const char *tag, const char *value = nullptr)
    {
        at_ += -reinterpret_cast<std::uintptr_t>(at_) % alignof(struct_node);
        auto *const node = new (take(sizeof(struct_node))) struct_node{tag, value, nullptr, nullptr, nullptr};
        if (parent != nullptr)
            (parent->first == nullptr ? parent->first : parent->last->next) = node;
        if (parent != nullptr)
            parent->last = node;
        return node;
    }

    const char *copy(const char *text)
    {
        const std::size_t size = std::strlen(text) + 1;
        return static_cast<const char *>(std::memcpy(take(size), text, size));
    }

    /* Hundredths with the point put in. */
    const char *power(const char *hundredths)
    {
        char *const start = reinterpret_cast<char *>(at_);
        char *to = start;
        if (*hundredths == '-')
            *to++ = *hundredths++;
        std::size_t size = std::strlen(hundredths);
        if (size < 3)
            *to++ = '0';
        for (; size > 2; --size)
            *to++ = *hundredths++;
        *to++ = '.';
        *to++ = size > 1 ? *hundredths++ : '0';
        *to++ = *hundredths;
        *to++ = '\0';
        take(static_cast<std::size_t>(to - start));
        return start;
    }

  private:
    std::byte *take(std::size_t size)
    {
        std::byte *const taken = at_;
        at_ += size;
        return taken;
    }

    std::unique_ptr<std::byte[]> block_;
    std::byte *at_;
};

inline void map_slice(const struct_node *slice, struct_node *channels, struct_memory &memory)
{
    const char *const lower = slice->child("lower-frequency")->value;
    const char *const upper = slice->child("upper-frequency")->value;
    struct_node *const channel = memory.add(channels, "channel");
    memory.add(channel, "lower-frequency", memory.copy(lower));
    struct_node *const state = memory.add(channel, "state");
    memory.add(state, "lower-frequency", memory.copy(lower));
    memory.add(state, "upper-frequency", memory.copy(upper));
    if (const struct_node *const power = slice->child("rx-power"))
        memory.add(state, "power", memory.power(power->value));
    memory.add(channel, "upper-frequency", memory.copy(upper));
}

/* `native`: the ots-oper node. */
inline const struct_node *map(const struct_node *native, struct_memory &memory)
{
    struct_node *const monitors = memory.add(nullptr, "channel-monitors");
    for (const struct_node *port = native->first->first; port != nullptr; port = port->next) {
        const monitor_name named = monitor_of(port->child("name")->value);
        struct_node *const monitor = memory.add(monitors, "channel-monitor");
        memory.add(monitor, "name", memory.copy(named.name.c_str()));
        struct_node *const state = memory.add(monitor, "state");
        memory.add(state, "name", memory.copy(named.name.c_str()));
        memory.add(state, "monitor-port", memory.copy(named.port.c_str()));
        struct_node *const channels = memory.add(monitor, "channels");
        for (const struct_node *slice = port->child("ots-spectrum-info")->first; slice != nullptr; slice = slice->next)
            map_slice(slice, channels, memory);
    }
    return monitors;
}

} // namespace peers

#endif
