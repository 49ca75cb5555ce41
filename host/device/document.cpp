#include "device/document.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <simdjson.h>

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

[[noreturn]] void refuse(const std::string &name, const std::string &cause)
{
    throw std::runtime_error(name + ": " + cause);
}

[[noreturn]] void refuse_line(const document &from, std::size_t offset, const char *cause)
{
    const auto place = from.text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, from.text.size()));
    const auto line = 1 + std::count(from.text.begin(), place, '\n');
    throw invalid_document(from.name + ": line " + std::to_string(line) + ": " + cause);
}

/// Bytes that are UTF-8, found by halves.
std::size_t valid_prefix(std::string_view text)
{
    std::size_t good = 0;
    for (std::size_t step = text.size(); step > 0; step /= 2) {
        while (good + step <= text.size() && simdjson::validate_utf8(text.data() + good, step)) {
            good += step;
        }
    }
    return good;
}

/// Whether a JSON text ends inside of a string or bracket. One whose brackets do not match is another fault.
bool is_cut_json(std::string_view text)
{
    std::string open;
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (in_string) {
            i += c == '\\' ? 1 : 0;
            in_string = c != '"';
        } else if (c == '"') {
            in_string = true;
        } else if (c == '{' || c == '[') {
            open += c;
        } else if (c == '}' || c == ']') {
            if (open.empty() || open.back() != (c == '}' ? '{' : '[')) {
                return false;
            }
            open.pop_back();
        }
    }
    return in_string || !open.empty();
}

} // namespace

document read_document(const std::filesystem::path &file)
{
    const bool is_standard_input = file == "-";
    document read{is_standard_input ? "standard input" : file.string(), {}};
    if (std::filesystem::is_directory(file)) {
        refuse(read.name, "cannot be read: it is a folder");
    }
    // The stream does not tell why it failed; errno does, where the system was asked at all.
    errno = 0;
    std::ifstream opened;
    if (!is_standard_input) {
        opened.open(file, std::ios::binary);
    }
    std::istream &stream = is_standard_input ? std::cin : opened;
    std::error_code no_size;
    const auto size = std::filesystem::file_size(file, no_size); // a pipe has none
    std::size_t room = no_size ? std::size_t{64} << 10 : std::min(size, largest_document) + 1;
    for (std::size_t got = 0; stream && got <= largest_document; room *= 2) {
        read.text.resize(room);
        stream.read(read.text.data() + got, static_cast<std::streamsize>(room - got));
        got += static_cast<std::size_t>(stream.gcount());
        read.text.resize(got);
    }
    if (!stream.eof() && !stream) {
        refuse(read.name, std::string("cannot be read: ") + (errno != 0 ? std::strerror(errno) : "it ended early"));
    }
    if (read.text.size() > largest_document) {
        refuse(read.name, "more than the " + std::to_string(largest_document) + " bytes that a document may have");
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

void check_text(const document &from)
{
    if (!simdjson::validate_utf8(from.text)) {
        refuse_line(from, valid_prefix(from.text), "not UTF-8");
    }
    if (format_of(from.text, from.name) == format::json && is_cut_json(from.text)) {
        refuse_line(from, from.text.size(), "the document ends early");
    }
}

std::optional<std::string> without_wrapper(const std::string &xml)
{
    constexpr std::string_view opening = "<data xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"";
    constexpr std::string_view closing = "</data>";
    const std::string_view text = xml;
    std::size_t begin = text.find_first_not_of(white_space);
    if (text.substr(begin).starts_with("<?xml")) {
        begin = std::min(text.find("?>", begin), text.size() - 2) + 2;
        begin = std::min(text.find_first_not_of(white_space, begin), text.size());
    }
    if (!text.substr(begin).starts_with(opening)) {
        return std::nullopt;
    }
    const std::size_t behind = std::min(text.find_first_not_of(white_space, begin + opening.size()), text.size());
    const bool is_empty = text.substr(behind).starts_with("/>");
    if (!is_empty && !text.substr(behind).starts_with('>')) {
        return std::nullopt;
    }
    std::size_t end = text.find_last_not_of(white_space) + 1;
    if (!is_empty) {
        if (!text.substr(behind + 1, end - behind - 1).ends_with(closing)) {
            return std::nullopt;
        }
        end -= closing.size();
    }
    std::string inner(text.substr(0, end));
    std::fill(inner.begin() + static_cast<std::ptrdiff_t>(begin),
              inner.begin() + static_cast<std::ptrdiff_t>(behind + (is_empty ? 2 : 1)), ' ');
    return inner;
}

} // namespace device
