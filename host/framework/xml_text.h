/* Character data of XML documents (W3C XML 1.0, sections 2.2, 2.11 and 4.6), decoded. */
#ifndef FRAMEWORK_XML_TEXT_H
#define FRAMEWORK_XML_TEXT_H

#include "document.h"

#include <string>
#include <string_view>

namespace framework {

/* Refuses what is no UTF-8: another encoding (declared or seen), or bytes that are none. */
void check_encoding(const document_text &text);

/* How decode_xml() fails: the text of the message. */
struct xml_text_error {
    std::string what;
};

/*
 * The text with its line ends made one kind and its character and entity references replaced; a CDATA section has no
 * references. Throws xml_text_error for a reference that is none of XML's own.
 */
std::string decode_xml(std::string_view text, bool has_references);

/* Without the white space around it. */
std::string_view trim_xml(std::string_view text);

} // namespace framework

#endif
