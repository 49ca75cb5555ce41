/* The two sinks of a request's reports: the debug log, written at once, and the trace buffer, read afterwards. */
#ifndef FRAMEWORK_SINKS_H
#define FRAMEWORK_SINKS_H

#include "dtf.h"

#include <cstdarg>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace framework {

/* Which lines the debug log wants; each level includes the ones before it. */
enum class log_level { off, err, trc };

/* The filter word for a level: bit n stands for the plug-in's level n. */
dtf_debug_filter filter_for(log_level level);

/* Writes finished lines to a stream. */
class debug_log
{
  public:
    /* `stream` may be null: then all lines are dropped. It must outlive the log. */
    explicit debug_log(std::ostream *stream) : stream_(stream) {}

    void write_line(std::string_view line);

    /* Formats as vprintf does, whatever the length. */
    void write_formatted(const char *format, std::va_list arguments) __attribute__((format(printf, 2, 0)));

  private:
    std::ostream *stream_;
    /* Kept between lines so that long ones do not allocate each time. */
    std::string long_line_;
};

/* The last lines reported, the oldest overwritten by the newest. */
class trace_ring
{
  public:
    explicit trace_ring(std::size_t capacity) : capacity_(capacity) {}

    void append(const char *line);

    /* The lines kept, oldest first. */
    std::vector<std::string_view> lines() const;

    /* Lines that were overwritten. */
    std::size_t lost() const { return appended_ - lines_.size(); }

  private:
    std::size_t capacity_;
    std::size_t appended_ = 0;
    std::vector<std::string> lines_;
};

} // namespace framework

#endif
