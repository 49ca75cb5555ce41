#include "device/flat.h"

#include <limits>

namespace device {

void flat_writer::add(native_tag tag, std::size_t child_count, std::optional<std::string_view> value)
{
    if (child_count > std::numeric_limits<std::uint8_t>::max()) {
        throw std::length_error(std::string(text_of(tag)) + ": more children than an entry can have");
    }
    if (value && value->size() > longest_value) {
        throw std::length_error(std::string(text_of(tag)) + ": value longer than " + std::to_string(longest_value));
    }
    // 0 says that there is no value; an empty one has the size of its NUL.
    const auto size = static_cast<std::uint16_t>(value ? value->size() + 1 : 0);
    record_ += static_cast<char>(tag);
    record_ += static_cast<char>(child_count);
    record_.append(reinterpret_cast<const char *>(&size), sizeof size);
    if (value) {
        record_ += *value;
        record_ += '\0';
    }
}

void refuse_record(const char *what) { throw damaged_record(std::string("the store is damaged: ") + what); }

} // namespace device
