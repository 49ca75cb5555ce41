/// The native data of a device in its database: interface configuration and operational data of the OTS ports.
///
/// table                     key                            value
/// interface-configuration   active NUL interface-name      one flat entry: the list entry and its leaves
/// ots-port                  name                           number of slices (32 bits, machine order), then one flat
///                                                          entry: the port and its own leaves
/// spectrum-slice            name NUL number of the chunk   flat entries of up to slices_per_record slices each
///                           (32 bits, big-endian)
///
/// So a read of one monitor touches that monitor's records alone, and a read without spectrum no slice at all; packed
/// together, slices cost neither a key nor a lookup each. The form of the values is told in flat.h; whoever changes
/// one of these forms raises the store's format number (ostore/database.cpp).
#pragma once

#include "device/native_entry.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace device {

inline constexpr const char *interfaces_table = "interface-configuration";
inline constexpr const char *ports_table = "ots-port";
inline constexpr const char *slices_table = "spectrum-slice";

/// The tables to open a database with, beside its own.
inline std::vector<std::string> native_tables() { return {interfaces_table, ports_table, slices_table}; }

/// Slices in one record: some 11 KiB, so that little of the store's pages is left empty.
inline constexpr std::size_t slices_per_record = 256;

/// Size of the number that a port's record begins with.
inline constexpr std::size_t slice_count_size = sizeof(std::uint32_t);

/// Key of an entry of the interface configuration.
std::string interface_key(std::string_view active, std::string_view name);

/// The same for an entry as its leaves; throws std::invalid_argument when a key leaf is missing.
std::string interface_key(std::span<const native_leaf> leaves);

/// What the keys of a port's slices begin with. No name holds a NUL, so no port's prefix is part of another one's.
std::string slices_prefix(std::string_view port);

/// Key of a port's chunk of slices.
std::string slices_key(std::string_view port, std::uint32_t chunk);

} // namespace device
