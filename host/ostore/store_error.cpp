#include "ostore/store_error.h"

#include <lmdb.h>

#include <cerrno>
#include <system_error>

namespace ostore {

namespace {

struct cause {
    store_fault kind;
    std::string text;
};

cause cause_of(int code)
{
    switch (code) {
    case ENOENT:
        return {store_fault::missing, "no such file"};
    case MDB_INVALID:
        return {store_fault::foreign, "the file is no store"};
    case MDB_VERSION_MISMATCH:
        return {store_fault::foreign, "the file was written by another version of the database library"};
    case MDB_INCOMPATIBLE:
        return {store_fault::foreign, "the file holds another program's data"};
    case MDB_CORRUPTED:
    case MDB_PAGE_NOTFOUND:
    case MDB_PANIC:
        return {store_fault::damaged, "the file is damaged"};
    case EACCES:
    case EPERM:
    case EROFS:
        return {store_fault::permission, std::generic_category().message(code)};
    case MDB_MAP_FULL:
        return {store_fault::full, "the store is full: its map is used up"};
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return {store_fault::full, std::generic_category().message(code)};
    case EIO: /* what LMDB makes of a write that ended short */
        return {store_fault::full, "the disk is full or fails"};
    case MDB_READERS_FULL:
        return {store_fault::failed, "too many readers at once"};
    case MDB_BAD_VALSIZE:
        return {store_fault::failed, "the value is too large"};
    default:
        return {store_fault::failed, code > 0 ? std::generic_category().message(code) : mdb_strerror(code)};
    }
}

} // namespace

void throw_store_error(const std::string &file, const char *doing, int code)
{
    const cause why = cause_of(code);
    throw store_error(why.kind, "store " + file + ": cannot " + doing + ": " + why.text);
}

} // namespace ostore
