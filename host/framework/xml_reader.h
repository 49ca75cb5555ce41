/*
 * XML documents. The root element is a top container itself, or one of NETCONF's wrappers (RFC 6241)
 * around any number of them: `data`, `config`, or `filter` of type subtree.
 */
#ifndef FRAMEWORK_XML_READER_H
#define FRAMEWORK_XML_READER_H

#include "document.h"

namespace framework {

/*
 * See parse_document(). White space around a leaf's text is not part of the value, unless it is written as a character
 * reference: clients pretty-print. An element without namespace gets none (null), one of an unknown module its URI.
 */
dtf_datatree read_xml(const document_text &text, arena &memory, const document_options &options = {});

} // namespace framework

#endif
