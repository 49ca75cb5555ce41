/*
 * The reporting step: every report goes to the debug log, when its filter wants lines of that level, and, when the
 * request's trace buffer is on, as one line of at most 249 characters to the trace buffer.
 *
 *   debug log     "ERR: DTF: ctx=%p," or "TRC: DTF: ctx=%p," and the message
 *   trace buffer  "#%u: ERR: %s:%d ctx=%p," or "#%u: TRC: ..." and the message: running index, function, source line
 *
 * DTF_ERR(ctx, format, ...) and DTF_TRC(ctx, format, ...) report in the name of the function they stand in;
 * DTF_ERR_AS(function, ctx, format, ...) and DTF_TRC_AS(...) in the name given, for code that several exported
 * functions share. `format` is a literal without a closing newline; the compiler checks it against its arguments.
 * Arguments are evaluated once for each sink that takes the line, so they must have no side effects. Text from outside
 * is only ever an argument.
 *
 * Each place that reports owns one static word, all ones at first, in which the debug-log filter keeps what it knows of
 * that place. In a function template each instantiation is a place of its own.
 *
 * A report that nobody wants costs two tests: dtf_debug_should_log() and trace_on.
 *
 * Compiles alone as C11 and as C++20.
 */
#ifndef DTF_REPORT_H
#define DTF_REPORT_H

#include "dtf.h"

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>

/* Bytes of a trace-buffer line, its terminator included. */
#define DTF_TRACE_LINE_SIZE 250

/* Tag under which a line goes to the trace buffer. */
#define DTF_TRACE_TAG UINT64_C(0x10101000000)

/* Formats one trace-buffer line and hands it over as finished text. Out of line: its buffer burdens no other frame. */
#if defined(__GNUC__)
__attribute__((noinline, cold, unused))
#endif
DTF_PRINTF_LIKE(2, 3) static void dtf_report_trace_line(void *trace_ring, const char *format, ...)
{
    char line[DTF_TRACE_LINE_SIZE];
    va_list arguments;
    va_start(arguments, format);
    (void)vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    _ringlog(trace_ring, DTF_TRACE_TAG, line);
}

/* Of a message's format and up to seven arguments: the format, and the arguments with the comma before them (if any).
 */
#define DTF_REPORT_FORMAT(...) DTF_REPORT_FIRST(__VA_ARGS__, unused)
#define DTF_REPORT_FIRST(first, ...) first
#define DTF_REPORT_ARGUMENTS(...)                                                                                      \
    DTF_REPORT_NINTH(__VA_ARGS__, SOME, SOME, SOME, SOME, SOME, SOME, SOME, NO, )(__VA_ARGS__)
#define DTF_REPORT_NINTH(a, b, c, d, e, f, g, h, ninth, ...) DTF_REPORT_##ninth##_ARGUMENTS
#define DTF_REPORT_NO_ARGUMENTS(format)
#define DTF_REPORT_SOME_ARGUMENTS(format, ...) , __VA_ARGS__

#define DTF_REPORT(function, ctx, level, level_name, log, ...)                                                         \
    do {                                                                                                               \
        static uint32_t dtf_site_word = UINT32_C(0xffffffff);                                                          \
        if (0 != dtf_debug_should_log(&(ctx)->debug_filter, level)) {                                                  \
            _plat_dt_log_filter_adv((ctx)->log, 0, 0, 0, 0, 0, &dtf_site_word,                                         \
                                    level_name ": DTF: ctx=%p," DTF_REPORT_FORMAT(__VA_ARGS__),                        \
                                    (void *)(ctx)DTF_REPORT_ARGUMENTS(__VA_ARGS__));                                   \
        }                                                                                                              \
        if (0 != (ctx)->trace_on) {                                                                                    \
            dtf_report_trace_line(                                                                                     \
                (ctx)->trace_ring, "#%u: " level_name ": %s:%d ctx=%p," DTF_REPORT_FORMAT(__VA_ARGS__),                \
                ret_nc_dtf_trace_index_incr(), function, __LINE__, (void *)(ctx)DTF_REPORT_ARGUMENTS(__VA_ARGS__));    \
        }                                                                                                              \
    } while (0)

#define DTF_ERR_AS(function, ctx, ...) DTF_REPORT(function, ctx, DTF_LEVEL_ERR, "ERR", err_log, __VA_ARGS__)
#define DTF_TRC_AS(function, ctx, ...) DTF_REPORT(function, ctx, DTF_LEVEL_TRC, "TRC", trc_log, __VA_ARGS__)
#define DTF_ERR(ctx, ...) DTF_ERR_AS(__func__, ctx, __VA_ARGS__)
#define DTF_TRC(ctx, ...) DTF_TRC_AS(__func__, ctx, __VA_ARGS__)

#endif
