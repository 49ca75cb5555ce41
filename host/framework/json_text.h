/* JSON values as texts (RFC 8259). */
#ifndef FRAMEWORK_JSON_TEXT_H
#define FRAMEWORK_JSON_TEXT_H

#include "text_sink.h"

#include <cstddef>
#include <string_view>

namespace framework {

/* Of a JSON string. */
constexpr special_characters make_json_special()
{
    special_characters special = {};
    for (std::size_t c = 0; c < special.size(); ++c)
        special[c] = c < 0x20 || c >= 0x80 || c == '"' || c == '\\';
    return special;
}

inline constexpr special_characters json_special = make_json_special();

/* Whether a text may stand in JSON as a number (RFC 8259, section 6). */
bool is_json_number(std::string_view text);

/* Puts a NUL-terminated text between quotes, escaped; bytes that are no UTF-8 come out as U+FFFD. */
void put_json_string(text_sink &sink, const char *text);

/* The same without quotes, as a part of a string. */
void put_json_text(text_sink &sink, const char *text);

} // namespace framework

#endif
