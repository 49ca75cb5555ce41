/* What standard output is shown on. */
#ifndef CHMON_TERMINAL_H
#define CHMON_TERMINAL_H

#include <cstddef>
#include <optional>

namespace cli {

struct terminal {
    /* Whether standard output is a terminal; else a file or a pipe, where nobody wants escape sequences. */
    bool is_one = false;
    /* Columns, from the terminal or else from $COLUMNS. */
    std::optional<std::size_t> columns;
    /* Whether the locale's characters are UTF-8. */
    bool utf8 = false;
    /* Whether it takes colours and the user wants any ($NO_COLOR, $TERM). */
    bool colour = false;
};

terminal standard_output();

} // namespace cli

#endif
