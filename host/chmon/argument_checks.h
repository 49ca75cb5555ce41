/* What arguments may look like, beyond what each command says of its own. */
#ifndef CHMON_ARGUMENT_CHECKS_H
#define CHMON_ARGUMENT_CHECKS_H

#include <CLI/CLI.hpp>

namespace cli {

/* A number in decimal; the parser alone would take 010 for 8. */
extern const CLI::Validator decimal;

/*
 * Refuses empty arguments of `app` and of every command below it: one is a variable that was not set, and not the wish
 * for what comes without the argument.
 */
void refuse_empty_arguments(CLI::App &app);

} // namespace cli

#endif
