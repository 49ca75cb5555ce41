/*
 * Element and member names of a document, each kept once: equal names give the same entry, and equal tags the same
 * pointer.
 */
#ifndef FRAMEWORK_NAME_TABLE_H
#define FRAMEWORK_NAME_TABLE_H

#include "arena.h"

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace framework {

struct name_entry {
    std::string_view text;   /* as written, NUL-terminated: "tag", "prefix:tag" or "module:tag" */
    std::string_view prefix; /* before the colon; empty without one */
    const char *tag;         /* behind it; the same pointer for all names of that tag */
    const char *ns;          /* of the prefix as a module name (JSON); null without prefix */
    name_entry *plain;       /* the entry of the tag alone */
    name_entry *next;        /* the entry that was asked for after this one last */
    std::uint64_t stamp;     /* free for the reader; 0 at first */
};

/* All names must be UTF-8. */
class name_table
{
  public:
    explicit name_table(arena &memory);

    /*
     * The entry most likely to be asked for next. Documents repeat themselves: in a list the same names come in the
     * same order, so that a comparison with it spares the search nearly always.
     */
    name_entry *guess() const { return last_->next; }

    /* Tells that the guess was right. */
    name_entry *take_guess() { return last_ = last_->next; }

    /* The entry of a name, made when it is new. Null where it is no name: "", ":a", "a b", "1a", "a:b:". */
    name_entry *find(std::string_view name);

    /* The one pointer for a namespace URI: that of schema_facts where the module is ours, else a copy. */
    const char *namespace_of(std::string_view uri);

    /* The namespace of a module by its name; of one that is not ours the name itself. */
    const char *module_namespace(std::string_view module);

  private:
    name_entry *make(std::string_view name);

    arena &memory_;
    name_entry start_ = {};
    name_entry *last_ = &start_;
    std::unordered_map<std::string_view, name_entry> entries_;
    std::unordered_map<std::string_view, const char *> namespaces_;
};

} // namespace framework

#endif
