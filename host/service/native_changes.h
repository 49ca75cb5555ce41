/* Changes of the interface configuration: from a native request to what it makes of the stored entries. */
#ifndef SERVICE_NATIVE_CHANGES_H
#define SERVICE_NATIVE_CHANGES_H

#include "dtf.h"

#include "ostore/transaction.h"

#include <optional>
#include <string>
#include <vector>

namespace service {

/* An entry of the interface configuration in its stored form, as it was and as it is to be; none where it is absent. */
struct entry_change {
    std::string active;
    std::string interface;
    std::optional<std::string> before;
    std::optional<std::string> after;

    bool is_change() const { return before != after; }
    /* One line: "create", "delete" or "replace", and the entry's path with its keys. */
    std::string describe() const;
};

/*
 * What a native edit request (a root whose only model is the interface configuration) makes of the entries it names,
 * operation after operation. Throws netconf_error for a request that is none of the interface configuration.
 */
std::vector<entry_change> changes_of(const dtf_datatree &native, const ostore::transaction &txn);

/* Carries changes out; nothing is lasting before the transaction's commit. */
void carry_out(const std::vector<entry_change> &changes, ostore::write_transaction &txn);

} // namespace service

#endif
