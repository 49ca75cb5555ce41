/* What is drawn: the channels that a monitor measures. */
#ifndef SERVICE_CHART_SPECTRUM_H
#define SERVICE_CHART_SPECTRUM_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace service::chart {

/* One reading. What was not measured or not told is missing, never 0. */
struct channel {
    std::optional<std::uint64_t> lower; /* MHz */
    std::optional<std::uint64_t> upper; /* MHz */
    std::optional<double> power;        /* dBm, finite */

    /* Whether it has a place on a frequency axis. */
    bool placed() const { return lower && upper && *lower <= *upper; }
    /* MHz; of placed channels only. */
    double centre() const { return (static_cast<double>(*lower) + static_cast<double>(*upper)) / 2; }
};

struct monitor {
    std::string name;
    std::string port; /* empty where it is not known */
    std::vector<channel> channels;
};

} // namespace service::chart

#endif
