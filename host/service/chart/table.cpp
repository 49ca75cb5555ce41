#include "service/chart/table.h"

#include "service/chart/figures.h"

#include <algorithm>
#include <array>

namespace service::chart {

namespace {

enum column { name, port, channels, total, strongest, strongest_at, weakest, weakest_at, column_count };

using row = std::array<std::string, column_count>;

/* The order in which columns go. */
constexpr std::array<std::pair<column, column>, 3> given_up = {
    {{port, port}, {weakest, weakest_at}, {strongest, strongest_at}}};

row row_of(const monitor &of)
{
    const figures sums = figures_of(of);
    const auto power_of = [](const channel *one) { return one == nullptr ? "-" : power_text(one->power); };
    return {printable(of.name),
            of.port.empty() ? "-" : printable(of.port),
            std::to_string(sums.channels),
            power_text(sums.total),
            power_of(sums.strongest),
            centre_text(sums.strongest),
            power_of(sums.weakest),
            centre_text(sums.weakest)};
}

/* Two lines: what it is of, and its unit. */
std::vector<row> headings()
{
    return {{"monitor", "port", "channels", "total", "strongest", "", "weakest", ""},
            {"", "", "", "dBm", "dBm", "THz", "dBm", "THz"}};
}

/* A frequency stands close behind its power, and the heading of both over both. */
bool is_second_of_pair(std::size_t at) { return at == strongest_at || at == weakest_at; }
std::string gap_before(std::size_t at) { return at == name ? "" : is_second_of_pair(at) ? " " : "  "; }

class layout
{
  public:
    layout(const std::vector<row> &rows, const std::optional<std::size_t> &width)
    {
        widths_[strongest] = widths_[weakest] = 6; /* so that their headings fit, whatever the powers */
        for (std::size_t at = 0; at < column_count; ++at)
            for (std::size_t i = 0; i < rows.size(); ++i)
                if (i > 0 || (at != strongest && at != weakest))
                    widths_[at] = std::max(widths_[at], rows[i][at].size());
        for (const auto &[first, last] : given_up)
            if (width && line_width() > *width)
                widths_[first] = widths_[last] = 0;
    }

    std::string line(const row &cells, bool heading) const
    {
        std::string text;
        for (std::size_t at = 0; at < column_count; ++at) {
            if (widths_[at] == 0)
                continue;
            std::size_t room = widths_[at];
            text += gap_before(at);
            if (heading && (at == strongest || at == weakest)) {
                room += gap_before(at + 1).size() + widths_[at + 1];
                text += aligned(cells[at], room, false);
                ++at;
            } else
                text += aligned(cells[at], room, at <= port);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text + "\n";
    }

  private:
    std::size_t line_width() const
    {
        std::size_t sum = 0;
        for (std::size_t at = 0; at < column_count; ++at)
            sum += widths_[at] == 0 ? 0 : gap_before(at).size() + widths_[at];
        return sum;
    }

    static std::string aligned(const std::string &text, std::size_t room, bool left)
    {
        const std::string padding(room - std::min(room, text.size()), ' ');
        return left ? text + padding : padding + text;
    }

    std::array<std::size_t, column_count> widths_{}; /* 0: left out */
};

} // namespace

std::string draw_table(const std::vector<monitor> &monitors, const std::optional<std::size_t> &width)
{
    std::vector<row> rows = headings();
    for (const monitor &one : monitors)
        rows.push_back(row_of(one));
    const layout columns(rows, width);
    std::string text;
    for (const row &one : rows)
        text += columns.line(one, &one == &rows.front());
    return text;
}

} // namespace service::chart
