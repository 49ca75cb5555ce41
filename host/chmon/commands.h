/*
 * The program's commands. Each has a file of its own, which declares its arguments and, as the callback of its
 * subcommand, does its work: it prints to standard output and throws when it fails, a std::runtime_error whose text is
 * one line.
 */
#ifndef CHMON_COMMANDS_H
#define CHMON_COMMANDS_H

#include "service/walk_options.h"

#include <filesystem>
#include <string>

namespace CLI {
class App;
}

namespace cli {

/* Options that may stand before or after the command. They hold what was typed once a callback runs. */
struct global_options {
    std::string device;
    std::string log;
    bool trace = false;

    /* The device folder: --device, else $CHMON_DEVICE, else ./chmon-device. */
    std::filesystem::path device_folder() const;
    /* What --log and --trace ask for, on standard error. */
    service::walk_options walks() const;
};

/*
 * Writes out what was printed, after a change that stands whatever becomes of that: throws with `done`, which says so,
 * when standard output cannot be written.
 */
void finish_output(const char *done);

/* Declares the global options on the program itself. */
void add_global_options(CLI::App &app, global_options &globals);

/* Each adds one command; `globals` must outlive the parsing. */
void add_map(CLI::App &app, global_options &globals);
void add_plan(CLI::App &app, global_options &globals);
void add_init(CLI::App &app, global_options &globals);
void add_load(CLI::App &app, global_options &globals);
void add_inventory(CLI::App &app, global_options &globals);
void add_native(CLI::App &app, global_options &globals);
void add_get(CLI::App &app, global_options &globals);
void add_edit(CLI::App &app, global_options &globals);
void add_show(CLI::App &app, global_options &globals);

/* Ends the help of every command below `app` with what holds for all of them. */
void add_common_footer(CLI::App &app);

} // namespace cli

#endif
