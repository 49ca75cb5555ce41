#include "service/walk.h"

#include "service/netconf_error.h"

#include "framework/faults.h"

#include <cinttypes>
#include <cstdio>
#include <ostream>
#include <utility>

namespace service {

namespace {

std::string code_name(faultno code)
{
    if (const char *const name = framework::fault_name(code))
        return name;
    char hex[sizeof "0x00000000"];
    std::snprintf(hex, sizeof hex, "0x%08" PRIx32, code);
    return hex;
}

std::string describe(faultno code, const std::string &path, const std::string &tag)
{
    std::string line = code_name(code) + ": " + fault_strerror(code);
    if (!path.empty())
        line += "; error-path " + one_line(path);
    if (!tag.empty())
        line += "; error-tag " + one_line(tag);
    return line;
}

void write_trace(const framework::trace_ring &trace, std::ostream &stream)
{
    if (trace.lost() != 0)
        stream << "(" << trace.lost() << " earlier lines of the trace buffer were overwritten)\n";
    for (const std::string_view line : trace.lines())
        stream << line << '\n';
}

} // namespace

walk_fault::walk_fault(faultno code, std::string path, std::string tag)
    : std::runtime_error(describe(code, path, tag)), code_(code), path_(std::move(path)), tag_(std::move(tag))
{
}

framework::mapping_options mapping_options_for(const walk_options &choices, framework::direction way,
                                               std::uint32_t kind)
{
    framework::mapping_options options;
    options.way = way;
    options.request_kind = kind;
    options.log = choices.log;
    options.log_stream = choices.diagnostics;
    options.trace = choices.trace;
    return options;
}

void run_walk(framework::mapping &walk, framework::walker top, const dtf_datatree &in, dtf_datatree &out,
              const walk_options &choices)
{
    const faultno result = walk.run(top, in, out);
    if (choices.trace && choices.diagnostics != nullptr)
        write_trace(walk.trace(), *choices.diagnostics);
    if (result != FAULT_SUCCESS)
        throw walk_fault(result, walk.error_path(), walk.error_tag());
    /* A plug-in that leaves something open would mislead the next one; ours is known not to, so this is its fault. */
    if (!walk.balanced())
        throw std::logic_error("the plug-in ended its walk with entries left open");
}

} // namespace service
