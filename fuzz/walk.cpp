/*
 * Walks in both directions over trees, requests, stores and failing calls that the input chooses, under the recording
 * host of the plug-in's tests: whatever comes in, everything is given back, and the code is one that the contract
 * knows.
 */
#include "input.h"

#include "plugin/reference.h"

#include <dlfcn.h>

namespace {

using recording::host;
using reference::id;
using reference::nodes;
using reference::ns_of;

constexpr id tops[] = {reference::top, reference::top, reference::ots, reference::interfaces};
const char *const values[] = {
    "0/1-CHMON-PRE", "0/2-CHMON-BST", "0/9-CHMON-PRE", "Ots0/2/0/1", "Ots0/3/0/0", "Ots0/3/0/01", "-1234",     "-4.35",
    "191325000",     "1e308",         "nan",           "%s%n",       "",           "Ots0/-1/0/1", "0x7fffffff"};

id any_node(fuzz::input &in) { return static_cast<id>(in.below(reference::ids)); }

/* The input's own words, without what has a meaning in a planted tree. */
std::string words(fuzz::input &in)
{
    std::string text(in.take(in.byte()));
    std::erase_if(text, [](char c) { return std::string_view(" {}=@:?\0", 8).find(c) != std::string_view::npos; });
    return text;
}

/* One node as recording_host.h writes trees, and what the input puts below it. */
std::string grow(fuzz::input &in, id position, int room)
{
    const reference::facts &node = nodes[position];
    const unsigned facts = in.byte();
    std::string text = facts >= 252 ? "?" : facts >= 248 ? words(in) + 't' : node.tag;
    text = (facts % 32 == 1 ? "x:" : facts % 64 == 2 ? "-:" : "") + text;
    if (facts % 4 == 3)
        text += '@' + std::to_string(in.below(5));
    if (facts % 8 >= 4)
        text += '=' + (in.byte() % 8 == 7 ? words(in) : in.pick(values));
    text += facts % 128 == 64 ? "{}" : "";
    std::string below;
    for (unsigned choice = 0; room > 0 && facts % 128 != 64 && (choice = in.byte()) != 0;) {
        const bool regular = choice < 240 && !node.children.empty();
        const id child = regular ? node.children[choice % node.children.size()] : any_node(in);
        below += grow(in, child, room - 1) + ' ';
    }
    return below.empty() ? text : text + '{' + below + '}';
}

/* What no document can say: fields that contradict each other. */
void disturb(fuzz::input &in, host &h)
{
    for (unsigned what = 0; (what = in.byte() % 8) != 0;) {
        dtf_datatree &node = *h.nodes[in.below(h.nodes.size())];
        if (what == 1)
            node.children = nullptr, node.child_count = static_cast<uint32_t>(in.byte());
        else if (what == 2)
            node.flags ^= 1u << in.below(12);
        else if (what == 3)
            node.operation = static_cast<uint32_t>(in.byte());
        else if (what == 4)
            node.error_kind = static_cast<uint32_t>(in.below(8)), node.flags |= DTF_FLAG_ERROR_KIND;
        else if (what == 5)
            node.kind_flags = static_cast<uint8_t>(in.byte()), node.is_key = 1;
        else if (what == 6)
            node.value = nullptr;
        else
            node.ns = ns_of(any_node(in));
        if (node.children == nullptr && node.operation == 1)
            node.operation = 0; /* a replace would count the lost children again */
    }
}

void fill_store(fuzz::input &in, host &h)
{
    const unsigned odd = in.byte();
    h.null_handle = odd % 32 == 1;
    h.library_readable = odd % 32 != 2;
    if (odd % 4 != 3 || h.items.empty())
        return;
    auto &record = h.items.begin()->second;
    record.clear();
    const char *const names[] = {"inv_phy_entity_basic_info", "Name", "Index", "%s%n", ""};
    while (!in.empty() && record.size() < 40) {
        const auto type = static_cast<parcel_token_type_td>(in.below(20));
        record.push_back({type, in.byte() % 8 == 7 ? std::nullopt : recording::text_or_null(in.pick(names)),
                          in.byte() % 8 == 7 ? words(in) : in.pick(values), in.byte() * 0x01010101u});
        if (type == PARCEL_TOKEN_END && in.byte() % 4 != 0)
            break;
    }
}

uint32_t children(const dtf_datatree &node)
{
    return (node.flags & DTF_FLAG_HAS_SUBTREE) != 0 && node.children != nullptr ? node.child_count : 0;
}

faultno next_instance(dtf_map_ctx, const dtf_datatree *, dtf_datatree *, uint32_t) { return 0; }

auto walker_of(id position)
{
    using walker = faultno (*)(dtf_map_ctx, const dtf_datatree *, dtf_datatree *);
    return reinterpret_cast<walker>(::dlsym(RTLD_DEFAULT, reference::function_name(position).c_str()));
}

/* All that a run leaves, as text; a finding where that breaks the contract. */
std::string run(fuzz::input in)
{
    constexpr uint32_t kinds[] = {10, 0, 1, 8, 15, 2, 17};
    constexpr faultno codes[] = {0x12345678, FAULT_SKIP_ENTRY, FAULT_TREE_ERROR, 0xffffffff};
    const unsigned first = in.byte();
    const id position = first < 200 ? tops[first % std::size(tops)] : static_cast<id>(first % reference::ids);
    std::vector<std::string> inventory;
    for (unsigned bits = in.byte(), slot = 1; slot <= 3; ++slot, bits >>= 2)
        for (const unsigned port : {1u, 2u})
            if ((bits & port) != 0)
                inventory.push_back("0/" + std::to_string(slot) + (port == 1 ? "-CHMON-BST" : "-CHMON-PRE"));
    host h(inventory);
    const unsigned odd = in.byte();
    h.request = {in.pick(kinds), odd % 8 == 1 ? 4u : 0u, odd % 16 == 1 ? 2u : 0u};
    h.context.trace_on = odd % 32 == 2 ? 0 : 1;
    h.context.debug_filter.levels = odd % 32 == 3 ? 0 : 9;
    h.leafref = odd % 64 == 4 ? 0x777 : 0;
    h.poison = true;
    h.fail_code = in.pick(codes);
    h.fail_at = in.byte();
    h.fail_on = odd >= 128;
    h.fail_copies = odd % 16 == 5;
    if (odd % 16 == 6) {
        h.state.expand_mode = static_cast<uint32_t>(in.below(3));
        h.state.delete_walk = static_cast<uint32_t>(in.below(3));
        h.state.filter_flags = static_cast<uint32_t>(in.byte()) << in.below(24);
        h.state.req_flags = static_cast<uint32_t>(in.byte());
    }
    dtf_datatree *const tree = h.plant(grow(in, position, 12), ns_of(position));
    disturb(in, h);
    /* Only request walkers look at the stack, and one that skips an entry leaves it alone. */
    if (odd % 8 == 7 && is_request(position) && h.fail_code != FAULT_SKIP_ENTRY) {
        const dtf_datatree *const entries =
            h.plant("entries{" + grow(in, reference::monitor, 3) + '}', ns_of(reference::monitor));
        h.on_add = [entries, times = 0](host &at, const recording::addition &add) mutable {
            if (add.new_list_entry == 1 && times++ == 0)
                dtf_map_util_itree_stack_push(&at.context, entries->children, entries->child_count, &next_instance);
        };
    }
    const std::size_t planted = h.nodes.size();
    fill_store(in, h);
    std::vector<dtf_datatree> before;
    for (const dtf_datatree *node : h.nodes)
        before.push_back(*node);

    const faultno rc = walker_of(position)(&h.context, tree, &h.out);
    const std::string wrong = h.imbalance();
    if (!wrong.empty())
        fuzz::report("not given back or out of contract", wrong);
    for (std::size_t i = 0; i < planted; ++i) {
        const dtf_datatree &now = *h.nodes[i], &then = before[i];
        /* A replace in an expansion gives back no more children than the expansion walks. */
        const bool lost = children(now) < children(then) && then.operation != 1;
        if (now.tag != then.tag || now.value != then.value || now.ns != then.ns || lost ||
            (children(now) == children(then) && children(then) != 0 && now.children != then.children))
            fuzz::report("an input node was changed", h.name(h.nodes[i]));
    }
    constexpr faultno known[] = {0,
                                 FAULT_INVALID_ARGS,
                                 FAULT_TREE_ERROR,
                                 FAULT_UNSUPPORTED_TAG,
                                 FAULT_LIST_KEY_ERROR,
                                 FAULT_KEY_DELETE,
                                 FAULT_SKIP_ENTRY,
                                 FAULT_UNSUPPORTED_AUGMENT};
    if (std::ranges::find(known, rc) == std::end(known) && rc != h.fail_code && rc != h.leafref)
        fuzz::report("unknown code", recording::printed("%x", rc));
    return recording::printed("%x\n", rc) + h.text();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool primed = [] { /* the database client's presence is tested once a process */
                                    host h({"0/1-CHMON-PRE"});
                                    return check_controller_name_ots_is_good(&h.context, "Ots0/1/0/1") == 1;
    }();
    const std::string once = run({data, size});
    if (!primed || (size % 8 == 0 && run({data, size}) != once))
        fuzz::report("a second walk went another way", once);
    return 0;
}
