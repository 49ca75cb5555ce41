/* How documents are written down, for those who know only this folder. */
#ifndef SERVICE_FORMAT_H
#define SERVICE_FORMAT_H

#include "framework/document.h"

#include <stdexcept>
#include <string>

namespace service {

using framework::document_format;

/* The format named "xml" or "json". Throws std::invalid_argument for another name. */
inline document_format format_named(const std::string &name)
{
    if (name == "xml")
        return document_format::xml;
    if (name == "json")
        return document_format::json;
    throw std::invalid_argument("unknown format " + name);
}

} // namespace service

#endif
