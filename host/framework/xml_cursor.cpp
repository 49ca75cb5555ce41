#include "xml_cursor.h"

#include <algorithm>
#include <array>

namespace framework {

xml_cursor::xml_cursor(const document_text &text)
    : text_(text), at_(text.bytes.get() + byte_order_mark_size(text)), end_(text.bytes.get() + text.size)
{
}

xml_cursor::mark xml_cursor::take_other_mark()
{
    if (at_ == end_)
        return mark::document_end;
    ++at_; /* "<" */
    if (*at_ == '?') {
        skip_instruction();
    } else if (starts_with("!--")) {
        skip_comment();
    } else if (starts_with("![CDATA[")) {
        at_ += std::strlen("![CDATA[");
        return mark::cdata;
    } else if (starts_with("!DOCTYPE")) {
        fail(at_ - 1, "a document type declaration is not allowed");
    } else {
        fail_here("'<!' begins neither a comment nor a CDATA section");
    }
    return mark::passed;
}

std::string_view xml_cursor::take_cdata() { return take_until("]]>", "a CDATA section"); }

std::string_view xml_cursor::take_name()
{
    const char *const start = at_;
    while (!ends_name(*at_))
        ++at_;
    if (at_ == start)
        fail_here("a name is missing");
    const std::string_view name(start, static_cast<std::size_t>(at_ - start));
    const std::size_t other = name.find_first_of("#$%()*+,;@[\\]^`{|}~\x7f");
    if (other != std::string_view::npos ||
        std::string_view("-.0123456789").find(name.front()) != std::string_view::npos)
        fail(other == std::string_view::npos ? start : start + other,
             "malformed XML: a character that names do not have there");
    return name;
}

bool xml_cursor::take_attributes_slowly(std::vector<xml_attribute> &attributes)
{
    for (;;) {
        const char *const before = at_;
        skip_spaces();
        const bool is_empty = *at_ == '/' && at_[1] == '>';
        if (is_empty || *at_ == '>') {
            at_ += is_empty ? 2 : 1;
            return is_empty;
        }
        if (at_ == before)
            fail_here("a start tag goes on without white space");
        attributes.push_back(take_attribute());
    }
}

xml_attribute xml_cursor::take_attribute()
{
    const std::string_view name = take_name();
    skip_spaces();
    if (*at_ != '=')
        fail_here("attribute without a value");
    ++at_;
    skip_spaces();
    const char quote = *at_;
    if (quote != '"' && quote != '\'')
        fail_here("attribute value without quotes");
    ++at_;
    const std::string_view value = take_until({&quote, 1}, "an attribute value");
    if (const std::size_t bad = value.find('<'); bad != std::string_view::npos)
        fail(value.data() + bad, "malformed XML: '<' in an attribute value");
    return {name, value};
}

void xml_cursor::skip_spaces_in_end_tag()
{
    skip_spaces();
    if (*at_ != '>')
        fail_here("an end tag without its '>'");
}

/* "--" may not stand in a comment (section 2.5). */
void xml_cursor::skip_comment()
{
    at_ += std::strlen("!--");
    take_until("--", "a comment");
    if (*at_ != '>')
        fail_here("\"--\" in a comment");
    ++at_;
}

/* An XML declaration looks like one, and may stand at the beginning only; no other has such a name (section 2.6). */
void xml_cursor::skip_instruction()
{
    const char *const start = at_ - 1;
    ++at_;
    const std::string_view target = take_name();
    if (target == "xml") {
        if (start != text_.bytes.get() + byte_order_mark_size(text_))
            fail(start, "malformed XML: an XML declaration that is not at the beginning");
        take_declaration();
        return;
    }
    if (target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l')
        fail(target.data(), "malformed XML: a processing instruction may not be called " + std::string(target));
    if (!is(*at_, space) && !starts_with("?>"))
        fail_here("a processing instruction goes on without white space");
    take_until("?>", "a processing instruction");
}

/* Version, encoding and standalone in this order, the first one always (section 2.8). Encodings are checked before. */
void xml_cursor::take_declaration()
{
    constexpr std::array<std::string_view, 3> names = {"version", "encoding", "standalone"};
    auto next = names.begin();
    for (;;) {
        const char *const before = at_;
        skip_spaces();
        if (starts_with("?>") && next != names.begin())
            break;
        const char *const start = at_;
        const auto [name, value] = take_attribute();
        const auto found = std::find(next, names.end(), name);
        if (start == before || found == names.end() || (found != names.begin() && next == names.begin()))
            fail(start, "malformed XML: an XML declaration has a version, then perhaps encoding and standalone");
        next = found + 1;
        if (name == "version" && !(value.size() > 2 && value.starts_with("1.") &&
                                   value.find_first_not_of("0123456789", 2) == std::string_view::npos))
            fail(value.data(), "XML of another version than 1.0");
        if (name == "standalone" && value != "yes" && value != "no")
            fail(value.data(), "malformed XML: standalone is yes or no");
    }
    at_ += std::strlen("?>");
}

/* What stands before `close`, and passes that. */
std::string_view xml_cursor::take_until(std::string_view close, const char *what)
{
    const std::string_view rest(at_, left());
    const std::size_t size = rest.find(close);
    check_characters(rest.substr(0, size));
    if (size == std::string_view::npos)
        fail(end_, std::string("malformed XML: the document ends in ") + what);
    at_ += size + close.size();
    return rest.substr(0, size);
}

void xml_cursor::check_characters(std::string_view text) const
{
    const auto is_control = [this](char c) { return static_cast<unsigned char>(c) < 0x20 && !is(c, space); };
    if (const auto control = std::ranges::find_if(text, is_control); control != text.end())
        fail(text.data() + (control - text.begin()), "control character in XML");
}

/* The current character should not stand here: `what` says why, unless the document is over or it may stand nowhere. */
void xml_cursor::fail_here(const std::string &what) const
{
    if (at_ == end_)
        fail("malformed XML: the document ends early");
    check_characters({at_, 1});
    fail("malformed XML: " + what);
}

/* Of the text nothing was overwritten but the "<" behind values: lines are as they were. */
void xml_cursor::fail(const char *place, const std::string &what) const
{
    fail_at(text_, static_cast<std::size_t>(place - text_.bytes.get()), what);
}

} // namespace framework
