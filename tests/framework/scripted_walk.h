/* A walk whose steps a test writes down, over the real operations and trees. */
#ifndef SCRIPTED_WALK_H
#define SCRIPTED_WALK_H

#include "mapping.h"
#include "tree.h"

#include <functional>
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

/* A mapping with its memory and an output root. The walker it runs is whatever `steps` does. */
struct walk {
    explicit walk(framework::mapping_options options = {}) : map(std::move(options), memory) {}

    using script = std::function<faultno(walk &)>;

    faultno run(const script &steps, const dtf_datatree &in = {})
    {
        current() = {this, &steps};
        return map.run(
            [](dtf_map_ctx context, const dtf_datatree *, dtf_datatree *) {
                current().self->ctx = context;
                return (*current().steps)(*current().self);
            },
            in, out);
    }

    /* Comes to a list entry of the input, does `inside`, and leaves it. */
    void entry(const char *schema_path, const std::function<void()> &inside)
    {
        dtf_datatree node{};
        entry(schema_path, node, inside);
    }

    void entry(const char *schema_path, const dtf_datatree &node, const std::function<void()> &inside)
    {
        dtf_map_add_to_node_hierarchy(ctx, &node, DTF_HIER_LIST);
        if (dtf_map_update_current_list_node(ctx, schema_path) == FAULT_SUCCESS)
            inside();
        dtf_map_remove_from_node_hierarchy(ctx, &node);
    }

    faultno add(const char *path, const char *value = nullptr, bool new_entry = false,
                const dtf_datatree *source = nullptr, dtf_datatree **created = nullptr)
    {
        return dtf_map_datatree_add_path_flagged(ctx, &out, path, "urn:test", value, source, created, new_entry, 0);
    }
    faultno add_entry(const char *path) { return add(path, nullptr, true); }

    framework::arena memory;
    dtf_datatree out{};
    framework::mapping map;
    dtf_map_ctx ctx = nullptr;

  private:
    struct running {
        walk *self;
        const script *steps;
    };
    static running &current()
    {
        static running now{};
        return now;
    }
};

inline constexpr const char *ots_port = "/ots-oper/ots-ports/ots-port";
inline constexpr const char *ots_slice = "/ots-oper/ots-ports/ots-port/ots-spectrum-info/spectrum-slice-power-info";
inline constexpr const char *interface_entry = "/interface-configurations/interface-configuration";
inline constexpr const char *monitor = "/channel-monitors/channel-monitor";
inline constexpr const char *channel = "/channel-monitors/channel-monitor/channels/channel";

} // namespace scripted

#endif
