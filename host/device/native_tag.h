/// The nodes of the native models that the store keeps, as small numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace device {

/// A node name of the native models. The numbers are part of the stored form: add at the end, never renumber.
/// Within an entry they follow the schema, keys first.
enum class native_tag : std::uint8_t {
    // /interface-configurations/interface-configuration of Vantra-TALIN-ifmgr-cfg
    interface_configuration,
    active,
    interface_name,
    description,
    shutdown,
    mtu,
    // /ots-oper/ots-ports/ots-port of Vantra-TALIN-controller-kestrel-ots-oper
    ots_port,
    name,
    // ots-spectrum-info/spectrum-slice-power-info below it
    spectrum_slice_power_info,
    lower_frequency,
    upper_frequency,
    rx_power,
};

/// Count of the values of native_tag.
inline constexpr unsigned native_tag_count = 12;

/// The YANG name of a tag: a constant that lives as long as the program.
const char *text_of(native_tag tag);

/// The tag of a YANG name, none for a name that the store does not keep.
std::optional<native_tag> native_tag_of(std::string_view text);

} // namespace device
