/*
 * Request instances: a request that names no entry of a list asks for all of them. The plug-in then adds one native
 * entry per entry it knows, within one call; each of them gets a request entry of its own here, which the walker finds
 * on the instance-tree stack and walks in place of the request's nameless one, so that every native entry is filled in.
 */
#ifndef FRAMEWORK_REQUEST_INSTANCES_H
#define FRAMEWORK_REQUEST_INSTANCES_H

#include "arena.h"
#include "itree_stack.h"
#include "landing.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace framework {

class request_instances
{
  public:
    explicit request_instances(itree_stack &stack) : stack_(stack) {}

    /* What the nodes of a request entry are called. The namespace must outlive the instances; the tags are copied. */
    struct names {
        std::string_view entry;
        std::string_view key;
        const char *ns;
        /* The request's nameless entry, whose content each instance gets a copy of; null where there is none. */
        const dtf_datatree *request = nullptr;
    };

    /*
     * Registers a request entry, its key leaf with the value `key`, for the native entry at `native`. The first one
     * pushes a stack entry with `callback`; later ones grow it, as long as it is on the stack. A key that is registered
     * already (a replace walks twice) now stands for the new native entry. False when the stack is full.
     */
    bool add(const names &tags, std::string_view key, const entry_place &native, dtf_itree_callback callback);

    /* The native entry that the request entry stands for; null for a node that is none of ours. */
    const entry_place *native_of(const dtf_datatree *node) const;

    /* All request entries, in the order of their registration. */
    std::vector<const dtf_datatree *> all() const;

  private:
    /* The instances of one stack entry. Its nodes move only while the list hook that adds them runs. */
    struct group {
        std::vector<dtf_datatree> nodes;
        std::vector<entry_place> natives;
        std::size_t stack_position = 0;
    };

    group *open_group(dtf_itree_callback callback);
    dtf_datatree make_entry(const names &tags, std::string_view key);

    itree_stack &stack_;
    arena memory_;
    std::deque<group> groups_;
};

} // namespace framework

#endif
