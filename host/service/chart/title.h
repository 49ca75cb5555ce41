/* What stands above a spectrum. */
#ifndef SERVICE_CHART_TITLE_H
#define SERVICE_CHART_TITLE_H

#include "service/chart/figures.h"

#include <string>
#include <vector>

namespace service::chart {

/* Statements about a spectrum, the most important first: port, channels, powers. */
inline std::vector<std::string> title_of(const monitor &of, const figures &sums)
{
    std::vector<std::string> words;
    if (!of.port.empty())
        words.push_back("port " + printable(of.port));
    words.push_back(std::to_string(sums.channels) + (sums.channels == 1 ? " channel" : " channels"));
    if (sums.total) {
        words.push_back("total " + power_text(sums.total) + " dBm");
        words.push_back("strongest " + power_text(sums.strongest->power) + " dBm");
        words.push_back("weakest " + power_text(sums.weakest->power) + " dBm");
    }
    return words;
}

/* And about what is missing in it, if anything is; `mark` is what stands in the drawing for a missing power. */
inline std::vector<std::string> gaps_of(const figures &sums, const std::string &mark)
{
    std::vector<std::string> words;
    if (sums.unmeasured > 0)
        words.push_back(std::to_string(sums.unmeasured) + " not measured (" + mark + ")");
    if (sums.unplaced > 0)
        words.push_back(std::to_string(sums.unplaced) + " without usable frequencies");
    return words;
}

} // namespace service::chart

#endif
