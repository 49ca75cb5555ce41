/*
 * What goes wrong with a store, in one exception: a line for people that names the file and the cause, and a kind for
 * programs.
 */
#ifndef OSTORE_STORE_ERROR_H
#define OSTORE_STORE_ERROR_H

#include <stdexcept>
#include <string>

namespace ostore {

enum class store_fault {
    missing,    /* there is no such file */
    foreign,    /* no store, or another program's, or one of another format version */
    damaged,    /* a store of ours whose bytes are not sound */
    permission, /* the file system refuses */
    full,       /* disk or map is full, or the disk fails: nothing was stored */
    bad_key,    /* an empty key, or one longer than a store's keys may be */
    misuse,     /* a second opening or a nested transaction that would end in a deadlock; an unknown table */
    failed      /* anything else: the text says what */
};

class store_error : public std::runtime_error
{
  public:
    store_error(store_fault kind, const std::string &text) : std::runtime_error(text), kind_(kind) {}

    store_fault kind() const noexcept { return kind_; }

  private:
    store_fault kind_;
};

/* Throws the store_error for a code of LMDB or errno: "store <file>: cannot <doing>: <cause>". */
[[noreturn]] void throw_store_error(const std::string &file, const char *doing, int code);

/* The same, unless the code is 0. */
inline void check_store(const std::string &file, const char *doing, int code)
{
    if (code != 0)
        throw_store_error(file, doing, code);
}

} // namespace ostore

#endif
