/* Data trees as XML documents, NETCONF style. */
#ifndef FRAMEWORK_XML_WRITER_H
#define FRAMEWORK_XML_WRITER_H

#include "dtf.h"
#include "node_notes.h"
#include "text_sink.h"

#include <string>

namespace framework {

struct xml_write_options {
    bool pretty = true; /* a line per element, two columns per level, a line end after the last */
    note_teller notes;  /* what stands beside nodes, as attributes; without it nothing does */
};

/*
 * Writes a tree. `root` is the top element itself, or a virtual root (no tag) with the top elements below it: where
 * that is not exactly one, they are wrapped in NETCONF's <data>.
 *
 * A namespace is declared where it changes. Bytes of a value that are no UTF-8, and characters that XML cannot hold,
 * come out as U+FFFD; white space around a value comes out as character references, so that reading gives it back.
 */
void write_xml(const text_receiver &out, const dtf_datatree &root, const xml_write_options &options = {});

/* Appends to a string. */
inline void write_xml(std::string &out, const dtf_datatree &root, const xml_write_options &options = {})
{
    write_xml(append_to(out), root, options);
}

} // namespace framework

#endif
