/* A get as a command: a filter document in, a reply document out. */
#ifndef SERVICE_GET_H
#define SERVICE_GET_H

#include "service/format.h"
#include "service/plugin.h"
#include "service/read.h"
#include "service/walk_options.h"

#include "framework/text_sink.h"

#include "device/folder.h"

#include <iosfwd>
#include <optional>
#include <string>

namespace service {

struct get_options {
    /* A document with a subtree filter (RFC 6241, section 6), or its content, XML or JSON; "-" is standard input.
     * Everything where there is none. */
    std::optional<std::string> filter;
    /* How the reply is written; where not given as the filter is, XML without one. */
    std::optional<document_format> format;
    /* The configuration alone. */
    bool config_only = false;
    /* Judge the reply by the YANG modules. */
    bool validate = false;
    /* Where to tell what the steps cost; null for nowhere. */
    std::ostream *stats = nullptr;
    walk_options walks;
};

/* Answers a get from what the device holds now. Throws netconf_error. */
void get_document(const plugin &mapper, const device::folder &device, const get_options &options,
                  const framework::text_receiver &out);

/* The same as one text. */
std::string get_document(const plugin &mapper, const device::folder &device, const get_options &options);

} // namespace service

#endif
