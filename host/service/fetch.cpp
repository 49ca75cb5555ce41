#include "service/fetch.h"

#include "service/tree_making.h"

#include "framework/tree.h"

#include "oc_chmon.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>

namespace service {

namespace {

using device::flat_node;
using device::native_tag;

/* The leaves that a flat entry may have: one of each tag. */
constexpr std::size_t most_leaves = device::native_tag_count;

/* The child of that tag, made where there is none yet. */
dtf_datatree &the_child(framework::arena &memory, dtf_datatree &parent, const char *tag, const char *ns)
{
    dtf_datatree *const known = framework::find_child(parent, tag);
    return known != nullptr ? *known : add_node(memory, parent, tag, ns);
}

/* Gives an entry those of its stored leaves that were asked for, their array at its exact size. */
template <typename Wanted>
void add_leaves(framework::arena &memory, dtf_datatree &entry, std::span<const flat_node> leaves, const Wanted &wanted)
{
    const auto count = std::ranges::count_if(leaves, [&](const flat_node &leaf) { return wanted(leaf.tag); });
    framework::reserve_children(memory, entry, static_cast<std::uint32_t>(count));
    for (const flat_node &leaf : leaves) {
        if (!wanted(leaf.tag))
            continue;
        dtf_datatree &node = add_node(memory, entry, device::text_of(leaf.tag), entry.ns);
        if (leaf.value != nullptr) {
            node.value = leaf.value;
            node.flags |= DTF_FLAG_HAS_VALUE;
        }
    }
}

std::string_view value_in(std::span<const flat_node> leaves, native_tag tag)
{
    const auto leaf = std::ranges::find(leaves, tag, &flat_node::tag);
    return leaf == leaves.end() || leaf->value == nullptr ? std::string_view()
                                                          : std::string_view(leaf->value, leaf->value_length);
}

/* The leaves of one entry, as they come from the store; where they are too many for the models, it is damaged. */
class leaf_buffer
{
  public:
    void clear() { count_ = 0; }
    void add(const flat_node &leaf)
    {
        if (count_ == leaves_.size())
            device::refuse_record("a native entry has more leaves than its model");
        leaves_[count_++] = leaf;
    }
    std::span<const flat_node> all() const { return std::span(leaves_).first(count_); }

  private:
    std::array<flat_node, most_leaves> leaves_;
    std::size_t count_ = 0;
};

/* Of a flat entry, without its own node. */
leaf_buffer leaves_of(std::string_view entry)
{
    leaf_buffer leaves;
    device::flat_cursor cursor(entry);
    flat_node node;
    cursor.next(node);
    while (cursor.next(node))
        leaves.add(node);
    return leaves;
}

class interface_fetch
{
  public:
    interface_fetch(const device::native_reader &reader, std::span<const interface_wish> wishes, dtf_datatree &native,
                    framework::arena &memory)
        : reader_(reader), wishes_(wishes), native_(native), memory_(memory)
    {
    }

    void run()
    {
        const auto is_single = [](const interface_wish &wish) { return !wish.active.empty() && !wish.name.empty(); };
        if (!std::ranges::all_of(wishes_, is_single)) {
            reader_.each_interface([this](std::string_view entry) { take(entry); });
            return;
        }
        std::set<std::pair<std::string_view, std::string_view>> keys;
        for (const interface_wish &wish : wishes_)
            keys.emplace(wish.active, wish.name);
        for (const auto &[active, name] : keys) {
            if (const auto entry = reader_.interface(active, name))
                take(*entry);
        }
    }

  private:
    void take(std::string_view entry)
    {
        const leaf_buffer leaves = leaves_of(entry);
        const std::string_view active = value_in(leaves.all(), native_tag::active);
        const std::string_view name = value_in(leaves.all(), native_tag::interface_name);
        leaf_set asked;
        for (const interface_wish &wish : wishes_) {
            if ((wish.active.empty() || wish.active == active) && (wish.name.empty() || wish.name == name))
                asked.add(wish.leaves);
        }
        if (asked.empty())
            return;
        asked.add(native_tag::active);
        asked.add(native_tag::interface_name);
        const char *const ns = CHMON_NS_VANTRA_TALIN_IFMGR_CFG;
        dtf_datatree &top = the_child(memory_, native_, "interface-configurations", ns);
        dtf_datatree &node = add_node(memory_, top, device::text_of(native_tag::interface_configuration), ns);
        add_leaves(memory_, node, leaves.all(), [&asked](native_tag tag) { return asked.has(tag); });
    }

