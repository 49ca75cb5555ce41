/* What every command lets its user choose about the walks it makes. */
#ifndef SERVICE_WALK_OPTIONS_H
#define SERVICE_WALK_OPTIONS_H

#include "framework/sinks.h"

#include <iosfwd>

namespace service {

struct walk_options {
    /* The debug log, written while the walk runs. */
    framework::log_level log = framework::log_level::off;
    /* The trace buffer, written out after each walk. */
    bool trace = false;
    /* Where both go; null drops them. Must outlive the walks. */
    std::ostream *diagnostics = nullptr;
};

} // namespace service

#endif
