/*
 * The marks and texts of an XML document, one after the other (W3C XML 1.0, fifth edition, chapters 2 and 3, without
 * document types). Where the document is malformed, a parse_error says what and where. Meaning is the reader's: names
 * and references are handed on as they stand.
 */
#ifndef FRAMEWORK_XML_CURSOR_H
#define FRAMEWORK_XML_CURSOR_H

#include "document.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace framework {

/* An attribute as it stands, its value without the quotes. */
struct xml_attribute {
    std::string_view name;
    std::string_view value;
};

/* Character data up to the next mark. */
struct character_data {
    const char *start; /* with the white space before it */
    char *first;       /* behind that */
    char *end;
    bool is_plain; /* holds no reference and no carriage return */

    bool is_blank() const { return first == end; }
};

class xml_cursor
{
  public:
    /* The text must be UTF-8 and outlive the cursor. It is read from the beginning, behind a byte order mark. */
    explicit xml_cursor(const document_text &text);

    enum class mark {
        start,        /* "<", a name follows */
        end,          /* "</" */
        cdata,        /* "<![CDATA[" */
        passed,       /* a comment or a processing instruction, which is over */
        document_end, /* nothing follows */
    };

    /* Character data, which may be empty; then stands at a mark or at the document's end. */
    character_data take_text();

    /* Passes the next mark; a comment or processing instruction as a whole. */
    mark take_mark()
    {
        const char next = at_[0] == '<' ? at_[1] : '!';
        if (next == '!' || next == '?')
            return take_other_mark();
        at_ += next == '/' ? 2 : 1;
        return next == '/' ? mark::end : mark::start;
    }

    /* The rest of a CDATA section. */
    std::string_view take_cdata();

    /* A name by its characters; what its prefix stands for, and whether it may have one, is the reader's to know. */
    std::string_view take_name();

    /* Passes that name if it is what stands here; mostly the reader knows which one it will be. */
    bool take_name(std::string_view name)
    {
        if (name.size() >= left() || std::memcmp(at_, name.data(), name.size()) != 0 || !ends_name(at_[name.size()]))
            return false;
        at_ += name.size();
        return true;
    }

    /* The rest of a start tag behind its name; true where it is an empty element's ("/>"). */
    bool take_attributes(std::vector<xml_attribute> &attributes)
    {
        if (*at_ != '>')
            return take_attributes_slowly(attributes);
        ++at_;
        return false;
    }

    /* The rest of the end tag of the element `name`. */
    void take_end_tag(std::string_view name)
    {
        if (!take_name(name))
            fail_here("the end tag of another element than <" + std::string(name) + ">");
        if (*at_ != '>')
            skip_spaces_in_end_tag();
        ++at_;
    }

    /* Throws the parse_error "NAME:LINE:COLUMN: what" for the current place, or another one. */
    [[noreturn]] void fail(const std::string &what) const { fail(at_, what); }
    [[noreturn]] void fail(const char *place, const std::string &what) const;

  private:
    /* What a character means where names, texts and white space are read. */
    enum : std::uint8_t { space = 1, name_end = 2, text_stop = 4 };
    static constexpr std::array<std::uint8_t, 256> make_classes();
    static const std::array<std::uint8_t, 256> classes;

    bool is(char c, std::uint8_t what) const { return (classes[static_cast<unsigned char>(c)] & what) != 0; }
    bool ends_name(char c) const { return is(c, name_end); }
    std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }
    bool starts_with(std::string_view what) const { return std::string_view(at_, left()).starts_with(what); }

    void skip_spaces();
    mark take_other_mark();
    bool take_attributes_slowly(std::vector<xml_attribute> &attributes);
    void skip_spaces_in_end_tag();
    xml_attribute take_attribute();
    void skip_comment();
    void skip_instruction();
    void take_declaration();
    std::string_view take_until(std::string_view close, const char *what);
    void check_characters(std::string_view text) const;
    [[noreturn]] void fail_here(const std::string &what) const;

    const document_text &text_;
    char *at_;
    char *end_; /* zero bytes follow */
};

constexpr std::array<std::uint8_t, 256> xml_cursor::make_classes()
{
    std::array<std::uint8_t, 256> made = {};
    for (std::size_t c = 0; c <= 0x20; ++c)
        made[c] = name_end | (c == 0x20 ? 0 : text_stop);
    for (const char c : {' ', '\t', '\n', '\r'})
        made[static_cast<unsigned char>(c)] |= space;
    for (const char c : {'\t', '\n'})
        made[static_cast<unsigned char>(c)] &= static_cast<std::uint8_t>(~text_stop);
    for (const char c : {'<', '&', ']'})
        made[static_cast<unsigned char>(c)] |= text_stop;
    for (const char c : {'<', '>', '/', '=', '"', '\'', '&', '?', '!'})
        made[static_cast<unsigned char>(c)] |= name_end;
    return made;
}

inline constexpr std::array<std::uint8_t, 256> xml_cursor::classes = make_classes();

/* Lines are mostly indented by spaces: eight at a time, which the padding behind the text allows. */
inline void xml_cursor::skip_spaces()
{
    if (*at_ == '\n')
        ++at_;
    constexpr std::uint64_t spaces = 0x2020202020202020;
    for (std::uint64_t word = 0;; at_ += sizeof word) {
        std::memcpy(&word, at_, sizeof word);
        if (word != spaces)
            break;
    }
    while (is(*at_, space))
        ++at_;
}

inline character_data xml_cursor::take_text()
{
    character_data text = {at_, nullptr, nullptr, true};
    skip_spaces();
    text.first = at_;
    for (;; ++at_) {
        while (!is(*at_, text_stop))
            ++at_;
        if (*at_ == '<' || at_ == end_)
            break;
        text.is_plain = false;
        if (*at_ == ']' ? starts_with("]]>") : *at_ != '&' && *at_ != '\r')
            fail_here("\"]]>\" outside of a CDATA section");
    }
    text.end = at_;
    return text;
}

} // namespace framework

#endif
