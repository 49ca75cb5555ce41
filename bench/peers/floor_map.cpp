/*
 * usage: floor_map xml|json FILE: the least that the job can cost. It scans for the few words it wants and prints as it
 * goes: no tree, no memory beyond two buffers, no checks.
 */
#include "naming.h"

#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace {

/* The input through a window that slides; what is looked for never spans more than `least` bytes. */
class input
{
  public:
    explicit input(int file) : file_(file) { refill(); }

    /* Moves behind the next `c`; false at the end. */
    bool skip_to(char c)
    {
        for (;;) {
            if (const void *const found = std::memchr(at_, c, static_cast<std::size_t>(end_ - at_))) {
                at_ = static_cast<const char *>(found) + 1;
                if (end_ - at_ < least)
                    refill();
                return true;
            }
            at_ = end_;
            if (!refill())
                return false;
        }
    }

    /* The text up to the next `c`, moving behind it; it stays until the window slides. */
    std::string_view take_to(char c)
    {
        const auto *const stop = static_cast<const char *>(std::memchr(at_, c, static_cast<std::size_t>(end_ - at_)));
        const std::string_view text(at_, stop == nullptr ? 0 : static_cast<std::size_t>(stop - at_));
        at_ = stop == nullptr ? end_ : stop + 1;
        return text;
    }

    std::string_view take_number()
    {
        const char *const start = at_;
        while (*at_ == '-' || (*at_ >= '0' && *at_ <= '9'))
            ++at_;
        return {start, static_cast<std::size_t>(at_ - start)};
    }

    char peek() const { return *at_; }
    void skip(std::ptrdiff_t count) { at_ += count; }

  private:
    static constexpr std::ptrdiff_t least = 512;

    bool refill()
    {
        const auto kept = static_cast<std::size_t>(end_ - at_);
        std::memmove(window_, at_, kept);
        const ssize_t got = read(file_, window_ + kept, sizeof window_ - 1 - kept);
        at_ = window_;
        end_ = window_ + kept + (got > 0 ? got : 0);
        return got > 0;
    }

    int file_;
    char window_[(64 << 10) + 1] = {};
    const char *at_ = window_;
    const char *end_ = window_;
};

class output
{
  public:
    void put(std::string_view text)
    {
        if (sizeof buffer_ - used_ < text.size())
            flush();
        std::memcpy(buffer_ + used_, text.data(), text.size());
        used_ += text.size();
    }

    /* Hundredths with the point put in. */
    void put_power(std::string_view hundredths)
    {
        if (hundredths.front() == '-') {
            put("-");
            hundredths.remove_prefix(1);
        }
        char digits[3] = {'0', '0', '0'};
        if (hundredths.size() < 3) {
            std::memcpy(digits + 3 - hundredths.size(), hundredths.data(), hundredths.size());
            hundredths = {digits, 3};
        }
        put(hundredths.substr(0, hundredths.size() - 2));
        put(".");
        put(hundredths.substr(hundredths.size() - 2));
    }

    void flush()
    {
        if (write(STDOUT_FILENO, buffer_, used_) != static_cast<ssize_t>(used_))
            _exit(1);
        used_ = 0;
    }

  private:
    char buffer_[64 << 10];
    std::size_t used_ = 0;
};

/* The texts of a slice, out of the window's way. */
struct slice {
    char lower[24], upper[24], power[24];
    std::size_t lower_size, upper_size, power_size;

    std::string_view low() const { return {lower, lower_size}; }
    std::string_view up() const { return {upper, upper_size}; }
};

template <std::size_t room> void keep(char (&to)[room], std::size_t &size, std::string_view text)
{
    size = text.size() < room ? text.size() : room;
    std::memcpy(to, text.data(), size);
}

bool keep_leaf(slice &at, std::string_view tag, std::string_view text)
{
    if (tag == "lower-frequency")
        keep(at.lower, at.lower_size, text);
    else if (tag == "upper-frequency")
        keep(at.upper, at.upper_size, text);
    else if (tag == "rx-power")
        keep(at.power, at.power_size, text);
    else
        return false;
    return true;
}

