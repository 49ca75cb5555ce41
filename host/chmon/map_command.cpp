#include "commands.h"

#include <CLI/CLI.hpp>

namespace cli {

void add_map(CLI::App &app, global_options &)
{
    app.add_subcommand("map", "Map a native document to an OpenConfig document");
}

} // namespace cli
