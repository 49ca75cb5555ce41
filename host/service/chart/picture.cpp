#include "service/chart/picture.h"

#include "service/chart/scale.h"
#include "service/chart/title.h"

#include <algorithm>

namespace service::chart {

namespace {

/* Of the picture, in its own units; a viewer scales it. */
constexpr double width = 960, height = 420;
constexpr double left = 64, right = 920, top = 76, bottom = 364;
constexpr double character = 8; /* width of a tick label's character, about */
constexpr double least_bar = 0.5;
constexpr double gap = 1; /* between the bars of neighbours, where they are wide enough for it */

/* Its own ground, light or dark as the viewer asks, so that it can be read wherever it is shown. */
constexpr const char *style = R"(<style>
  svg { font: 13px sans-serif; }
  .ground { fill: #ffffff; } text { fill: #1f2328; } .name { font-size: 18px; font-weight: bold; }
  .grid { stroke: #d0d7de; } .axis { stroke: #57606a; }
  .bar { fill: #0a6ebd; } .dark { fill: #8c959f; } .missing { fill: none; stroke: #8c959f; stroke-dasharray: 3 3; }
  @media (prefers-color-scheme: dark) {
    .ground { fill: #0d1117; } text { fill: #e6edf3; }
    .grid { stroke: #30363d; } .axis { stroke: #8b949e; }
    .bar { fill: #58a6ff; } .dark { fill: #6e7681; }
  }
</style>
)";

std::string number(double value) { return decimal(value, 2); }

std::string attribute(const char *name, const std::string &value)
{
    return std::string(" ") + name + "=\"" + value + "\"";
}

/* XML's three; printable() took out what XML does not allow. */
std::string escaped(const std::string &text)
{
    std::string safe;
    for (const char c : printable(text))
        safe += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    return safe;
}

std::string text_at(double x, double y, const std::string &more, const std::string &text)
{
    return "<text" + attribute("x", number(x)) + attribute("y", number(y)) + more + ">" + escaped(text) + "</text>\n";
}

std::string line_of(const char *kind, double x1, double y1, double x2, double y2)
{
    return "<line" + attribute("class", kind) + attribute("x1", number(x1)) + attribute("y1", number(y1)) +
           attribute("x2", number(x2)) + attribute("y2", number(y2)) + "/>\n";
}

double height_of(const power_scale &scale, double power) { return bottom - scale.share(power) * (bottom - top); }

double place_of(const frequency_axis &axis, std::uint64_t frequency)
{
    return left + axis.share(frequency) * (right - left);
}

std::string listed(const std::vector<std::string> &words)
{
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : ",  ") + word;
    return text;
}

std::string power_axis(const power_scale &scale)
{
    std::string text = text_at(left - 8, top - 14, attribute("text-anchor", "end"), "dBm");
    for (std::size_t tick = 0; tick <= scale.steps; ++tick) {
        const double y = height_of(scale, scale.at(tick));
        text += line_of("grid", left, y, right, y);
        text += text_at(left - 8, y + 4, attribute("text-anchor", "end"), decimal(scale.at(tick), 0));
    }
    return text;
}

std::string frequency_axis_lines(const frequency_axis &axis)
{
    std::string text = line_of("axis", left, bottom, right, bottom);
    for (const frequency_tick &tick : axis.ticks(static_cast<std::size_t>((right - left) / character))) {
        const double x = place_of(axis, tick.frequency);
        text += line_of("axis", x, bottom, x, bottom + 6);
        text += text_at(x, bottom + 22, attribute("text-anchor", "middle"), tick.label);
    }
    return text + text_at((left + right) / 2, height - 12, attribute("text-anchor", "middle"), "frequency, THz");
}

/* A bar as wide as its channel, with what it stands for as its tool tip; an outline where nothing was measured. */
std::string bar_of(const channel &one, const frequency_axis &axis, const power_scale &scale, const figures &sums)
{
    const double from = place_of(axis, *one.lower);
    double wide = place_of(axis, *one.upper) - from;
    wide = std::max(wide > 4 * gap ? wide - gap : wide, least_bar);
    const double y = one.power ? height_of(scale, *one.power) : top;
    const char *const kind = !one.power ? "missing" : is_dark(one, sums) ? "dark" : "bar";
    return "<rect" + attribute("class", kind) + attribute("x", number(from)) + attribute("y", number(y)) +
           attribute("width", number(wide)) + attribute("height", number(bottom - y)) + "><title>" + centre_text(&one) +
           " THz, " + (one.power ? power_text(one.power) + " dBm" : "not measured") + "</title></rect>\n";
}

} // namespace

std::string draw_picture(const monitor &of)
{
    const figures sums = figures_of(of);
    const power_scale scale = power_scale_for(sums);
    std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\"" +
                       attribute("viewBox", "0 0 " + decimal(width, 0) + " " + decimal(height, 0)) +
                       attribute("width", decimal(width, 0)) + attribute("height", decimal(height, 0)) + ">\n<title>" +
                       escaped(of.name) + "</title>\n" + style + "<rect" + attribute("class", "ground") +
                       attribute("width", decimal(width, 0)) + attribute("height", decimal(height, 0)) + "/>\n" +
                       text_at(left, 26, attribute("class", "name"), of.name) +
                       text_at(left, 46, "", listed(title_of(of, sums))) +
                       text_at(left, 64, "", listed(gaps_of(sums, "dashed"))) + power_axis(scale);
    if (const auto axis = frequency_axis_for(of.channels)) {
        for (const channel &one : of.channels)
            if (one.placed())
                text += bar_of(one, *axis, scale, sums);
        text += frequency_axis_lines(*axis);
    } else
        text += line_of("axis", left, bottom, right, bottom);
    return text + "</svg>\n";
}

} // namespace service::chart
