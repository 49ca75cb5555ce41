/* A spectrum drawn with characters. */
#ifndef SERVICE_CHART_TERMINAL_CHART_H
#define SERVICE_CHART_TERMINAL_CHART_H

#include "service/chart/spectrum.h"

#include <cstddef>
#include <string>

namespace service::chart {

/* What the place where it is shown can do. */
struct chart_style {
    std::size_t width = 80; /* columns, least_width at least */
    bool unicode = false;   /* block characters in UTF-8; else ASCII alone */
    bool colour = false;    /* escape sequences for colours; else none */
};

inline constexpr std::size_t least_width = 40;
inline constexpr std::size_t most_width = 1000;

/*
 * Text of lines, none wider than the style's width. A channel takes the columns of which it covers the most, one at
 * least; of several in one column the strongest is shown. A channel without a measured power is a '-' on the axis.
 */
std::string draw_chart(const monitor &of, const chart_style &style);

} // namespace service::chart

#endif
