#include "service/chart/scale.h"

#include <algorithm>
#include <cmath>

namespace service::chart {

namespace {

constexpr double most_power_steps = 6;
constexpr double least_power_range = 5; /* dB: a single channel has no range of its own */
constexpr double room_below = 0.05;     /* of the range, for the weakest channel's bar */

constexpr std::uint64_t mhz_per_thz = 1000000;
constexpr int thz_decimals = 6;           /* of a MHz */
constexpr std::size_t label_distance = 3; /* characters */

/* The smallest of 1, 2, 5 times a power of ten that goes into `range` at most `most` times. */
double round_step(double range, double most)
{
    const double magnitude = std::pow(10, std::floor(std::log10(range / most)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * magnitude * most >= range)
            return factor * magnitude;
    return 10 * magnitude;
}

/* A frequency in THz, of whose six decimals only the first ones are shown. */
std::string thz_label(std::uint64_t frequency, int decimals)
{
    std::string behind = std::to_string(frequency % mhz_per_thz);
    behind.insert(0, thz_decimals - behind.size(), '0');
    return std::to_string(frequency / mhz_per_thz) + "." + behind.substr(0, static_cast<std::size_t>(decimals));
}

/* Multiples of `step` on the axis. */
std::vector<frequency_tick> multiples(const frequency_axis &axis, std::uint64_t step, int decimals)
{
    std::vector<frequency_tick> ticks;
    const std::uint64_t before = (step - axis.low % step) % step; /* from the low end to the first one */
    if (before > axis.high - axis.low)
        return ticks;
    for (std::uint64_t at = axis.low + before;; at += step) {
        ticks.push_back({at, thz_label(at, decimals)});
        if (axis.high - at < step)
            return ticks;
    }
}

} // namespace

power_scale power_scale_for(const figures &of)
{
    power_scale scale;
    if (of.strongest == nullptr)
        return scale;
    const double strongest = *of.strongest->power, weakest = *of.weakest->power;
    const double range = std::max(strongest - weakest, least_power_range) * (1 + room_below);
    scale.step = round_step(range, most_power_steps);
    scale.bottom = std::floor((weakest - range * room_below) / scale.step) * scale.step;
    const double top = std::ceil(strongest / scale.step) * scale.step;
    scale.steps = static_cast<std::size_t>(std::max(1L, std::lround((top - scale.bottom) / scale.step)));
    return scale;
}

double frequency_axis::share(std::uint64_t frequency) const
{
    return static_cast<double>(frequency - low) / static_cast<double>(high - low);
}

std::vector<frequency_tick> frequency_axis::ticks(std::size_t room) const
{
    const double characters_per_mhz = static_cast<double>(room) / static_cast<double>(high - low);
    std::uint64_t power_of_ten = 1; /* 10^18 is the last of which 5 fit into 64 bits */
    for (int zeros = 0; zeros <= 18; ++zeros, power_of_ten *= 10) {
        const int decimals = std::max(1, thz_decimals - zeros);
        const double needed = static_cast<double>(thz_label(high, decimals).size() + label_distance);
        for (const std::uint64_t factor : {1U, 2U, 5U})
            if (static_cast<double>(factor * power_of_ten) * characters_per_mhz >= needed)
                return multiples(*this, factor * power_of_ten, decimals);
    }
    return {};
}

std::optional<frequency_axis> frequency_axis_for(const std::vector<channel> &channels)
{
    std::optional<frequency_axis> axis;
    for (const channel &one : channels) {
        if (!one.placed())
            continue;
        if (!axis)
            axis = frequency_axis{*one.lower, *one.upper};
        axis->low = std::min(axis->low, *one.lower);
        axis->high = std::max(axis->high, *one.upper);
    }
    /* A spectrum without width still has a place. */
    if (axis && axis->low == axis->high) {
        if (axis->low > 0)
            --axis->low;
        else
            ++axis->high;
    }
    return axis;
}

} // namespace service::chart
