/* A document of another model than the one wanted. */
#ifndef SERVICE_WRONG_MODEL_H
#define SERVICE_WRONG_MODEL_H

#include "service/netconf_error.h"

#include "dtf.h"

#include <stdexcept>
#include <string>

namespace service {

/* One line: document, element and its namespace, what was expected in its place. */
class wrong_model : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;

    wrong_model(const std::string &document, const dtf_datatree &top, const std::string &expected)
        : std::runtime_error(
              one_line(document + ": /" + top.tag + ": " +
                       (top.ns == nullptr ? "without namespace" : "in namespace " + std::string(top.ns)) +
                       "; expected " + expected))
    {
    }
};

} // namespace service

#endif
