#include "xml_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <simdjson.h>
#include <utility>

namespace framework {

namespace {

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/* What ends a text that can stay as it is. */
constexpr std::array<bool, 256> make_ends_plain()
{
    std::array<bool, 256> ends = {};
    for (const char c : {'\0', '&', '\r'})
        ends[static_cast<unsigned char>(c)] = true;
    return ends;
}

constexpr std::array<bool, 256> ends_plain = make_ends_plain();

bool is_control(char c) { return static_cast<unsigned char>(c) < 0x20 && !is_space(c); }

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
    if (!text.substr(start).starts_with("<?xml"))
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

/* Writes a character as UTF-8, which never takes more bytes than its reference did, and returns the end. */
char *put_utf8(char *to, std::uint32_t c)
{
    const auto put = [&to](std::uint32_t byte) { *to++ = static_cast<char>(byte); };
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
    return to;
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

/* Decodes [from, end) to `from` itself and returns the new end. */
char *decode(char *from, const char *end, bool has_references)
{
    char *to = from;
    const char *at = from;
    while (at != end) {
        if (*at == '\r') { /* CR LF and a lone CR are one line end */
            *to++ = '\n';
            at += at + 1 != end && at[1] == '\n' ? 2 : 1;
        } else if (*at == '&' && has_references) {
            const char *const close = std::find(at, end, ';');
            if (close == end)
                throw xml_text_error{"'&' without a reference; it is written &amp;"};
            to = put_utf8(to, referenced_character({at + 1, static_cast<std::size_t>(close - at - 1)}));
            at = close + 1;
        } else {
            *to++ = *at++;
        }
    }
    return to;
}

/* Whether one of eight bytes is below 0x20: those with the high bit clear that borrow when it is taken away. */
bool has_low_byte(const char *bytes)
{
    constexpr std::uint64_t each = 0x0101010101010101;
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return ((word - each * 0x20) & ~word & each * 0x80) != 0;
}

/* Line ends among the characters of a text; the first control character into `control`, where there is one. */
std::ptrdiff_t count_line_ends(std::string_view text, const char *&control)
{
    std::ptrdiff_t line_ends = 0;
    const char *at = text.data();
    const char *const end = at + text.size();
    while (at != end) {
        /* Markup and values are mostly long runs without either. */
        if (end - at >= 8 && !has_low_byte(at)) {
            at += 8;
            continue;
        }
        if (is_control(*at) && control == nullptr)
            control = at;
        line_ends += *at++ == '\n' ? 1 : 0;
    }
    return line_ends;
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

std::ptrdiff_t check_xml_text(const document_text &text)
{
    const std::string_view view = text.view();
    if (view.starts_with("\xff\xfe") || view.starts_with("\xfe\xff"))
        throw parse_error(text.name + ": the document is UTF-16; only UTF-8 is read");
    const std::string_view encoding = declared_encoding(view);
    if (!encoding.empty() && !equal_ignoring_case(encoding, "utf-8") && !equal_ignoring_case(encoding, "us-ascii"))
        throw parse_error(text.name + ": the document is in " + std::string(encoding) + "; only UTF-8 is read");
    if (!simdjson::validate_utf8(view.data(), view.size()))
        fail_at(text, valid_utf8_prefix(view), "not UTF-8");
    const char *control = nullptr;
    const std::ptrdiff_t line_ends = count_line_ends(view, control);
    if (control != nullptr)
        fail_at(text, static_cast<std::size_t>(control - view.data()), "control character in XML");
    return line_ends;
}

std::string_view decode_xml(char *text)
{
    while (is_space(*text))
        ++text;
    char *end = text;
    while (!ends_plain[static_cast<unsigned char>(*end)])
        ++end;
    const bool plain = *end == '\0';
    end += plain ? 0 : std::strlen(end);
    while (end != text && is_space(end[-1]))
        --end;
    if (!plain)
        end = decode(text, end, true);
    if (*end != '\0') /* the text of an empty element is the parser's own, which cannot be written */
        *end = '\0';
    return {text, static_cast<std::size_t>(end - text)};
}

void append_decoded_xml(std::string &to, std::string_view piece, bool is_cdata)
{
    std::string decoded(piece);
    decoded.resize(
        static_cast<std::size_t>(decode(decoded.data(), decoded.data() + decoded.size(), !is_cdata) - decoded.data()));
    to += decoded;
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
