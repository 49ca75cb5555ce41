/* What a device holds, as documents of its own models. */
#ifndef SERVICE_NATIVE_DOCUMENT_H
#define SERVICE_NATIVE_DOCUMENT_H

#include "service/fetch.h"
#include "service/format.h"

#include "device/folder.h"

#include <string>

namespace service {

/*
 * The native data of a device as a document, judged by the YANG modules before it is handed out: throws
 * device::invalid_document when the store holds what no document may.
 */
std::string native_document(const device::folder &device, native_parts parts, document_format format);

} // namespace service

#endif
