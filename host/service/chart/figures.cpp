#include "service/chart/figures.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace service::chart {

namespace {

constexpr double dark_below_strongest = 20; /* dB */

/* Taken relative to the strongest, so that no power is too large or too small for its milliwatts. */
double total_power(const monitor &of, double strongest)
{
    double sum = 0;
    for (const channel &one : of.channels)
        if (one.power)
            sum += std::pow(10, (*one.power - strongest) / 10);
    return strongest + 10 * std::log10(sum);
}

} // namespace

figures figures_of(const monitor &of)
{
    figures found;
    found.channels = of.channels.size();
    for (const channel &one : of.channels) {
        found.unplaced += one.placed() ? 0 : 1;
        if (!one.power) {
            ++found.unmeasured;
            continue;
        }
        if (found.strongest == nullptr || *one.power > *found.strongest->power)
            found.strongest = &one;
        if (found.weakest == nullptr || *one.power < *found.weakest->power)
            found.weakest = &one;
    }
    if (found.strongest != nullptr)
        found.total = total_power(of, *found.strongest->power);
    return found;
}

bool is_dark(const channel &measured, const figures &of)
{
    return *measured.power < *of.strongest->power - dark_below_strongest;
}

std::string decimal(double number, int decimals)
{
    std::array<char, 400> buffer{}; /* the longest double has 309 digits before its point */
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, decimals);
    std::string text(buffer.data(), end.ptr);
    if (text.find_first_not_of("-0.") == std::string::npos && text.front() == '-')
        text.erase(0, 1);
    return text;
}

std::string power_text(const std::optional<double> &power) { return power ? decimal(*power, 2) : "-"; }

std::string centre_text(const channel *of)
{
    return of != nullptr && of->placed() ? decimal(of->centre() / 1e6, 3) : "-";
}

std::string printable(std::string_view text)
{
    constexpr const char *digits = "0123456789abcdef";
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= ' ' && byte < 0x7f)
            shown += c;
        else
            shown += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xfU]};
    }
    return shown;
}

} // namespace service::chart
