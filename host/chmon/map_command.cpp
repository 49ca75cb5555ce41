#include "argument_checks.h"
#include "commands.h"
#include "format_option.h"

#include "device/temporary_inventory.h"
#include "service/native_mapping.h"

#include <iostream>
#include <memory>
#include <string_view>

namespace cli {

namespace {

struct map_arguments {
    service::map_options options;
    std::string inventory;
};

void map(const map_arguments &arguments, const global_options &globals)
{
    service::map_options options = arguments.options;
    options.walks = globals.walks();
    const service::plugin mapper;
    const device::temporary_inventory inventory{std::filesystem::path(arguments.inventory)};
    service::map_document(mapper, options, [](std::string_view piece) { std::cout << piece; });
}

} // namespace

void add_map(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("map", "Map a native document to an OpenConfig document");
    const auto arguments = std::make_shared<map_arguments>();
    command->add_option("NATIVE-FILE", arguments->options.document, "Native document, XML or JSON; - is standard input")
        ->option_text("REQUIRED")
        ->required();
    command->add_option("--inventory", arguments->inventory, "The monitors that the device has")
        ->type_name("FILE")
        ->required();
    add_format_option(*command, arguments->options.format, "without it as the document is");
    command->add_option("--kind", arguments->options.kind, "Kind of the request that the data answers")
        ->check(decimal)
        ->capture_default_str();
    command->add_flag("--validate", arguments->options.validate,
                      "Check the document and the result against the YANG modules");
    command->callback([arguments, &globals] { map(*arguments, globals); });
}

} // namespace cli
