/* chmon: OpenConfig channel monitors on a device that only knows its own models. */
#include "argument_checks.h"
#include "commands.h"
#include "standard_streams.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr int status_failed = 1;
constexpr int status_usage = 2;

/* What was printed may still be in a buffer: a full disk shows only when that is written. */
int finished()
{
    std::cout.flush();
    if (std::cout)
        return 0;
    std::cerr << "chmon: standard output: cannot write\n";
    return status_failed;
}

/* An error is one line, whatever names were given in arguments and documents: no line ends, nothing a terminal obeys.
 */
std::string one_line(std::string message)
{
    std::replace_if(
        message.begin(), message.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
    return "chmon: " + message;
}

/* The library's wording of an option that is given twice, or without its value, said plainly. */
std::string said_plainly(std::string message)
{
    constexpr std::string_view too_many = ": At Most 1 required ";
    constexpr std::string_view too_few = ": 1 required ";
    constexpr std::string_view missing = " missing";
    if (const auto at = message.find(too_many); at != std::string::npos)
        return message.substr(0, at) + " may be given only once";
    if (const auto at = message.find(too_few); at != std::string::npos && message.ends_with(missing)) {
        message.resize(message.size() - missing.size());
        message.replace(at, too_few.size(), " is given without its ");
    }
    return message;
}

/* What is wrong with the command line. A word that nothing knows is what is meant, not that another one is missing. */
std::string usage_error(const CLI::App *app, const CLI::Error &wrong)
{
    const auto left = app->remaining(true);
    std::string message = said_plainly(wrong.what());
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    /* Behind "--" no word is an option, and "-" alone is a file. */
    const auto end = std::ranges::find(left, "--");
    const auto option =
        std::find_if(left.begin(), end, [](const auto &one) { return one.size() > 1 && one.starts_with('-'); });
    const auto word = std::ranges::find_if(left, [](const auto &one) { return one != "--"; });
    if (option != end)
        message = "unknown option '" + *option + '\'';
    else if (word != left.end() && app->get_require_subcommand_min() > 0)
        message = "unknown command '" + *word + '\'';
    return one_line(std::move(message)) + "; see chmon --help\n";
}

int run(int argc, char **argv)
{
    CLI::App app("OpenConfig channel monitors over a device's native models", "chmon");
    /* Set before the commands are added: they take it over, and so global options may follow the command. */
    app.fallthrough();
    app.require_subcommand(1);
    app.failure_message(usage_error);

    cli::global_options globals;
    cli::add_global_options(app, globals);
    cli::add_map(app, globals);
    cli::add_plan(app, globals);
    cli::add_init(app, globals);
    cli::add_load(app, globals);
    cli::add_inventory(app, globals);
    cli::add_native(app, globals);
    cli::add_get(app, globals);
    cli::add_edit(app, globals);
    cli::add_show(app, globals);
    cli::add_common_footer(app);
    cli::refuse_empty_arguments(app);
    app.footer("Each command has a --help of its own.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &wrong) {
        return app.exit(wrong) == 0 ? finished() : status_usage;
    }
    return finished();
}

} // namespace

int main(int argc, char **argv)
{
    cli::hold_standard_streams();
    std::ios::sync_with_stdio(false);
    /* A file that may not grow further is an error of its writing, as a full disk is, and no reason to be killed. */
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return run(argc, argv);
    } catch (const std::exception &failure) {
        std::cout.flush();
        std::cerr << one_line(failure.what()) << '\n';
        return status_failed;
    }
}
