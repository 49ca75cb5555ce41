/// Native documents: XML or JSON text, judged by libyang, as records for the store.
#pragma once

#include "device/native_records.h"
#include "device/schema.h"
#include "framework/document.h"

namespace device {

/// Adds what a native document holds to `records`. Throws invalid_document when it is no valid document of the native
/// modules, or when `records` has data of the same module from another document already.
void read_native(const schema &modules, const framework::document_text &from, format written_as,
                 native_records &records);

} // namespace device
