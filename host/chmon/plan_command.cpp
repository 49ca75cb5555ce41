#include "argument_checks.h"
#include "commands.h"
#include "format_option.h"

#include "service/request_plan.h"

#include <iostream>
#include <memory>

namespace cli {

namespace {

void plan(service::plan_options options, const global_options &globals)
{
    options.walks = globals.walks();
    const service::plugin mapper;
    std::cout << service::plan_document(mapper, options);
}

} // namespace

void add_plan(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("plan", "Show the native request that an OpenConfig request becomes");
    const auto options = std::make_shared<service::plan_options>();
    command->add_option("REQUEST-FILE", options->document, "OpenConfig request, XML or JSON; - is standard input")
        ->option_text("REQUIRED")
        ->required();
    command
        ->add_option_function<std::string>(
            "--inventory", [options](const std::string &file) { options->inventory = file; },
            "The monitors that the device has; without it a request that names none finds none")
        ->type_name("FILE");
    command
        ->add_option("--kind", options->kind,
                     "Kind of the request: 10 get, 0 get-config, 1 edit; others for those who debug a mapping")
        ->check(decimal)
        ->capture_default_str();
    add_format_option(*command, options->format, "without it as the request is");
    command->callback([options, &globals] { plan(*options, globals); });
}

} // namespace cli
