/* A walk whose steps a test writes down, over the real operations and trees. */
#ifndef SCRIPTED_WALK_H
#define SCRIPTED_WALK_H

#include "mapping.h"
#include "packed_entries.h"
#include "tree.h"

#include <functional>
#include <sstream>
#include <string>

namespace scripted {

/* "a{b=1 c{}}": tags, values and children in order; no values where a leaf has none. */
inline std::string text_of(const dtf_datatree &node)
{
    std::string text = node.tag == nullptr ? "" : node.tag;
    if ((node.flags & DTF_FLAG_HAS_VALUE) != 0)
        text.append("=").append(node.value);
    if ((node.flags & DTF_FLAG_HAS_SUBTREE) == 0 || node.child_count == 0)
        return text;
    text.append("{");
    for (std::uint32_t i = 0; i < node.child_count; ++i)
        text.append(i == 0 ? "" : " ").append(text_of(node.children[i]));
    return text.append("}");
}

/* A leaf below a node; without a value where that is null. */
inline dtf_datatree &give(framework::arena &memory, dtf_datatree &above, const char *tag, const char *value = nullptr)
{
    dtf_datatree &node = framework::add_child(memory, above);
    node.tag = tag;
    node.value = value;
    node.flags |= value == nullptr ? 0U : DTF_FLAG_HAS_VALUE;
    return node;
}

/* The lists that scripts name by a letter. */
inline const char *list_path(char letter)
{
    switch (letter) {
    case 'P':
        return "/ots-oper/ots-ports/ots-port";
    case 'S':
        return "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info";
    case 'I':
        return "/interface-configurations/interface-configuration";
    case 'C':
        return "/channel-monitors/channel-monitor/channels/channel";
    default:
        return "/channel-monitors/channel-monitor";
    }
}

/* A mapping with its memory and an output root. The walker it runs is whatever `steps` does. */
struct walk {
    explicit walk(framework::mapping_options options = {}) : map(std::move(options), memory) {}

    faultno run(const std::function<faultno(walk &)> &steps, const dtf_datatree &in = {})
    {
        static walk *self;
        static const std::function<faultno(walk &)> *now;
        self = this;
        now = &steps;
        return map.run(
            [](dtf_map_ctx context, const dtf_datatree *, dtf_datatree *) {
                self->ctx = context;
                return (*now)(*self);
            },
            in, out);
    }

    /* Comes to a list entry of the input, does `inside`, and leaves it. */
    void entry(char list, const dtf_datatree &node, const std::function<void()> &inside)
    {
        dtf_map_add_to_node_hierarchy(ctx, &node, DTF_HIER_LIST);
        if (dtf_map_update_current_list_node(ctx, list_path(list)) == FAULT_SUCCESS)
            inside();
        dtf_map_remove_from_node_hierarchy(ctx, &node);
    }

    faultno add(const std::string &path, const char *value = nullptr, bool new_entry = false)
    {
        return dtf_map_datatree_add_path_flagged(ctx, &out, path.c_str(), ns, value, nullptr, nullptr, new_entry, 0);
    }

    /*
     * Runs steps that are a text: "(P ... )" comes to an entry of list P and leaves it, "(M=a" to one with the key leaf
     * name;
     * "+M" adds a list entry, "M/name=a" a path below it; "@" walks the instances as a list walker does and adds a
     * port's rx-power for each.
     */
    void play(std::istream &steps)
    {
        run([&steps](walk &self) {
            self.take(steps);
            return FAULT_SUCCESS;
        });
    }

    void take(std::istream &steps)
    {
        for (std::string step; steps >> step && step != ")";) {
            const std::size_t equals = step.find('=');
            const std::string value = equals == std::string::npos ? "" : step.substr(equals + 1);
            const char *const given = equals == std::string::npos ? nullptr : value.c_str();
            if (step[0] == '(') {
                dtf_datatree node{};
                node.ns = "urn:request";
                if (given != nullptr)
                    give(memory, node, "name", given);
                entry(step[1], node, [&] { take(steps); });
            } else if (step[0] == '@') {
                dtf_itree_entry *peeked = nullptr;
                dtf_map_util_itree_stack_peak(ctx, &peeked);
                for (std::uint32_t i = 0; peeked != nullptr && i < peeked->count; ++i)
                    entry('M', peeked->children[i], [&] {
                        (void)peeked->callback(ctx, &peeked->children[i], &out, 0);
                        (void)add(list_path('P') + std::string("/rx-power"), peeked->children[i].children[0].value);
                    });
                dtf_map_util_itree_stack_pop(ctx);
            } else if (step[0] == '+') {
                (void)add(list_path(step[1]), nullptr, true);
            } else {
                (void)add(list_path(step[0]) + step.substr(1, equals - 1), given);
            }
        }
    }

    framework::arena memory;
    dtf_datatree out{};
    framework::mapping map;
    dtf_map_ctx ctx = nullptr;
    const char *ns = "urn:test"; /* of added nodes */
};

} // namespace scripted

#endif
