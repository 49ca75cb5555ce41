/*
 * Management documents become data trees. A document is one file, XML (NETCONF style) or JSON (RFC 7951), recognised by
 * its content; what it becomes is a virtual root, a node without tag, whose children are the document's top nodes.
 *
 * Nothing unknown is dropped on the way: what has no place in a tree (text between elements, attributes that are not
 * edit operations, a document type) is an error.
 */
#ifndef FRAMEWORK_DOCUMENT_H
#define FRAMEWORK_DOCUMENT_H

#include "arena.h"
#include "dtf.h"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace framework {

/* "FILE:LINE:COLUMN: what" where the text is malformed, "FILE: /path/to/element: what" where its meaning is wrong. */
class parse_error : public std::runtime_error
{
  public:
    /* What the document says may stand in `what`: control characters in it come out as "?", so it stays one line. */
    explicit parse_error(const std::string &what);
};

/* A document that cannot be read at all, whatever is in it: "FILE: cannot read: why". */
class read_error : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/* An attribute (JSON: an annotation) that has no meaning where it stands, or not that value. */
class attribute_error : public parse_error
{
  public:
    enum class kind { unknown, bad };

    attribute_error(const std::string &document, kind fault, std::string element_path, std::string attribute_name,
                    const std::string &what)
        : parse_error(document + ": " + element_path + ": " + what),
          how(fault),
          path(std::move(element_path)),
          attribute(std::move(attribute_name)),
          message(document + ": " + what)
    {
    }

    kind how;
    std::string path; /* of the element that has it, by tags and ordinals */
    std::string attribute;
    std::string message; /* what() without the path */
};

/* The namespace of nodes that can stand for nothing, as in no data is anything of it. */
inline constexpr const char *nowhere_namespace = "urn:chmon:nowhere";

/* What a document is to be: it decides what a leaf without value and an edit operation mean. */
enum class document_use {
    data, /* device data or a reply: an empty JSON text is an empty value; edit operations are errors */
    /*
     * A filter: value-less leaves select; edit operations are checked and ignored. An XML element with other
     * attributes wants data that has them (RFC 6241, 6.2.2): since no data has any, it comes with the
     * nowhere_namespace.
     */
    read,
    edit, /* an edit: value-less leaves are legal; edit operations are set and inherited (edit_operations.h) */
};

struct document_options {
    document_use use = document_use::data;
    std::size_t size_limit = std::size_t{1} << 30; /* bytes */
    std::size_t depth_limit = 500;                 /* levels of elements; a top container is level 1 */
};

/*
 * A document's text as both parsers want it: writable (they work in place, so it can be read once only), `padding` zero
 * bytes behind it. Trees point into it; the readers hand it to the tree's arena.
 */
struct document_text {
    static constexpr std::size_t padding = 64;

    std::string name; /* for messages: the file's name */
    std::shared_ptr<char[]> bytes;
    std::size_t size = 0;

    std::string_view view() const { return {bytes.get(), size}; }
};

/* A copy of `text` under a name for messages. */
document_text make_document_text(std::string_view text, std::string name);

/* A file's text; "-" is standard input. Throws read_error, or parse_error when it is over the limit. */
document_text read_document_text(const std::string &path, std::size_t size_limit);

enum class document_format { xml, json };

/* Told by the first character that is not white space. Throws parse_error when it is neither. */
document_format format_of(const document_text &text);

/* Bytes of the byte order mark that the text may begin with. */
std::size_t byte_order_mark_size(const document_text &text);

/* The text behind it. */
inline std::string_view content_of(const document_text &text) { return text.view().substr(byte_order_mark_size(text)); }

/* The document's tree: a virtual root whose children are the top nodes. Throws parse_error. */
dtf_datatree parse_document(const document_text &text, arena &memory, const document_options &options = {});

/* read_document_text() and parse_document() in one. */
dtf_datatree read_document(const std::string &path, arena &memory, const document_options &options = {});

/* For the readers: bytes of the longest prefix that is UTF-8, for the message about what follows it. */
std::size_t valid_utf8_prefix(std::string_view text);

/* For the readers: "NAME:LINE:COLUMN: what" for the place `offset` bytes into the text, both counted from 1. */
[[noreturn]] void fail_at(const document_text &text, std::size_t offset, const std::string &what);
/* The same where the line is known already. */
[[noreturn]] void fail_at(const document_text &text, std::size_t offset, std::ptrdiff_t line, const std::string &what);

} // namespace framework

#endif
