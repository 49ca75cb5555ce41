#include "number.h"

#include "text_size.h"

#include <cctype>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

/* Native power counts hundredths of the OpenConfig unit. */
constexpr double hundredths = 100.0;

bool is_white_space(char c) { return NULL != std::strchr(" \t\n\v\f\r", c) && '\0' != c; }

/* The integer that the text is, and nothing beside it: up to nine digits, which a 32-bit number holds. False where
 * the text is another. */
bool read_plain_integer(const char *text, uint32_t &number)
{
    constexpr ptrdiff_t most_digits = 9;
    const char *at = text;
    for (number = 0; '0' <= *at && *at <= '9' && at - text < most_digits; ++at) {
        number = number * 10 + static_cast<uint32_t>(*at - '0');
    }
    return at != text && '\0' == *at;
}

void write_two_decimals(double number, char *text)
{
    /* Sign, the digits of the largest double, point, two decimals. */
    char digits[1 + DBL_MAX_10_EXP + 1 + 1 + 2];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 2);
    size_t length = std::errc() == error ? static_cast<size_t>(end - digits) : 0;
    if (length > value_size - 1) {
        length = value_size - 1;
    }
    std::memcpy(text, digits, length);
    text[length] = '\0';
}

} // namespace

double read_number(const char *text)
{
    while (is_white_space(*text)) {
        ++text;
    }
    const bool negative = '-' == *text;
    if (negative || '+' == *text) {
        ++text;
    }
    if ('-' == *text) {
        return 0.0;
    }
    auto format = std::chars_format::general;
    if ('0' == text[0] && ('x' == text[1] || 'X' == text[1])) {
        format = std::chars_format::hex;
        text += 2;
        /* from_chars() would take a second sign, inf and nan here. */
        if ('.' != *text && 0 == std::isxdigit(static_cast<unsigned char>(*text))) {
            return 0.0;
        }
    }
    double number = 0.0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), number, format);
    if (std::errc::result_out_of_range == error) {
        /* A value text is too short to leave the range by its digits, so the exponent's sign tells which way. */
        const bool tiny = NULL != std::memchr(text, '-', static_cast<size_t>(end - text));
        number = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    }
    /* "inf" that begins "infinity" has to be all of it. */
    const bool infinity_cut = std::isinf(number) && 3 == end - text && ('i' == *end || 'I' == *end);
    if (std::errc::invalid_argument == error || infinity_cut) {
        return 0.0;
    }
    return negative ? -number : number;
}

int32_t truncate_to_int32(double number)
{
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= std::numeric_limits<int32_t>::max()) {
        return std::numeric_limits<int32_t>::max();
    }
    if (number <= std::numeric_limits<int32_t>::min()) {
        return std::numeric_limits<int32_t>::min();
    }
    return static_cast<int32_t>(number);
}

/* Devices send plain integers: of these the digits are set apart, which gives the same text as a division would. */
void hundredths_to_decimals(char *text)
{
    uint32_t number;
    char *const digits = '-' == *text ? text + 1 : text;
    if (!read_plain_integer(digits, number)) {
        write_two_decimals(read_number(text) / hundredths, text);
        return;
    }
    const uint32_t fraction = number % 100;
    char *at = std::to_chars(digits, digits + std::numeric_limits<uint32_t>::digits10 + 1, number / 100).ptr;
    *at++ = '.';
    *at++ = static_cast<char>('0' + fraction / 10);
    *at++ = static_cast<char>('0' + fraction % 10);
    *at = '\0';
}
