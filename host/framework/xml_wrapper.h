/*
 * NETCONF's wrappers, <data> and <config> of RFC 6241: what stands in one is a document by itself to those that know no
 * wrappers.
 */
#ifndef FRAMEWORK_XML_WRAPPER_H
#define FRAMEWORK_XML_WRAPPER_H

#include "document.h"

#include <optional>
#include <string>

namespace framework {

/*
 * What stands in the wrapper around a document, every line where it was; none where there is no wrapper. Namespaces
 * that the wrapper declares are declared by the elements in it instead. Throws parse_error for what is malformed, as
 * far as that is looked at, and for a wrapper with other attributes.
 */
std::optional<std::string> without_wrapper(const document_text &text);

} // namespace framework

#endif
