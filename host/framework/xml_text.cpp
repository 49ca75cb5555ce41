#include "xml_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <simdjson.h>
#include <utility>

namespace framework {

namespace {

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool equal_ignoring_case(std::string_view a, std::string_view b)
{
    return std::ranges::equal(
        a, b, {}, [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; },
        [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
}

/* The encoding that an XML declaration names; empty without one. */
std::string_view declared_encoding(std::string_view text)
{
    const std::size_t start = text.starts_with("\xef\xbb\xbf") ? 3 : 0;
    constexpr std::string_view target = "<?xml";
    if (!text.substr(start).starts_with(target) || !is_space(text.data()[start + target.size()])) /* padding follows */
        return {};
    const std::string_view declaration = text.substr(start, text.find("?>") - start);
    std::size_t at = declaration.find("encoding");
    at = at == std::string_view::npos ? at : declaration.find_first_of("\"'", at);
    if (at == std::string_view::npos)
        return {};
    const std::string_view rest = declaration.substr(at + 1);
    return rest.substr(0, rest.find(declaration[at]));
}

/* The characters that XML 1.0 allows (production 2). */
bool is_xml_character(std::uint32_t c)
{
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c <= 0xd7ff) || (c >= 0xe000 && c <= 0xfffd) ||
           (c >= 0x10000 && c <= 0x10ffff);
}

void append_utf8(std::string &to, std::uint32_t c)
{
    const auto put = [&to](std::uint32_t byte) { to += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xc0 | (c >> 6));
    } else if (c < 0x10000) {
        put(0xe0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3f));
    } else {
        put(0xf0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3f));
        put(0x80 | ((c >> 6) & 0x3f));
    }
    if (c >= 0x80)
        put(0x80 | (c & 0x3f));
}

/* The character of a reference's name: "lt", "#955", "#x3bb". */
std::uint32_t referenced_character(std::string_view name)
{
    constexpr std::array<std::pair<std::string_view, char>, 5> named = {
        {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto &[known, character] : named)
        if (name == known)
            return static_cast<std::uint32_t>(character);
    std::uint32_t code = 0;
    if (name.starts_with('#')) {
        const bool hexadecimal = name.starts_with("#x");
        const char *const digits = name.data() + (hexadecimal ? 2 : 1);
        const char *const end = name.data() + name.size();
        const auto [stop, error] = std::from_chars(digits, end, code, hexadecimal ? 16 : 10);
        if (error == std::errc() && stop == end && is_xml_character(code))
            return code;
    }
    throw xml_text_error{"unknown reference '&" + std::string(name) + ";'"};
}

} // namespace

/* By halves. */
std::size_t valid_utf8_prefix(std::string_view text)
{
    std::size_t good = 0;
    for (std::size_t step = text.size(); step > 0; step /= 2)
        while (good + step <= text.size() && simdjson::validate_utf8(text.data() + good, step))
            good += step;
    return good;
}

void check_encoding(const document_text &text)
{
    const std::string_view view = text.view();
    if (view.starts_with("\xff\xfe") || view.starts_with("\xfe\xff"))
        throw parse_error(text.name + ": the document is UTF-16; only UTF-8 is read");
    const std::string_view encoding = declared_encoding(view);
    if (!encoding.empty() && !equal_ignoring_case(encoding, "utf-8") && !equal_ignoring_case(encoding, "us-ascii"))
        throw parse_error(text.name + ": the document is in " + std::string(encoding) + "; only UTF-8 is read");
    if (!simdjson::validate_utf8(view.data(), view.size()))
        fail_at(text, valid_utf8_prefix(view), "not UTF-8");
}

std::string decode_xml(std::string_view text, bool has_references)
{
    std::string decoded;
    while (!text.empty()) {
        std::size_t passed = 1;
        if (text.front() == '\r') { /* CR LF and a lone CR are one line end */
            decoded += '\n';
            passed = text.starts_with("\r\n") ? 2 : 1;
        } else if (text.front() == '&' && has_references) {
            const std::size_t close = text.find(';');
            if (close == std::string_view::npos)
                throw xml_text_error{"'&' without a reference; it is written &amp;"};
            append_utf8(decoded, referenced_character(text.substr(1, close - 1)));
            passed = close + 1;
        } else {
            decoded += text.front();
        }
        text.remove_prefix(passed);
    }
    return decoded;
}

std::string_view trim_xml(std::string_view text)
{
    while (!text.empty() && is_space(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_space(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace framework
