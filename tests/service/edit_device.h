/* A device that tests edit: the example's inventory, and interfaces of which some carry monitors and some do not. */
#ifndef TESTS_SERVICE_EDIT_DEVICE_H
#define TESTS_SERVICE_EDIT_DEVICE_H

#include "ostore/temporary_folder.h"

#include "device/inventory.h"
#include "device/native_reader.h"
#include "device/native_writer.h"
#include "service/edit.h"
#include "service/netconf_error.h"

#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace edits {

inline const std::vector<std::string> monitors = {"0/1-CHMON-BST", "0/1-CHMON-PRE", "0/2-CHMON-BST",
                                                  "0/2-CHMON-PRE", "0/3-CHMON-BST", "0/3-CHMON-PRE"};
inline const std::vector<std::string> controllers = {"Ots0/1/0/0", "Ots0/1/0/1", "Ots0/2/0/0",
                                                     "Ots0/2/0/1", "Ots0/3/0/0", "Ots0/3/0/1"};

/* The whole interface configuration as it is stored. */
using records = std::map<std::string, std::string>;

inline records stored(device::folder &device)
{
    records all;
    const ostore::read_transaction txn(device.database());
    for (ostore::cursor at(txn, device.database().table(device::interfaces_table)); at.next();)
        all.emplace(at.key(), at.value());
    return all;
}

inline void put(ostore::write_transaction &txn, const std::string &active, const std::string &name,
                const char *description = nullptr)
{
    std::vector<device::native_leaf> leaves = {{device::native_tag::active, active},
                                               {device::native_tag::interface_name, name}};
    if (description != nullptr)
        leaves.push_back({device::native_tag::description, description});
    device::native_writer(txn).put_interface(leaves);
}

/* Every monitor is in the inventory and none configured; these interfaces are none of an edit's business. */
inline void fill(device::folder &device)
{
    ostore::write_transaction txn(device.database());
    device::replace_monitors(txn, monitors);
    put(txn, "act", "HundredGigE0/0/0/0", "client");
    put(txn, "act", "Ots0/4/0/0", "carries no monitor");
    put(txn, "act", "Ots0/01/0/0", "another spelling");
    put(txn, "pre", "Ots0/1/0/0", "not in force");
    txn.commit();
}

/* Edits from a text, which goes through a file as a user's does. */
inline std::vector<service::entry_change> edit(const service::plugin &mapper, device::folder &device,
                                               const std::filesystem::path &folder, const std::string &text,
                                               service::edit_operation otherwise = service::edit_operation::merge)
{
    service::edit_options options;
    options.document = folder / "edit.xml";
    options.default_operation = otherwise;
    std::ofstream(options.document) << text;
    return service::edit_device(mapper, device, options);
}

/* An edit document around the list entries. */
inline std::string document(const std::string &entries, const std::string &attributes = "")
{
    return R"(<channel-monitors xmlns="http://openconfig.net/yang/channel-monitor")"
           R"( xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0")" +
           attributes + ">" + entries + "</channel-monitors>";
}

} // namespace edits

#endif
