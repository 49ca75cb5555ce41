/* The monitors of a device, one line each. */
#ifndef SERVICE_CHART_TABLE_H
#define SERVICE_CHART_TABLE_H

#include "service/chart/spectrum.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace service::chart {

/*
 * The table as text. Where it is wider than `width`, it gives up columns: the port, then the weakest, then the
 * strongest channel. Without a width it keeps them all.
 */
std::string draw_table(const std::vector<monitor> &monitors, const std::optional<std::size_t> &width);

} // namespace service::chart

#endif
