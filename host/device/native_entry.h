/// A list entry of the native data as its leaves, and as the flat bytes that the store keeps.
#pragma once

#include "device/flat.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace device {

/// A leaf of an entry. The value is borrowed; none for a leaf of type empty.
struct native_leaf {
    native_tag tag;
    std::optional<std::string_view> value;
};

/// Appends an entry and its leaves to a record.
void add_entry(flat_writer &writer, native_tag root, std::span<const native_leaf> leaves);

/// The flat form of one entry, its leaves in the order of the tags: keys first, as documents want them (RFC 7950,
/// section 7.8.5), and the same bytes for the same content.
std::string entry_of(native_tag root, std::span<const native_leaf> leaves);

/// The value of one of the leaves; throws std::invalid_argument when the leaf is missing or has none, as no key may.
std::string_view key_leaf(std::span<const native_leaf> leaves, native_tag tag);

/// The leaves of a well-formed flat entry, in their order; they point into it. None for empty bytes.
std::vector<native_leaf> leaves_of(std::string_view entry);

/// Hands the entry back when it is one node of the given tag with as many leaves as it says, else throws
/// damaged_record.
std::string_view checked_entry(std::string_view entry, native_tag root);

} // namespace device
