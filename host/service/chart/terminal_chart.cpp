#include "service/chart/terminal_chart.h"

#include "service/chart/scale.h"
#include "service/chart/title.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace service::chart {

namespace {

constexpr std::size_t wanted_rows = 16;
constexpr std::size_t least_rows_per_step = 2;

/* What a drawing is made of. Levels are parts of a full cell, from none to all of it. */
struct glyphs {
    std::vector<const char *> levels;
    const char *upright, *upright_tick, *corner, *level, *level_tick;
};

const glyphs ascii = {{" ", ".", ":", "#"}, "|", "+", "+", "-", "+"};
const glyphs blocks = {{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"}, "│", "┤", "└", "─", "┬"};

constexpr const char *bright_colour = "\x1b[36m"; /* cyan is legible on light and dark ground */
constexpr const char *dark_colour = "\x1b[90m";
constexpr const char *no_colour = "\x1b[0m";

/* What a column shows, the strongest channel of those in it; null is a gap. */
using column = const channel *;

/* The columns [first, behind) of a placed channel. */
struct column_span {
    std::size_t first, behind;
};

column_span columns_of(const channel &one, const frequency_axis &axis, std::size_t count)
{
    const double per_axis = static_cast<double>(count);
    const auto first = static_cast<std::size_t>(std::lround(axis.share(*one.lower) * per_axis));
    const auto behind = static_cast<std::size_t>(std::lround(axis.share(*one.upper) * per_axis));
    if (first < behind)
        return {first, behind};
    const double middle = (axis.share(*one.lower) + axis.share(*one.upper)) / 2 * per_axis;
    const std::size_t only = std::min(static_cast<std::size_t>(middle), count - 1);
    return {only, only + 1};
}

std::vector<column> columns_for(const monitor &of, const frequency_axis &axis, std::size_t count)
{
    std::vector<column> columns(count);
    for (const channel &one : of.channels) {
        if (!one.placed())
            continue;
        const column_span span = columns_of(one, axis, count);
        for (std::size_t at = span.first; at < span.behind; ++at) {
            column &shown = columns[at];
            /* An optional without value is less than any. */
            if (shown == nullptr || one.power > shown->power)
                shown = &one;
        }
    }
    return columns;
}

/* Statements side by side, as many in a line as go into it; one that is wider than a line is cut. */
std::string wrapped(const std::vector<std::string> &words, std::size_t width)
{
    std::string text, line;
    for (const std::string &word : words) {
        if (!line.empty() && line.size() + 2 + word.size() > width) {
            text += line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : "  ") + word.substr(0, width);
    }
    return text + line + "\n";
}

class drawing
{
  public:
    drawing(const monitor &of, const frequency_axis &axis, const chart_style &style)
        : style_(style),
          glyphs_(style.unicode ? blocks : ascii),
          axis_(axis),
          sums_(figures_of(of)),
          scale_(power_scale_for(sums_)),
          rows_per_step_(std::max(least_rows_per_step, wanted_rows / scale_.steps))
    {
        for (std::size_t tick = 0; tick <= scale_.steps; ++tick)
            margin_ = std::max(margin_, power_label(tick).size());
        columns_ = columns_for(of, axis, style.width - margin_ - 2);
    }

    std::string text() const
    {
        std::string lines = margin("dBm") + "\n";
        for (std::size_t row = scale_.steps * rows_per_step_; row-- > 0;)
            lines += line_of(row);
        return lines + axis_lines();
    }

  private:
    std::string power_label(std::size_t tick) const { return decimal(scale_.at(tick), 0); }

    std::string margin(const std::string &label) const
    {
        return std::string(margin_ - std::min(margin_, label.size()), ' ') + label;
    }

    /* One row of cells; 0 is the lowest. A label stands in the row whose upper edge is its power. */
    std::string line_of(std::size_t row) const
    {
        const bool ticked = (row + 1) % rows_per_step_ == 0;
        std::string line = margin(ticked ? power_label((row + 1) / rows_per_step_) : "") + " " +
                           (ticked ? glyphs_.upright_tick : glyphs_.upright);
        const char *colour = no_colour;
        std::string gap; /* spaces that only count when something follows */
        for (const column at : columns_) {
            const std::string cell = at == nullptr ? " " : cell_of(*at, row);
            if (cell == " ") {
                gap += cell;
                continue;
            }
            line += gap;
            gap.clear();
            if (style_.colour && colour != colour_of(*at))
                line += colour = colour_of(*at);
            line += cell;
        }
        return line + (colour == no_colour ? "" : no_colour) + "\n";
    }

    std::string cell_of(const channel &shown, std::size_t row) const
    {
        if (!shown.power)
            return row == 0 ? "-" : " ";
        const double height = scale_.share(*shown.power) * static_cast<double>(scale_.steps * rows_per_step_);
        const double part = std::clamp(height - static_cast<double>(row), 0.0, 1.0);
        const auto level = std::lround(part * static_cast<double>(glyphs_.levels.size() - 1));
        /* However weak, it is there. */
        return glyphs_.levels[static_cast<std::size_t>(row == 0 ? std::max(level, 1L) : level)];
    }

    const char *colour_of(const channel &shown) const
    {
        return !shown.power || is_dark(shown, sums_) ? dark_colour : bright_colour;
    }

    /* The frequency axis and, below it, the labels of its ticks, each in the middle below its tick. */
    std::string axis_lines() const
    {
        const std::size_t before = margin_ + 2, count = columns_.size();
        std::vector<const char *> line(count, glyphs_.level);
        std::string labels = margin("THz");
        for (const frequency_tick &tick : axis_.ticks(count)) {
            const auto share = static_cast<std::size_t>(axis_.share(tick.frequency) * static_cast<double>(count));
            const std::size_t at = std::min(share, count - 1), size = tick.label.size();
            const std::size_t start = std::min(before + at - std::min(at, size / 2), style_.width - size);
            if (start <= labels.size())
                continue;
            line[at] = glyphs_.level_tick;
            labels += std::string(start - labels.size(), ' ') + tick.label;
        }
        std::string text = margin(power_label(0)) + " " + glyphs_.corner;
        for (const char *const piece : line)
            text += piece;
        return text + "\n" + labels + "\n";
    }

    const chart_style &style_;
    const glyphs &glyphs_;
    const frequency_axis axis_;
    const figures sums_;
    const power_scale scale_;
    const std::size_t rows_per_step_;
    std::size_t margin_ = 3; /* columns of the labels, without the axis: "dBm" and "THz" at least */
    std::vector<column> columns_;
};

} // namespace

std::string draw_chart(const monitor &of, const chart_style &style)
{
    const figures sums = figures_of(of);
    std::vector<std::string> words = title_of(of, sums);
    for (std::string &gap : gaps_of(sums, "-"))
        words.push_back(std::move(gap));
    const std::string head = printable(of.name).substr(0, style.width) + "\n" + wrapped(words, style.width);
    const auto axis = frequency_axis_for(of.channels);
    return axis ? head + "\n" + drawing(of, *axis, style).text() : head;
}

} // namespace service::chart
