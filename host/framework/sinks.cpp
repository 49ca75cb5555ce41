#include "sinks.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <ostream>

namespace framework {

dtf_debug_filter filter_for(log_level level)
{
    constexpr std::uint32_t err = 1U << DTF_LEVEL_ERR;
    constexpr std::uint32_t trc = 1U << DTF_LEVEL_TRC;
    switch (level) {
    case log_level::err:
        return {err};
    case log_level::trc:
        return {err | trc};
    case log_level::off:
        break;
    }
    return {0};
}

void debug_log::write_line(std::string_view line)
{
    if (stream_ == nullptr)
        return;
    stream_->write(line.data(), static_cast<std::streamsize>(line.size()));
    stream_->put('\n');
}

void debug_log::write_formatted(const char *format, std::va_list arguments)
{
    std::array<char, 512> line;
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < line.size()) {
        write_line({line.data(), static_cast<std::size_t>(length)});
    } else if (length >= 0) {
        /* Texts of the input have no bound: the whole line is wanted all the same. */
        long_line_.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(long_line_.data(), long_line_.size(), format, again);
        write_line({long_line_.data(), static_cast<std::size_t>(length)});
    }
    va_end(again);
}

void trace_ring::append(const char *line)
{
    if (capacity_ == 0 || line == nullptr)
        return;
    if (lines_.size() < capacity_)
        lines_.emplace_back(line);
    else
        lines_[appended_ % capacity_] = line;
    ++appended_;
}

std::vector<std::string_view> trace_ring::lines() const
{
    std::vector<std::string_view> ordered;
    ordered.reserve(lines_.size());
    for (std::size_t i = 0; i < lines_.size(); ++i)
        ordered.push_back(lines_[(appended_ + i) % lines_.size()]);
    return ordered;
}

} // namespace framework

extern "C" {

int dtf_debug_should_log(struct dtf_debug_filter *filter, uint32_t level)
{
    return filter != nullptr && level < 32 && ((filter->levels >> level) & 1U) != 0;
}

void _plat_dt_log_filter_adv(void *log, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t *,
                             const char *format, ...)
{
    if (log == nullptr || format == nullptr)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    try {
        static_cast<framework::debug_log *>(log)->write_formatted(format, arguments);
    } catch (...) {
        /* A log line that cannot be written is lost; it must not take the request with it. */
    }
    va_end(arguments);
}

uint32_t ret_nc_dtf_trace_index_incr(void)
{
    static std::atomic<uint32_t> index{0};
    return ++index;
}

void _ringlog(void *ring, uint64_t, const char *line)
{
    if (ring == nullptr)
        return;
    try {
        static_cast<framework::trace_ring *>(ring)->append(line);
    } catch (...) {
        /* As for the debug log. */
    }
}
}
