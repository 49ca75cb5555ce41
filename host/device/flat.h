/// The flat form of a list entry: what the store keeps and a read turns into nodes without parsing.
///
/// An entry is its nodes in document order, each node before its children:
///
///   offset  size  what
///   0       1     tag (native_tag)
///   1       1     number of children
///   2       2     size of the value with its closing NUL, in the machine's byte order; 0: the node has no value
///   4       n     the value, its closing NUL the last byte
///
/// Nothing is padded: numbers are read bytewise. A reader points straight at the values, so what it builds lives as
/// long as the bytes it was given (for stored records: as long as the read transaction).
#pragma once

#include "device/native_tag.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace device {

/// A stored record that does not hold what its form promises.
class damaged_record : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// Throws damaged_record, saying what is wrong with it.
[[noreturn]] void refuse_record(const char *what);

/// One node of an entry.
struct flat_node {
    native_tag tag;
    std::uint8_t child_count;
    std::uint16_t value_length; ///< without the NUL
    const char *value;          ///< NUL-terminated, inside the record; null when the node has no value
};

/// Appends nodes to a record.
class flat_writer
{
  public:
    /// Longest value, without its NUL.
    static constexpr std::size_t longest_value = 0xfffe;

    /// Adds a node; the caller adds its children next. Throws std::length_error when the value or the count does not
    /// fit.
    void add(native_tag tag, std::size_t child_count, std::optional<std::string_view> value);

    const std::string &record() const { return record_; }
    void clear() { record_.clear(); }

  private:
    std::string record_;
};

/// Reads the nodes of a record one after the other. Every length is checked before it is believed.
class flat_cursor
{
  public:
    static constexpr std::size_t header_size = 4;

    explicit flat_cursor(std::string_view record) : rest_(record) {}

    /// The next node into `node`; false at the end of the record; throws damaged_record when the bytes are no node.
    bool next(flat_node &node)
    {
        if (rest_.empty()) {
            return false;
        }
        if (rest_.size() < header_size || static_cast<unsigned char>(rest_[0]) >= native_tag_count) {
            refuse_record("a native record ends early or holds an unknown node");
        }
        std::uint16_t size;
        std::memcpy(&size, rest_.data() + 2, sizeof size);
        if (rest_.size() - header_size < size || (size != 0 && rest_[header_size + size - 1] != '\0')) {
            refuse_record("a native record ends early or holds an unknown node");
        }
        node.tag = static_cast<native_tag>(rest_[0]);
        node.child_count = static_cast<std::uint8_t>(rest_[1]);
        node.value = size == 0 ? nullptr : rest_.data() + header_size;
        node.value_length = static_cast<std::uint16_t>(size == 0 ? 0 : size - 1);
        rest_.remove_prefix(header_size + size);
        return true;
    }

  private:
    std::string_view rest_;
};

} // namespace device
