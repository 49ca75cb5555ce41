#include "ostore/faults.h"

namespace ostore {

const char *fault_text(faultno code) noexcept
{
    switch (code) {
    case fault_no_client:
        return "system-database client library is not present";
    case fault_client_arguments:
        return "invalid argument of a system-database call";
    case fault_not_served:
        return "no system database is served";
    case fault_item_not_found:
        return "item not found";
    case fault_path_too_long:
        return "item path is too long";
    case fault_item_damaged:
        return "item is damaged: shorter than a record's header";
    case fault_client_memory:
        return "no memory for the item";
    case fault_read_failed:
        return "system database cannot be read";
    case fault_parcel_arguments:
        return "invalid argument of a parcel call";
    case fault_parcel_header:
        return "not a parcel";
    case fault_parcel_version:
        return "parcel of an unknown format version";
    case fault_parcel_truncated:
        return "parcel is truncated";
    case fault_parcel_token:
        return "malformed parcel token";
    case fault_parcel_group:
        return "unbalanced groups in parcel";
    case fault_parcel_ended:
        return "parcel walk has ended";
    case fault_parcel_memory:
        return "no memory for a parcel token";
    default:
        return nullptr;
    }
}

} // namespace ostore
