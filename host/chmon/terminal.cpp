#include "terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace cli {

namespace {

/* Empty where it is not set. */
std::string_view variable(const char *name)
{
    const char *const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

std::optional<std::size_t> columns()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const std::string_view told = variable("COLUMNS");
    std::size_t count = 0;
    const auto read_to = std::from_chars(told.data(), told.data() + told.size(), count);
    if (read_to.ec != std::errc() || read_to.ptr != told.data() + told.size() || count == 0)
        return std::nullopt;
    return count;
}

/* The first of the three that is set decides (POSIX, 8.2). The locale itself need not be installed for that. */
bool locale_is_utf8()
{
    for (const char *const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        std::string locale(variable(name));
        if (locale.empty())
            continue;
        std::transform(locale.begin(), locale.end(), locale.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
        return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
    }
    return false;
}

} // namespace

terminal standard_output()
{
    terminal found;
    found.is_one = isatty(STDOUT_FILENO) == 1;
    found.columns = columns();
    found.utf8 = locale_is_utf8();
    found.colour = found.is_one && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
    return found;
}

} // namespace cli
