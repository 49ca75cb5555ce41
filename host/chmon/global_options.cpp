#include "commands.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace cli {

std::filesystem::path global_options::device_folder() const
{
    if (!device.empty())
        return device;
    const char *const named = std::getenv("CHMON_DEVICE");
    return named != nullptr && *named != '\0' ? named : "./chmon-device";
}

service::walk_options global_options::walks() const
{
    service::walk_options walks;
    if (!log.empty())
        walks.log = log == "trc" ? framework::log_level::trc : framework::log_level::err;
    walks.trace = trace;
    walks.diagnostics = &std::cerr;
    return walks;
}

void finish_output(const char *done)
{
    std::cout.flush();
    if (!std::cout)
        throw std::runtime_error(std::string("standard output: cannot write; ") + done);
}

void add_global_options(CLI::App &app, global_options &globals)
{
    app.add_option("--device", globals.device, "Device folder; without it $CHMON_DEVICE, else ./chmon-device")
        ->type_name("DIR");
    app.add_option("--log", globals.log, "Show the plug-in's debug log: errors (err) or every step (trc)")
        ->check(CLI::IsMember({"err", "trc"}));
    app.add_flag("--trace", globals.trace, "Show the trace buffer of each walk");
}

void add_common_footer(CLI::App &app)
{
    for (CLI::App *const command : app.get_subcommands([](CLI::App *) { return true; })) {
        command->footer("--device, --log and --trace may stand before or after the command; see chmon --help.");
        add_common_footer(*command);
    }
}

} // namespace cli
