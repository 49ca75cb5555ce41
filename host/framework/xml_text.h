/* Character data of XML documents (W3C XML 1.0, sections 2.2, 2.11 and 4.6), decoded in place. */
#ifndef FRAMEWORK_XML_TEXT_H
#define FRAMEWORK_XML_TEXT_H

#include "document.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace framework {

/*
 * Refuses what is no XML text in UTF-8: another encoding (declared or seen), control characters. Everything behind it
 * may then rely on bytes. Returns the number of line ends.
 */
std::ptrdiff_t check_xml_text(const document_text &text);

/* How decode_xml() fails: the text of the message. */
struct xml_text_error {
    std::string what;
};

/*
 * Takes the white space around `text` away and replaces character and entity references and line ends, all in place;
 * the result is NUL-terminated. Throws xml_text_error for a reference that is none of XML's own.
 */
std::string_view decode_xml(char *text);

/* Appends a piece of a longer text, decoded but with its white space; a CDATA section has no references. */
void append_decoded_xml(std::string &to, std::string_view piece, bool is_cdata);

/* Without the white space around it. */
std::string_view trim_xml(std::string_view text);

} // namespace framework

#endif
