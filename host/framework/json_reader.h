/*
 * JSON documents by the rules of RFC 7951, parsed by simdjson; edit operations are annotations by RFC 7952
 * ("@": {"ietf-netconf:operation": "delete"} in an object, "@leaf": {...} beside a leaf).
 */
#ifndef FRAMEWORK_JSON_READER_H
#define FRAMEWORK_JSON_READER_H

#include "document.h"

namespace framework {

/*
 * See parse_document(). An array becomes a run of siblings. Numbers and booleans keep their source text. In requests
 * null, [null] and "" are leaves without value; in data [null] is (the type `empty`), "" is an empty value and null an
 * error. A module that is not ours has its own name for a namespace, so that it counts as foreign.
 */
dtf_datatree read_json(const document_text &text, arena &memory, const document_options &options = {});

} // namespace framework

#endif
