/* The few numbers that sum up a spectrum, and how numbers are written. */
#ifndef SERVICE_CHART_FIGURES_H
#define SERVICE_CHART_FIGURES_H

#include "service/chart/spectrum.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace service::chart {

/* Points into the monitor that it was made of. */
struct figures {
    std::size_t channels = 0;
    std::size_t unmeasured = 0;         /* channels without a power */
    std::size_t unplaced = 0;           /* channels without a place on the frequency axis */
    std::optional<double> total;        /* dBm: the sum of the channels' milliwatts; none where nothing is measured */
    const channel *strongest = nullptr; /* null where nothing is measured */
    const channel *weakest = nullptr;
};

figures figures_of(const monitor &of);

/* Whether a channel carries no light to speak of: more than 20 dB below the strongest. Its power is known. */
bool is_dark(const channel &measured, const figures &of);

/* A number with that many decimals; a zero has no sign. */
std::string decimal(double number, int decimals);
/* dBm with two decimals, "-" where there is none. */
std::string power_text(const std::optional<double> &power);
/* The middle of a channel in THz, to the GHz; "-" where that is not known. */
std::string centre_text(const channel *of);
/*
 * A name with \xNN for each byte that is no printable ASCII: a terminal would obey it, XML not allow it, and a column
 * be counted wrongly. The names that the mapping gives have none.
 */
std::string printable(std::string_view text);

} // namespace service::chart

#endif
