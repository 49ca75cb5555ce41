/*
 * Bytes as LMDB takes and gives them. For this library's own files.
 */
#ifndef OSTORE_LMDB_VALUE_H
#define OSTORE_LMDB_VALUE_H

#include <lmdb.h>

#include <string_view>

namespace ostore {

/* LMDB does not write through what it is given to read; its type just does not say so. */
inline MDB_val as_value(std::string_view text) { return {text.size(), const_cast<char *>(text.data())}; }

inline std::string_view as_view(const MDB_val &value)
{
    return {static_cast<const char *>(value.mv_data), value.mv_size};
}

} // namespace ostore

#endif
