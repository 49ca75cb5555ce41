/* Native data comes out of a device's store. */
#ifndef SERVICE_FETCH_H
#define SERVICE_FETCH_H

#include "service/native_request.h"

#include "framework/arena.h"

#include "device/native_reader.h"

namespace service {

/*
 * What a native request asks for (native_request.h), as far as the device has it: a root without a tag with one top
 * container per model that has any of it. It holds what was asked and the keys on the way to it, nothing else, and
 * records that hold none of it are not read. Entries come in the order of the store.
 *
 * The nodes are in `memory`; their values point into the store, so they live as long as the reader's transaction.
 */
dtf_datatree fetch_native(const device::native_reader &reader, const native_wishes &wishes, framework::arena &memory);

/* What of a device's native data: for fetch_all(). */
struct native_parts {
    bool configuration = true;
    bool operational = true;
};

/* All that the device has, in the same form. */
dtf_datatree fetch_all(const device::native_reader &reader, native_parts parts, framework::arena &memory);

} // namespace service

#endif
