/* One walk of the plug-in, and what it says when it fails. */
#ifndef SERVICE_WALK_H
#define SERVICE_WALK_H

#include "framework/mapping.h"
#include "service/walk_options.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace service {

/* A walk ended with a fault. what() is one line: the code's name and text, then error-path and error-tag if known. */
class walk_fault : public std::runtime_error
{
  public:
    walk_fault(faultno code, std::string path, std::string tag);

    faultno code() const { return code_; }
    /* Where in the request it happened, in OpenConfig terms and with keys; empty where that is not known. */
    const std::string &path() const { return path_; }
    /* The element that caused it; empty where none did. */
    const std::string &tag() const { return tag_; }

  private:
    faultno code_;
    std::string path_;
    std::string tag_;
};

/* What a mapping is told of the user's choices; the rest of it is the caller's. */
framework::mapping_options mapping_options_for(const walk_options &choices, framework::direction way,
                                               std::uint32_t kind);

/* Runs a walk and writes its trace buffer out. Throws walk_fault when it fails. */
void run_walk(framework::mapping &walk, framework::walker top, const dtf_datatree &in, dtf_datatree &out,
              const walk_options &choices);

} // namespace service

#endif
