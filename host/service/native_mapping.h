/* Native data becomes OpenConfig data. */
#ifndef SERVICE_NATIVE_MAPPING_H
#define SERVICE_NATIVE_MAPPING_H

#include "service/format.h"
#include "service/plugin.h"
#include "service/walk_options.h"

#include "framework/arena.h"
#include "framework/text_sink.h"

#include <cstdint>
#include <optional>
#include <string>

namespace service {

/*
 * Walks every top container below `native`, a root without a tag, each through the top walker of its model; the result
 * is a root of the same form. Where both models are there, what they tell of one monitor is one entry, the interface
 * configuration's part first. Throws wrong_model (`name` is the document's) and walk_fault.
 *
 * The result's nodes are in `memory` and use texts of `native` and of the plug-in. Channels are packed
 * (packed_entries.h).
 */
dtf_datatree map_native(const plugin &mapper, const dtf_datatree &native, const std::string &name,
                        framework::arena &memory, std::uint32_t kind, const walk_options &walks);

struct map_options {
    /* The native document, XML or JSON; "-" is standard input. */
    std::string document;
    /* How the result is written; as the document is where not given. */
    std::optional<document_format> format;
    /* The kind of request that the data answers; operational data is mapped for kind 10 alone. */
    std::uint32_t kind = 10;
    /* Judge the document and the result by the YANG modules. */
    bool validate = false;
    walk_options walks;
};

/* Reads a native document, maps it, and writes the OpenConfig document once all of it is known to be good. */
void map_document(const plugin &mapper, const map_options &options, const framework::text_receiver &out);

} // namespace service

#endif
