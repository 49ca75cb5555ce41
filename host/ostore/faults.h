/*
 * Result codes of this library's C operations: one code space for the client (0x8081c2xx), one for the parcel library
 * (0x8081c3xx). Callers pass them on unchanged; fault_text() gives the words.
 */
#ifndef OSTORE_FAULTS_H
#define OSTORE_FAULTS_H

#include "dtf.h"

namespace ostore {

/* The plug-in's own answer when the presence test of the client library fails; its text is the client's to give. */
constexpr faultno fault_no_client = 0x8081c200u;
/* A null or unusable argument of a client operation. */
constexpr faultno fault_client_arguments = 0x8081c202u;
/* No database is being served by this process. */
constexpr faultno fault_not_served = 0x8081c204u;
constexpr faultno fault_item_not_found = 0x8081c206u;
/* The full path of an item is longer than a key of the store. */
constexpr faultno fault_path_too_long = 0x8081c208u;
/* The stored bytes are shorter than a parcel header: no reader could be given them. */
constexpr faultno fault_item_damaged = 0x8081c20au;
constexpr faultno fault_client_memory = 0x8081c20cu;
/* The store could not be read. */
constexpr faultno fault_read_failed = 0x8081c20eu;

/* A null argument of a parcel operation. */
constexpr faultno fault_parcel_arguments = 0x8081c300u;
/* The bytes do not begin as a parcel does. */
constexpr faultno fault_parcel_header = 0x8081c302u;
/* A parcel of a format version this library does not read. */
constexpr faultno fault_parcel_version = 0x8081c304u;
/* The record ends in the midst of a token, or without an end token. */
constexpr faultno fault_parcel_truncated = 0x8081c306u;
/* A token whose value has not the length of its type, or a text that is not terminated where it ends. */
constexpr faultno fault_parcel_token = 0x8081c308u;
/* A group closed that was not opened, or left open at the end of the record. */
constexpr faultno fault_parcel_group = 0x8081c30au;
/* A token was asked of a walk that has ended or was never started. */
constexpr faultno fault_parcel_ended = 0x8081c30cu;
constexpr faultno fault_parcel_memory = 0x8081c30eu;

/* Text of a code of either space, one line, static; null for any other code. */
const char *fault_text(faultno code) noexcept;

} // namespace ostore

#endif
