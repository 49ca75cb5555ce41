/* The two axes of a spectrum: where a value lies on them, and where their ticks are. */
#ifndef SERVICE_CHART_SCALE_H
#define SERVICE_CHART_SCALE_H

#include "service/chart/figures.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace service::chart {

/* The dBm axis: whole steps of a round number, the weakest channel above the bottom so that it can be seen. */
struct power_scale {
    double bottom = -60;
    double step = 10;
    std::size_t steps = 6;

    double at(std::size_t tick) const { return bottom + step * static_cast<double>(tick); }
    /* 0 at the bottom, 1 at the top. */
    double share(double power) const { return (power - bottom) / (step * static_cast<double>(steps)); }
};

/* Fits what is measured; the default scale where nothing is. */
power_scale power_scale_for(const figures &of);

struct frequency_tick {
    std::uint64_t frequency; /* MHz */
    std::string label;       /* THz */
};

/* The frequency axis, from the lowest to the highest frequency of any channel. */
struct frequency_axis {
    std::uint64_t low;  /* MHz */
    std::uint64_t high; /* MHz, above low */

    /* 0 at the low end, 1 at the high end. */
    double share(std::uint64_t frequency) const;
    /* Ticks at round frequencies, as close as their labels allow on an axis `room` characters long. */
    std::vector<frequency_tick> ticks(std::size_t room) const;
};

/* None where no channel has a place. */
std::optional<frequency_axis> frequency_axis_for(const std::vector<channel> &channels);

} // namespace service::chart

#endif