    const device::native_reader &reader_;
    std::span<const interface_wish> wishes_;
    dtf_datatree &native_;
    framework::arena &memory_;
};

class port_fetch
{
  public:
    port_fetch(const device::native_reader &reader, std::span<const port_wish> wishes, dtf_datatree &native,
               framework::arena &memory)
        : reader_(reader), wishes_(wishes), native_(native), memory_(memory)
    {
    }

    void run()
    {
        if (std::ranges::any_of(wishes_, [](const port_wish &wish) { return wish.name.empty(); })) {
            reader_.each_port([this](const device::ots_port &port) { take(port); });
            return;
        }
        std::set<std::string_view> names;
        for (const port_wish &wish : wishes_)
            names.insert(wish.name);
        for (const std::string_view name : names) {
            if (const auto port = reader_.port(name))
                take(*port);
        }
    }

  private:
    static constexpr const char *ots_ns = CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER;

    void take(const device::ots_port &port)
    {
        spectrum_wishes spectrum;
        leaf_set asked;
        for (const port_wish &wish : wishes_) {
            if (!wish.name.empty() && wish.name != port.name)
                continue;
            asked.add(wish.leaves);
            spectrum.add(wish.spectrum);
        }
        if (asked.empty() && spectrum.empty())
            return;
        asked.add(native_tag::name);
        dtf_datatree &top = the_child(memory_, native_, "ots-oper", ots_ns);
        dtf_datatree &node = add_node(memory_, the_child(memory_, top, "ots-ports", ots_ns), "ots-port", ots_ns);
        const leaf_buffer leaves = leaves_of(port.entry);
        add_leaves(memory_, node, leaves.all(), [&asked](native_tag tag) { return asked.has(tag); });
        if (!spectrum.empty() && port.slice_count > 0)
            add_slices(node, port, spectrum);
    }

    void add_slices(dtf_datatree &node, const device::ots_port &port, const spectrum_wishes &wishes)
    {
        dtf_datatree &spectrum = add_node(memory_, node, "ots-spectrum-info", ots_ns);
        if (wishes.is_whole())
            framework::reserve_children(memory_, spectrum, port.slice_count);
        device::slice_cursor slices(reader_, port);
        leaf_buffer leaves;
        for (flat_node entry; slices.next(entry);) {
            leaves.clear();
            flat_node leaf;
            for (unsigned i = 0; i < entry.child_count && slices.next(leaf); ++i)
                leaves.add(leaf);
            add_slice(spectrum, leaves.all(), wishes);
        }
    }

    void add_slice(dtf_datatree &spectrum, std::span<const flat_node> leaves, const spectrum_wishes &wishes)
    {
        leaf_set asked = wishes.leaves_of(value_in(leaves, native_tag::lower_frequency),
                                          value_in(leaves, native_tag::upper_frequency));
        if (asked.empty())
            return;
        asked.add(native_tag::lower_frequency);
        asked.add(native_tag::upper_frequency);
        const char *const tag = device::text_of(native_tag::spectrum_slice_power_info);
        add_leaves(memory_, add_node(memory_, spectrum, tag, ots_ns), leaves,
                   [&asked](native_tag leaf) { return asked.has(leaf); });
    }

    const device::native_reader &reader_;
    std::span<const port_wish> wishes_;
    dtf_datatree &native_;
    framework::arena &memory_;
};

leaf_set every_leaf()
{
    leaf_set leaves;
    for (unsigned tag = 0; tag < device::native_tag_count; ++tag)
        leaves.add(static_cast<native_tag>(tag));
    return leaves;
}

} // namespace

dtf_datatree fetch_native(const device::native_reader &reader, const native_wishes &wishes, framework::arena &memory)
{
    dtf_datatree native{};
    interface_fetch(reader, wishes.interfaces, native, memory).run();
    port_fetch(reader, wishes.ports, native, memory).run();
    return native;
}

dtf_datatree fetch_all(const device::native_reader &reader, native_parts parts, framework::arena &memory)
{
    native_wishes wishes{dtf_datatree{}};
    if (parts.configuration)
        wishes.interfaces.push_back({{}, {}, every_leaf()});
    if (parts.operational) {
        wishes.ports.push_back({{}, every_leaf(), {}});
        wishes.ports.back().spectrum.add({{}, {}, every_leaf()});
    }
    return fetch_native(reader, wishes, memory);
}

} // namespace service
