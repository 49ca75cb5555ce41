#include "device/native_tag.h"

#include <array>

namespace device {
namespace {

/// By number.
constexpr std::array<const char *, native_tag_count> texts = {
    "interface-configuration",
    "active",
    "interface-name",
    "description",
    "shutdown",
    "mtu",
    "ots-port",
    "name",
    "spectrum-slice-power-info",
    "lower-frequency",
    "upper-frequency",
    "rx-power",
};

} // namespace

const char *text_of(native_tag tag) { return texts.at(static_cast<std::size_t>(tag)); }

std::optional<native_tag> native_tag_of(std::string_view text)
{
    // A handful of short names: comparing with each is quicker than any table.
    for (std::size_t index = 0; index < texts.size(); ++index) {
        if (text == texts[index]) {
            return static_cast<native_tag>(index);
        }
    }
    return std::nullopt;
}

} // namespace device
