#include "json_text.h"

#include <algorithm>

namespace framework {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::size_t count_digits(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::find_if_not(text, is_digit) - text.begin());
}

void put_escape(text_sink &sink, char c)
{
    constexpr std::string_view digits = "0123456789abcdef";
    switch (c) {
    case '"':
        return sink.put("\\\"");
    case '\\':
        return sink.put("\\\\");
    case '\n':
        return sink.put("\\n");
    case '\r':
        return sink.put("\\r");
    case '\t':
        return sink.put("\\t");
    default:
        const char escape[] = {'\\', 'u', '0', '0', digits[static_cast<std::size_t>(c >> 4)], digits[c & 0xf]};
        return sink.put({escape, sizeof escape});
    }
}

/* Puts the character that a text begins with, and moves past it. */
void put_special(text_sink &sink, const char *&text)
{
    const std::size_t length = utf8_length(text);
    if (length > 1)
        sink.put({text, length});
    else if (length == 1)
        put_escape(sink, *text);
    else
        sink.put(replacement_character);
    text += std::max<std::size_t>(length, 1);
}

} // namespace

bool is_json_number(std::string_view text)
{
    text.remove_prefix(text.starts_with('-') ? 1 : 0);
    const std::size_t integer = count_digits(text);
    if (integer == 0 || (integer > 1 && text.front() == '0'))
        return false;
    text.remove_prefix(integer);
    if (text.starts_with('.')) {
        const std::size_t fraction = count_digits(text.substr(1));
        if (fraction == 0)
            return false;
        text.remove_prefix(1 + fraction);
    }
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
        return !text.empty() && count_digits(text) == text.size();
    }
    return text.empty();
}

void put_json_string(text_sink &sink, const char *text)
{
    /* Mostly it is short and plain. */
    char *to = sink.room();
    *to++ = '"';
    to = copy_plain(to, text, json_special, text_sink::most_room - 2);
    if (*text != '\0') {
        sink.taken(to);
        put_json_text(sink, text);
        to = sink.room(1);
    }
    *to++ = '"';
    sink.taken(to);
}

/* Runs of plain characters go over as they are. */
void put_json_text(text_sink &sink, const char *text)
{
    for (;;) {
        sink.taken(copy_plain(sink.room(), text, json_special, text_sink::most_room));
        if (*text == '\0')
            return;
        if (json_special[static_cast<unsigned char>(*text)])
            put_special(sink, text);
    }
}

} // namespace framework
