#include "commands.h"

#include "device/folder.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace cli {

namespace {

void init(const global_options &globals)
{
    const std::filesystem::path folder = globals.device_folder();
    device::folder::create(folder);
    std::cout << folder.string() << ": an empty device\n";
    finish_output("the device is made");
}

} // namespace

void add_init(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("init", "Make the device folder, with an empty device in it");
    command->callback([&globals] { init(globals); });
}

} // namespace cli
