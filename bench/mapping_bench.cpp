/*
 * usage: mapping_bench NATIVE-XML YANG-FOLDER [Google Benchmark's options]
 *
 * Mapping in memory only, tree to tree: through the real plug-in and our framework, and as the peers do it. Each time
 * the result is made in new memory and freed again.
 */
#include "peers/container_mapping.h"
#include "peers/libyang_mapping.h"
#include "peers/pugixml_mapping.h"
#include "peers/struct_mapping.h"

#include "device/temporary_inventory.h"
#include "framework/document.h"
#include "framework/mapping.h"
#include "framework/packed_entries.h"

#include "oc_chmon.h"

#include <benchmark/benchmark.h>

#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr auto walker = ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper;

const std::vector<std::string> monitors = {"0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST",
                                           "0/2-CHMON-PRE", "0/3-CHMON-BST", "0/3-CHMON-PRE"};

/* One document as each of the programs holds it. */
struct inputs {
    framework::arena memory;
    dtf_datatree tree = {};
    pugi::xml_document xml;
    peers::tree_node containers;
    std::unique_ptr<peers::struct_memory> struct_memory;
    const peers::struct_node *structs = nullptr;
    ly_ctx *context = nullptr;
    lyd_node *yang_tree = nullptr;
    std::int64_t slices = 0;
};

peers::tree_node to_containers(const pugi::xml_node &node)
{
    peers::tree_node copy{node.name(), node.child_value(), {}};
    for (const pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_element)
            copy.children.push_back(to_containers(child));
    }
    return copy;
}

void to_structs(const peers::tree_node &from, peers::struct_node *parent, peers::struct_memory &memory)
{
    peers::struct_node *const node = memory.add(parent, from.tag.c_str(), from.value.c_str());
    for (const peers::tree_node &child : from.children)
        to_structs(child, node, memory);
}

/* More than a tree of structs takes; what stays untouched costs nothing. */
std::size_t struct_room(const inputs &from) { return (static_cast<std::size_t>(from.slices) + 100) * 512; }

bool load(inputs &to, const char *file, const char *yang_folder)
{
    to.tree = framework::read_document(file, to.memory);
    if (!to.xml.load_file(file))
        return false;
    to.containers = to_containers(to.xml.child("ots-oper"));
    for (const peers::tree_node &port : to.containers.children.front().children)
        to.slices += std::ssize(port.child("ots-spectrum-info")->children);
    to.struct_memory = std::make_unique<peers::struct_memory>(struct_room(to));
    peers::struct_node root;
    to_structs(to.containers, &root, *to.struct_memory);
    to.structs = root.first;
    to.context = peers::make_context(yang_folder);
    to.yang_tree = peers::parse(to.context, file, LYD_XML);
    return true;
}

faultno map_ours(const inputs &from, framework::arena &memory, dtf_datatree &out)
{
    framework::mapping walk({.packs_entries = true}, memory);
    return walk.run(walker, from.tree.children[0], out);
}

/* ---- what they map to is compared first: the texts of all leaves in document order ---- */

using texts = std::vector<std::string>;

void collect(texts &to, const dtf_datatree &node)
{
    const bool has_children = (node.flags & DTF_FLAG_HAS_SUBTREE) != 0;
    for (std::uint32_t i = 0; has_children && i < node.child_count; ++i)
        collect(to, node.children[i]);
    if (!has_children)
        to.emplace_back(node.value);
}

void collect(texts &to, const peers::tree_node &node)
{
    for (const peers::tree_node &child : node.children)
        collect(to, child);
    if (node.children.empty())
        to.push_back(node.value);
}

void collect(texts &to, const peers::struct_node *node)
{
    for (const peers::struct_node *child = node->first; child != nullptr; child = child->next)
        collect(to, child);
    if (node->first == nullptr)
        to.emplace_back(node->value);
}

/* libyang's trees have another order; they are compared as documents. */
bool map_alike(const inputs &from)
{
    framework::arena memory;
    dtf_datatree out = {};
    pugi::xml_document document;
    texts ours, pugixml, containers, structs;
    if (map_ours(from, memory, out) != FAULT_SUCCESS)
        return false;
    peers::map(from.xml, document);
    peers::struct_memory block(struct_room(from));
    framework::unpack_all(memory, out);
    collect(ours, out);
    collect(pugixml, to_containers(document.first_child()));
    collect(containers, peers::map(from.containers));
    collect(structs, peers::map(from.structs, block));
    return ours == pugixml && ours == containers && ours == structs;
}

/* ---- what is timed ---- */

/* As `chmon` maps: the channels are packed. Unpacked: and made a node each, with all below, which few need. */
template <bool Unpacked> void ours(benchmark::State &state, const inputs &from)
{
    for ([[maybe_unused]] auto turn : state) {
        framework::arena memory;
        dtf_datatree out = {};
        if (map_ours(from, memory, out) != FAULT_SUCCESS)
            state.SkipWithError("the walk failed");
        if (Unpacked)
            framework::unpack_all(memory, out);
        benchmark::DoNotOptimize(out.children);
    }
    state.SetItemsProcessed(state.iterations() * from.slices);
}

void plain_structs(benchmark::State &state, const inputs &from)
{
    for ([[maybe_unused]] auto turn : state) {
        peers::struct_memory block(struct_room(from));
        benchmark::DoNotOptimize(peers::map(from.structs, block));
    }
    state.SetItemsProcessed(state.iterations() * from.slices);
}

void containers(benchmark::State &state, const inputs &from)
{
    for ([[maybe_unused]] auto turn : state) {
        const peers::tree_node mapped = peers::map(from.containers);
        benchmark::DoNotOptimize(mapped.children.data());
    }
    state.SetItemsProcessed(state.iterations() * from.slices);
}

void pugixml(benchmark::State &state, const inputs &from)
{
    for ([[maybe_unused]] auto turn : state) {
        pugi::xml_document mapped;
        peers::map(from.xml, mapped);
        benchmark::DoNotOptimize(mapped.first_child());
    }
    state.SetItemsProcessed(state.iterations() * from.slices);
}

template <auto Map> void libyang(benchmark::State &state, const inputs &from)
{
    for ([[maybe_unused]] auto turn : state) {
        lyd_node *const mapped = Map(from.context, from.yang_tree);
        benchmark::DoNotOptimize(mapped);
        lyd_free_all(mapped);
    }
    state.SetItemsProcessed(state.iterations() * from.slices);
}

} // namespace

int main(int argc, char **argv)
{
    inputs from;
    const device::temporary_inventory inventory(monitors);
    if (argc < 3 || !load(from, argv[1], argv[2]))
        return 1;
    if (!map_alike(from)) {
        std::cerr << "mapping_bench: not all programs map to the same leaves\n";
        return 1;
    }
    const auto add = [&from](const char *name, auto *function) {
        benchmark::RegisterBenchmark(name, [function, &from](benchmark::State &state) {
            function(state, from);
        })->Unit(benchmark::kMillisecond);
    };
    add("ours", ours<false>);
    add("ours_unpacked", ours<true>);
    add("structs", plain_structs);
    add("containers", containers);
    add("pugixml", pugixml);
    add("libyang_typed", libyang<peers::map_typed>);
    add("libyang_natural", libyang<peers::map_natural>);
    argc -= 2;
    argv[2] = argv[0];
    argv += 2;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    lyd_free_all(from.yang_tree);
    ly_ctx_destroy(from.context);
    return 0;
}
