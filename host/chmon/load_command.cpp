#include "commands.h"

#include "device/load.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <vector>

namespace cli {

namespace {

std::string counted(std::size_t count, const char *noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

void load(const std::vector<std::string> &files, const global_options &globals)
{
    /* First the device: where there is none, reading the documents would be for nothing. */
    device::folder into = device::folder::open(globals.device_folder());
    std::vector<framework::document_text> documents;
    documents.reserve(files.size());
    for (const std::string &file : files)
        documents.push_back(framework::read_document_text(file, framework::document_options().size_limit));
    const device::load_summary loaded = device::load(into, device::schema(), documents);
    if (loaded.monitors)
        std::cout << "inventory: " << counted(*loaded.monitors, "monitor") << '\n';
    if (loaded.interfaces)
        std::cout << "interface configuration: " << counted(*loaded.interfaces, "interface") << '\n';
    if (loaded.ports)
        std::cout << "operational data: " << counted(*loaded.ports, "port") << ", "
                  << counted(loaded.slices, "spectrum slice") << '\n';
    finish_output("the documents are stored");
}

} // namespace

void add_load(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("load", "Replace what the device holds by what documents say");
    const auto files = std::make_shared<std::vector<std::string>>();
    command
        ->add_option(
            "DOCUMENT", *files,
            "Native documents, XML or JSON, and inventory files, told apart by their content; all go in at once, "
            "or none; - is standard input")
        ->option_text("... REQUIRED")
        ->required();
    command->callback([files, &globals] { load(*files, globals); });
}

} // namespace cli
