/// What a document to load is, and whether its text is sound.
#pragma once

#include "framework/document.h"

namespace device {

/// What a document to load is, by its content.
enum class document_kind { native_xml, native_json, inventory };

/// Looks at the document's beginning alone: whether the rest of it is sound is for those to judge who read it. Throws
/// framework::parse_error naming the document when it is neither XML nor JSON.
document_kind kind_of(const framework::document_text &text);

/// Refuses a text that is cut short or not UTF-8, with its place, before parsers that would say something else of it.
/// Of XML its end is left to the parser. Throws framework::parse_error.
void check_text(const framework::document_text &text);

} // namespace device
