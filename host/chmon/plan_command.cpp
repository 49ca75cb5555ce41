#include "commands.h"

#include <CLI/CLI.hpp>

namespace cli {

void add_plan(CLI::App &app, global_options &)
{
    app.add_subcommand("plan", "Show the native request that an OpenConfig request becomes");
}

} // namespace cli
