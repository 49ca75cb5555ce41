#include "device/inventory.h"

#include "device/inventory_file.h"
#include "ostore/inventory_item.h"

#include <stdexcept>

namespace device {
namespace {

/// A name of another form could not be told from the others once it is part of a key.
void require_monitor_name(std::string_view name)
{
    if (!is_monitor_name(name)) {
        throw std::invalid_argument("'" + std::string(name.substr(0, 60)) + "' is no monitor name " +
                                    monitor_name_form);
    }
}

} // namespace

std::vector<std::string> list_monitors(const ostore::transaction &txn)
{
    std::vector<std::string> names;
    for (ostore::cursor at(txn, txn.store().items(), ostore::inventory_prefix); at.next();) {
        if (auto name = ostore::inventory_item_monitor(at.key())) {
            names.push_back(std::move(*name));
        }
    }
    return names;
}

bool add_monitor(ostore::write_transaction &txn, std::string_view name)
{
    require_monitor_name(name);
    const std::string key = ostore::inventory_item_key(name);
    // Written in either case: the record may be one of an older release.
    const bool is_new = !txn.get(txn.store().items(), key);
    const std::vector<std::byte> record = ostore::inventory_item_record(name);
    txn.put(txn.store().items(), key, {reinterpret_cast<const char *>(record.data()), record.size()});
    return is_new;
}

bool remove_monitor(ostore::write_transaction &txn, std::string_view name)
{
    require_monitor_name(name);
    return txn.erase(txn.store().items(), ostore::inventory_item_key(name));
}

void replace_monitors(ostore::write_transaction &txn, const std::vector<std::string> &names)
{
    // The table holds items of other kinds, too.
    txn.erase_all(txn.store().items(), ostore::inventory_prefix);
    for (const std::string &name : names) {
        add_monitor(txn, name);
    }
}

} // namespace device
