#include "device/document.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace device {
namespace {

constexpr std::string_view white_space = " \t\r\n";
/// Of UTF-8; some editors write one.
constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

/// What follows the white space at the beginning.
std::string_view trimmed(std::string_view text)
{
    const auto start = text.find_first_not_of(white_space);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

[[noreturn]] void refuse(const std::filesystem::path &file, const std::string &cause)
{
    throw std::runtime_error(file.string() + ": " + cause);
}

} // namespace

document read_document(const std::filesystem::path &file)
{
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (error || !std::filesystem::exists(status)) {
        refuse(file, "cannot be read: " + (error ? error.message() : std::string("no such file")));
    }
    if (!std::filesystem::is_regular_file(status)) {
        refuse(file, "not a regular file");
    }
    const auto size = std::filesystem::file_size(file);
    if (size > largest_document) {
        refuse(file, std::to_string(size) + " bytes, more than the " + std::to_string(largest_document) +
                         " that a document may have");
    }
    // The stream does not tell why it failed; errno does, where the system was asked at all.
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    document read{file.string(), std::string(size, '\0')};
    if (!stream.read(read.text.data(), static_cast<std::streamsize>(size)) && size != 0) {
        refuse(file, std::string("cannot be read: ") + (errno != 0 ? std::strerror(errno) : "it ended early"));
    }
    if (read.text.starts_with(byte_order_mark)) {
        read.text.erase(0, byte_order_mark.size());
    }
    return read;
}

format format_of(std::string_view text, std::string_view name)
{
    const std::string_view start = trimmed(text);
    if (start.empty()) {
        throw invalid_document(std::string(name) + ": empty");
    }
    if (start.front() == '<') {
        return format::xml;
    }
    if (start.front() == '{') {
        return format::json;
    }
    throw invalid_document(std::string(name) + ": neither XML nor JSON: begins with neither '<' nor '{'");
}

document_kind kind_of(std::string_view text, std::string_view name)
{
    if (format_of(text, name) == format::xml) {
        return document_kind::native_xml;
    }
    const std::string_view first_member = trimmed(trimmed(text).substr(1));
    // The top members of YANG data are written module:name (RFC 7951, section 4): none can be "inventory".
    return first_member.starts_with("\"inventory\"") ? document_kind::inventory : document_kind::native_json;
}

} // namespace device
