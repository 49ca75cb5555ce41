#include "commands.h"

#include "device/folder.h"
#include "device/inventory.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <vector>

namespace cli {

namespace {

void list(const global_options &globals)
{
    const device::folder device = device::folder::open(globals.device_folder());
    for (const std::string &name : device::list_monitors(ostore::read_transaction(device.database())))
        std::cout << name << '\n';
}

/* Makes one change per name, all of them or none; `change` is false where there was nothing to do. */
template <typename Change>
void change_inventory(const std::vector<std::string> &names, const global_options &globals, Change &&change,
                      const char *otherwise)
{
    const device::folder device = device::folder::open(globals.device_folder());
    ostore::write_transaction txn(device.database());
    std::set<std::string> done;
    for (const std::string &name : names) {
        if (!done.insert(name).second)
            throw std::runtime_error(name + ": is given twice");
        if (!change(txn, name))
            throw std::runtime_error(name + ": " + otherwise);
    }
    txn.commit();
}

void add_change(CLI::App &inventory, const char *word, const char *what,
                const std::function<void(const std::vector<std::string> &)> &run)
{
    CLI::App *const command = inventory.add_subcommand(word, what);
    const auto names = std::make_shared<std::vector<std::string>>();
    command->add_option("MONITOR", *names, "Names such as 0/2-CHMON-PRE")->option_text("... REQUIRED")->required();
    command->callback([names, run] { run(*names); });
}

} // namespace

void add_inventory(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("inventory", "The channel monitors that the device has");
    command->require_subcommand(1);
    command->add_subcommand("list", "Print their names")->callback([&globals] { list(globals); });
    add_change(*command, "add", "Add monitors", [&globals](const std::vector<std::string> &names) {
        change_inventory(names, globals, device::add_monitor, "is in the inventory already");
    });
    add_change(*command, "remove", "Remove monitors", [&globals](const std::vector<std::string> &names) {
        change_inventory(names, globals, device::remove_monitor, "is not in the inventory");
    });
}

} // namespace cli
