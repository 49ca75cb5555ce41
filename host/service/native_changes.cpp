#include "service/native_changes.h"

#include "service/netconf_error.h"
#include "service/tree_access.h"

#include "device/native_reader.h"
#include "device/native_writer.h"
#include "framework/schema_facts.h"

#include "oc_chmon.h"

#include <algorithm>
#include <string_view>

namespace service {

namespace {

constexpr const char *entries_path = "/interface-configurations/interface-configuration";

/* What the mapping asks for and this store has no place for: a fault of the mapping, not of the client. */
[[noreturn]] void refuse_native(const std::string &what)
{
    throw application_error("operation-failed", {}, "the native request has " + what);
}

std::vector<device::native_leaf> leaves_in(const dtf_datatree &entry)
{
    std::vector<device::native_leaf> leaves;
    for (const dtf_datatree &leaf : children_of(entry)) {
        const auto tag = device::native_tag_of(leaf.tag);
        if (!tag)
            refuse_native(std::string("a node '") + leaf.tag + "' that is not stored");
        leaves.push_back({*tag, value_of(leaf)});
    }
    return leaves;
}

/* The given leaves, and of the stored ones those that are not given: what a merge comes to. */
std::string merged(const std::optional<std::string> &stored, std::vector<device::native_leaf> leaves)
{
    for (const device::native_leaf &leaf : device::leaves_of(stored ? std::string_view(*stored) : std::string_view())) {
        if (std::ranges::find(leaves, leaf.tag, &device::native_leaf::tag) == leaves.end())
            leaves.push_back(leaf);
    }
    return device::entry_of(device::native_tag::interface_configuration, leaves);
}

/* The change of the entry with these keys, begun if it is the first that the request says of it. */
entry_change &change_of(std::vector<entry_change> &changes, std::string_view active, std::string_view interface,
                        const ostore::transaction &txn)
{
    for (entry_change &known : changes) {
        if (known.active == active && known.interface == interface)
            return known;
    }
    std::optional<std::string> stored;
    device::naming_store(txn, [&] {
        if (const auto entry = device::native_reader(txn).interface(active, interface))
            stored = std::string(*entry);
    });
    return changes.emplace_back(entry_change{std::string(active), std::string(interface), stored, stored});
}

void add_entry(std::vector<entry_change> &changes, const dtf_datatree &entry, const ostore::transaction &txn)
{
    const auto leaves = leaves_in(entry);
    entry_change &change = change_of(changes, device::key_leaf(leaves, device::native_tag::active),
                                     device::key_leaf(leaves, device::native_tag::interface_name), txn);
    if (dtf_map_is_request_delete(&entry) != 0)
        change.after.reset();
    else
        change.after = merged(change.after, leaves);
}

} // namespace

std::string entry_change::describe() const
{
    const char *const what = !before ? "create " : !after ? "delete " : "replace ";
    return what + std::string(entries_path) + "[active='" + active + "'][interface-name='" + interface + "']";
}

std::vector<entry_change> changes_of(const dtf_datatree &native, const ostore::transaction &txn)
{
    std::vector<entry_change> changes;
    for (const dtf_datatree &top : children_of(native)) {
        if (!framework::same_namespace(top.ns, CHMON_NS_VANTRA_TALIN_IFMGR_CFG))
            refuse_native(std::string("/") + top.tag + ", which is no configuration");
        for (const dtf_datatree &entry : children_of(top))
            add_entry(changes, entry, txn);
    }
    return changes;
}

void carry_out(const std::vector<entry_change> &changes, ostore::write_transaction &txn)
{
    device::native_writer writer(txn);
    for (const entry_change &change : changes) {
        if (!change.is_change())
            continue;
        if (change.after)
            writer.put_interface(device::leaves_of(*change.after));
        else
            writer.remove_interface(change.active, change.interface);
    }
}

} // namespace service
