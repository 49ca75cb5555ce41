#include "argument_checks.h"

#include <algorithm>
#include <string>

namespace cli {

const CLI::Validator decimal(
    [](const std::string &given) {
        const bool digits = std::ranges::all_of(given, [](char c) { return '0' <= c && c <= '9'; });
        return digits && (given.size() == 1 || !given.starts_with('0')) ? "" : "'" + given + "' is no number";
    },
    "");

void refuse_empty_arguments(CLI::App &app)
{
    const auto check = [](const std::string &given) { return given.empty() ? "is empty" : ""; };
    for (CLI::Option *const option : app.get_options([](CLI::Option *) { return true; }))
        if (option->get_items_expected_max() > 0)
            option->check(check, "");
    for (CLI::App *const command : app.get_subcommands([](CLI::App *) { return true; }))
        refuse_empty_arguments(*command);
}

} // namespace cli
