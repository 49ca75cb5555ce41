/// Loading documents into a device: native ones and inventories.
#pragma once

#include "device/folder.h"
#include "device/schema.h"
#include "framework/document.h"

#include <optional>
#include <vector>

namespace device {

/// What a load replaced; none where the documents did not touch it.
struct load_summary {
    std::optional<std::size_t> monitors;   ///< names in the inventory
    std::optional<std::size_t> interfaces; ///< entries of the interface configuration
    std::optional<std::size_t> ports;      ///< OTS ports
    std::size_t slices = 0;                ///< slices of all these ports
};

/// Replaces, for each kind of data that the documents hold, all that the device has of it. The documents are told apart
/// by their content and judged before anything is stored; then all of them go into one transaction. Throws
/// invalid_document for one that is not valid, and for two of one kind, framework::parse_error for one that is not well
/// formed; after any error the device is as it was.
load_summary load(folder &into, const schema &modules, const std::vector<framework::document_text> &documents);

} // namespace device
