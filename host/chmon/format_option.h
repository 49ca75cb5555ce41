/* The option that says how a document is written. */
#ifndef CHMON_FORMAT_OPTION_H
#define CHMON_FORMAT_OPTION_H

#include "service/format.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace cli {

/* --format xml|json; `format` stays empty where it is not given. */
inline void add_format_option(CLI::App &command, std::optional<service::document_format> &format,
                              const std::string &otherwise)
{
    command
        .add_option_function<std::string>(
            "--format", [&format](const std::string &name) { format = service::format_named(name); },
            "How the result is written; " + otherwise)
        ->check(CLI::IsMember({"xml", "json"}));
}

} // namespace cli

#endif
