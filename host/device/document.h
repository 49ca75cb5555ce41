/// A document as it was given: its name for messages, its text, and how it is written down.
#pragma once

#include "device/schema.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace device {

/// Larger documents are refused before they are read: a spectrum of a million slices has some 200 MiB as XML.
inline constexpr std::size_t largest_document = std::size_t{1} << 30;

struct document {
    std::string name;
    std::string text;
};

/// What a document to load is, by its content.
enum class document_kind { native_xml, native_json, inventory };

/// Reads a file or a pipe, as "-" standard input; a byte order mark is passed over. Throws std::runtime_error naming
/// the file when it cannot be read, is a folder or too large.
document read_document(const std::filesystem::path &file);

/// XML or JSON by the first character that is not white space. Throws invalid_document naming the document when it is
/// neither.
format format_of(std::string_view text, std::string_view name);

/// The same, and an inventory by its first member. Looks at the document's beginning alone: whether the rest of it is
/// sound is for those to judge who read it.
document_kind kind_of(std::string_view text, std::string_view name);

/// Refuses a text that is cut short or not UTF-8, with its line, before parsers that would say something else of it. Of
/// XML its end is left to the parser. Throws invalid_document.
void check_text(const document &from);

/// What stands in NETCONF's <data>, where an XML document is that with no other attribute than its namespace; blanks
/// keep the lines as they are.
std::optional<std::string> without_wrapper(const std::string &xml);

} // namespace device
