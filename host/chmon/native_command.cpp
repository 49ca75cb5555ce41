#include "commands.h"
#include "format_option.h"

#include "service/native_document.h"

#include <iostream>
#include <memory>

namespace cli {

namespace {

struct native_arguments {
    std::optional<service::document_format> format;
    bool config = false;
    bool oper = false;
};

void native(const native_arguments &arguments, const global_options &globals)
{
    const device::folder device = device::folder::open(globals.device_folder());
    /* Neither flag stands for both. */
    const service::native_parts parts{!arguments.oper, !arguments.config};
    std::cout << service::native_document(device, parts, arguments.format.value_or(service::document_format::xml));
}

} // namespace

void add_native(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("native", "Print what the device holds in its own models");
    const auto arguments = std::make_shared<native_arguments>();
    CLI::Option *const config = command->add_flag("--config", arguments->config, "The interface configuration alone");
    command->add_flag("--oper", arguments->oper, "The operational data alone")->excludes(config);
    add_format_option(*command, arguments->format, "without it XML");
    command->callback([arguments, &globals] { native(*arguments, globals); });
}

} // namespace cli
