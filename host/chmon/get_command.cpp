#include "commands.h"
#include "format_option.h"

#include "service/get.h"

#include <iostream>
#include <memory>
#include <string_view>

namespace cli {

namespace {

struct get_arguments {
    service::get_options options;
    bool stats = false;
};

void get(const get_arguments &arguments, const global_options &globals)
{
    const device::folder device = device::folder::open(globals.device_folder());
    service::get_options options = arguments.options;
    options.walks = globals.walks();
    if (arguments.stats)
        options.stats = &std::cerr;
    const service::plugin mapper;
    service::get_document(mapper, device, options, [](std::string_view piece) { std::cout << piece; });
}

} // namespace

void add_get(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("get", "Read the device as OpenConfig channel monitors");
    const auto arguments = std::make_shared<get_arguments>();
    command->add_flag("--config", arguments->options.config_only, "The configuration alone");
    command
        ->add_option_function<std::string>(
            "--filter", [arguments](const std::string &file) { arguments->options.filter = file; },
            "Subtree filter (RFC 6241, section 6), XML or JSON; - is standard input; without it everything is read")
        ->type_name("FILE");
    add_format_option(*command, arguments->options.format, "without it as the filter is, XML where there is none");
    command->add_flag("--validate", arguments->options.validate, "Check the reply against the YANG modules");
    command->add_flag("--stats", arguments->stats, "Tell on standard error what the steps cost");
    command->callback([arguments, &globals] { get(*arguments, globals); });
}

} // namespace cli