void put_slice_xml(output &out, const slice &at)
{
    out.put("      <channel>\n        <lower-frequency>");
    out.put(at.low());
    out.put("</lower-frequency>\n        <state>\n          <lower-frequency>");
    out.put(at.low());
    out.put("</lower-frequency>\n          <upper-frequency>");
    out.put(at.up());
    out.put("</upper-frequency>\n");
    if (at.power_size != 0) {
        out.put("          <power>");
        out.put_power({at.power, at.power_size});
        out.put("</power>\n");
    }
    out.put("        </state>\n        <upper-frequency>");
    out.put(at.up());
    out.put("</upper-frequency>\n      </channel>\n");
}

void map_xml(input &in, output &out)
{
    slice at = {};
    out.put("<channel-monitors xmlns=\"http://openconfig.net/yang/channel-monitor\">\n");
    while (in.skip_to('<')) {
        const std::string_view tag = in.take_to('>');
        if (tag == "spectrum-slice-power-info") {
            at = {};
        } else if (tag == "/spectrum-slice-power-info") {
            put_slice_xml(out, at);
        } else if (tag == "name") {
            const auto named = peers::monitor_of(std::string(in.take_to('<')).c_str());
            out.put("  <channel-monitor>\n    <name>" + named.name + "</name>\n    <state>\n      <name>" + named.name +
                    "</name>\n      <monitor-port>" + named.port + "</monitor-port>\n    </state>\n    <channels>\n");
        } else if (tag == "/ots-port") {
            out.put("    </channels>\n  </channel-monitor>\n");
        } else if (tag.front() != '/' && in.peek() >= '-' && in.peek() <= '9') {
            keep_leaf(at, tag, in.take_to('<'));
        }
    }
    out.put("</channel-monitors>\n");
}

void put_slice_json(output &out, const slice &at)
{
    out.put("            {\n              \"lower-frequency\": \"");
    out.put(at.low());
    out.put("\",\n              \"state\": {\n                \"lower-frequency\": \"");
    out.put(at.low());
    out.put("\",\n                \"upper-frequency\": \"");
    out.put(at.up());
    if (at.power_size != 0) {
        out.put("\",\n                \"power\": \"");
        out.put_power({at.power, at.power_size});
    }
    out.put("\"\n              },\n              \"upper-frequency\": \"");
    out.put(at.up());
    out.put("\"\n            }");
}

void map_json(input &in, output &out)
{
    constexpr std::string_view monitor_end = "\n          ]\n        }\n      }";
    slice at = {};
    bool first_port = true, first_slice = true;
    out.put("{\n  \"openconfig-channel-monitor:channel-monitors\": {\n    \"channel-monitor\": [");
    while (in.skip_to('"')) {
        const std::string_view key = in.take_to('"');
        if (in.peek() != ':')
            continue;
        in.skip(in.peek() == ':' ? 2 : 0);
        const bool is_text = in.peek() == '"';
        in.skip(is_text ? 1 : 0);
        if (key == "name") {
            const auto named = peers::monitor_of(std::string(in.take_to('"')).c_str());
            out.put(first_port ? "" : monitor_end);
            out.put(first_port ? "\n      {\n" : ",\n      {\n");
            out.put("        \"name\": \"" + named.name + "\",\n        \"state\": {\n          \"name\": \"" +
                    named.name + "\",\n          \"monitor-port\": \"" + named.port +
                    "\"\n        },\n        \"channels\": {\n          \"channel\": [");
            first_port = false;
            first_slice = true;
        } else if (is_text || in.peek() == '-' || (in.peek() >= '0' && in.peek() <= '9')) {
            keep_leaf(at, key, is_text ? in.take_to('"') : in.take_number());
            if (in.peek() == '}') {
                out.put(first_slice ? "\n" : ",\n");
                put_slice_json(out, at);
                first_slice = false;
                at.power_size = 0;
            }
        }
    }
    out.put(first_port ? "" : monitor_end);
    out.put("\n    ]\n  }\n}\n");
}

} // namespace

int main(int argc, char **argv)
{
    const int file = argc == 3 ? open(argv[2], O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0)
        return 1;
    static input in(file);
    static output out;
    if (std::string_view(argv[1]) == "xml")
        map_xml(in, out);
    else
        map_json(in, out);
    out.flush();
    return 0;
}
