#include "device/native_tables.h"

namespace device {

std::string interface_key(std::string_view active, std::string_view name)
{
    return std::string(active) + '\0' + std::string(name);
}

std::string interface_key(std::span<const native_leaf> leaves)
{
    return interface_key(key_leaf(leaves, native_tag::active), key_leaf(leaves, native_tag::interface_name));
}

std::string slices_prefix(std::string_view port) { return std::string(port) + '\0'; }

std::string slices_key(std::string_view port, std::uint32_t chunk)
{
    std::string key = slices_prefix(port);
    // Most significant byte first, so that the order of the keys is that of the chunks.
    for (const int shift : {24, 16, 8, 0}) {
        key += static_cast<char>(chunk >> shift & 0xff);
    }
    return key;
}

} // namespace device
