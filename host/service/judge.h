/* Documents written, and judged by the YANG modules. */
#ifndef SERVICE_JUDGE_H
#define SERVICE_JUDGE_H

#include "service/format.h"

#include "framework/text_sink.h"

#include "dtf.h"

#include <string>

namespace service {

/* Writes a tree, whose root has no tag, piece by piece: the text as a whole would be the largest part of a large read's
 * memory. */
void write_document(const dtf_datatree &tree, document_format format, const framework::text_receiver &out);

/* The same as one text, for those who need all of it. */
std::string write_document(const dtf_datatree &tree, document_format format);

/* Judges a native document. Throws device::invalid_document. */
void judge_native(const framework::document_text &text, document_format format);

/* How much of the data a reply was asked for. */
enum class reply_extent { whole, part };

/*
 * Judges a reply: as a complete tree where it is the whole and every monitor has the configuration that its key refers
 * to, else its names, types and keys. Throws device::invalid_document.
 */
void judge_reply(const dtf_datatree &reply, reply_extent extent, const std::string &text, document_format format);

} // namespace service

#endif
