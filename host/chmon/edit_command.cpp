#include "commands.h"

#include "service/edit.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace cli {

namespace {

void edit(service::edit_options options, const global_options &globals)
{
    options.walks = globals.walks();
    const service::plugin mapper;
    device::folder device = device::folder::open(globals.device_folder());
    const auto changes = service::edit_device(mapper, device, options);
    for (const service::entry_change &change : changes)
        std::cout << change.describe() << '\n';
    if (changes.empty())
        std::cout << "nothing to change\n";
    else if (!options.dry_run)
        finish_output("the edit is stored");
}

} // namespace

void add_edit(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("edit", "Change the device's configuration by an OpenConfig edit");
    const auto options = std::make_shared<service::edit_options>();
    command->add_option("REQUEST-FILE", options->document, "OpenConfig edit, XML or JSON; - is standard input")
        ->option_text("REQUIRED")
        ->required();
    command
        ->add_option_function<std::string>(
            "--default-operation",
            [options](const std::string &name) { options->default_operation = service::default_operation_named(name); },
            "What a node does that has no operation and takes over none; merge without it")
        ->check(CLI::IsMember({"merge", "replace", "none"}));
    command->add_flag("--dry-run", options->dry_run, "Show the native changes and make none");
    command->callback([options, &globals] { edit(*options, globals); });
}

} // namespace cli
