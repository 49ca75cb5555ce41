/* Data trees as JSON documents (RFC 7951). */
#ifndef FRAMEWORK_JSON_WRITER_H
#define FRAMEWORK_JSON_WRITER_H

#include "dtf.h"
#include "node_notes.h"
#include "text_sink.h"

#include <string>

namespace framework {

struct json_write_options {
    bool pretty = true; /* a line per member, two columns per level, a line end after the last */
    note_teller notes;  /* what stands beside nodes, as annotations (RFC 7952); without it nothing does */
};

/*
 * Writes a tree as one object. `root` is its one top node, or a virtual root (no tag) with the top nodes below it.
 *
 * Member names have their module at the top and where it changes; a namespace that is no module's of ours stands for
 * its module's name. Lists (schema_facts) and everything that is there more than once become arrays, also where the
 * entries do not stand together. Which leaves are bare numbers or booleans is schema_facts' knowledge too; one whose
 * value is none is written as a string. A leaf without value is [null], a container or list entry {}. Bytes of a value
 * that are no UTF-8 come out as U+FFFD.
 */
void write_json(const text_receiver &out, const dtf_datatree &root, const json_write_options &options = {});

/* Appends to a string. */
inline void write_json(std::string &out, const dtf_datatree &root, const json_write_options &options = {})
{
    write_json(append_to(out), root, options);
}

} // namespace framework

#endif
