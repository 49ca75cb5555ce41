#include "number.h"

#include "text_size.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

bool is_white_space(char c) { return NULL != std::strchr(" \t\n\v\f\r", c) && '\0' != c; }

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
