#include "argument_checks.h"
#include "commands.h"
#include "terminal.h"

#include "service/chart/picture.h"
#include "service/chart/table.h"
#include "service/chart/terminal_chart.h"
#include "service/spectra.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

namespace cli {

namespace {

using namespace service::chart;

struct show_arguments {
    std::string monitor; /* empty: all of them */
    std::string picture; /* empty: no picture */
    std::optional<std::size_t> width;
    bool ascii = false;
};

chart_style style_for(const show_arguments &arguments, const terminal &output)
{
    chart_style style;
    style.width = std::clamp(arguments.width.value_or(output.columns.value_or(80)), least_width, most_width);
    style.unicode = output.is_one && output.utf8 && !arguments.ascii;
    style.colour = output.colour;
    return style;
}

void show(const show_arguments &arguments, const global_options &globals)
{
    const device::folder device = device::folder::open(globals.device_folder());
    const service::plugin mapper;
    const terminal output = standard_output();
    const chart_style style = style_for(arguments, output);
    if (arguments.monitor.empty()) {
        /* Columns are left out for a reader's eyes alone, not for a program's. */
        const bool narrow = output.is_one || arguments.width;
        std::cout << draw_table(read_spectra(mapper, device, globals.walks()),
                                narrow ? std::optional(style.width) : std::nullopt);
        return;
    }
    const monitor shown = read_spectrum(mapper, device, arguments.monitor, globals.walks());
    if (arguments.picture.empty()) {
        std::cout << draw_chart(shown, style);
        return;
    }
    if (arguments.picture == "-") {
        std::cout << draw_picture(shown);
        return;
    }
    write_picture(arguments.picture, draw_picture(shown));
    std::cout << arguments.picture << ": the spectrum of " << shown.name << '\n';
}

} // namespace

void add_show(CLI::App &app, global_options &globals)
{
    CLI::App *const command = app.add_subcommand("show", "Show the monitors, or the spectrum of one of them");
    const auto arguments = std::make_shared<show_arguments>();
    CLI::Option *const monitor =
        command->add_option("MONITOR", arguments->monitor, "The one to draw; without it a table of all");
    command->add_option("--svg", arguments->picture, "Write the spectrum as a picture; - is standard output")
        ->type_name("FILE")
        ->needs(monitor);
    command
        ->add_option_function<std::size_t>(
            "--width", [arguments](std::size_t columns) { arguments->width = columns; },
            "Columns to fill; without it as many as the terminal has, else $COLUMNS, else 80")
        ->check(decimal)
        ->check(CLI::Range(least_width, most_width));
    command->add_flag("--ascii", arguments->ascii, "No other characters than those of ASCII");
    command->callback([arguments, &globals] { show(*arguments, globals); });
}

} // namespace cli
