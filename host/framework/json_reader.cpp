#include "json_reader.h"

#include "edit_operations.h"
#include "json_text.h"
#include "name_table.h"
#include "schema_facts.h"
#include "tree_builder.h"

#include <algorithm>
#include <map>
#include <simdjson.h>
#include <string>
#include <utility>
#include <vector>

namespace framework {

namespace {

namespace ondemand = simdjson::ondemand;

constexpr std::string_view operation_annotation = "ietf-netconf:operation";

/* The end of a JSON string from its first character: its closing quote, which the parser has made sure of. */
const char *string_end(const char *text, bool &has_escapes)
{
    for (; *text != '"'; ++text) {
        if (*text == '\\') {
            has_escapes = true;
            ++text;
        }
    }
    return text;
}

/* A number, word or bracket as it stands in the text; a string with its quotes. */
std::string_view token_of(ondemand::value &value)
{
    const std::string_view token = value.raw_json_token();
    return token.substr(0, token.find_last_not_of(" \t\r\n") + 1);
}

class json_reader
{
  public:
    json_reader(const document_text &text, arena &memory, const document_options &options)
        : text_(text),
          memory_(memory),
          use_(options.use),
          builder_(memory, text, options),
          names_(memory),
          /* A level of elements takes two of JSON where it is a list; refused by the builder, long before the parser.
           */
          json_depth_(2 * options.depth_limit + 8)
    {
    }

    dtf_datatree read();

  private:
    /* An object or array being read. Everything is read in document order without recursion. */
    struct level {
        bool is_object;
        ondemand::object_iterator member;
        ondemand::array_iterator element;
        const char *ns;         /* of members whose name has no module */
        const name_entry *name; /* of an array */
        std::size_t first_name; /* of an object: its members' names are names_seen_ from here */
        std::size_t first_note; /* of an object: the names of its annotations are notes_seen_ from here */
        std::uint32_t elements; /* of an array */
        std::uint32_t nulls;    /* of an array */
    };

    /* An annotation of members, kept until their object ends: it may stand before them. */
    struct annotation {
        std::size_t depth;      /* of the object */
        const name_entry *name; /* of the members */
        std::uint32_t index;    /* of the one it concerns, among the members of that name */
        std::uint32_t operation;
    };

    void run(ondemand::document &document);
    void step_object();
    void step_array();
    void advance();
    void end_object();
    void end_array();

    void read_member(ondemand::field field);
    void read_value(ondemand::value value, const name_entry &name, const char *ns);
    void open_object(ondemand::object object, const char *ns);
    void read_string(ondemand::value value, dtf_datatree &leaf);
    void read_word(ondemand::value value, dtf_datatree &leaf);
    void read_null(dtf_datatree &leaf);

    void read_annotation(std::string_view target, ondemand::value value);
    std::uint32_t read_operation(std::string_view target, ondemand::value value);
    void annotate(const name_entry *name, std::uint32_t index, std::uint32_t operation);
    void apply_annotations();
    void check_names_once(std::size_t first);
    void check_notes_once(std::size_t first);

    name_entry &find_name(const char *key);
    std::string_view decode_name(const char *key);
    std::string_view unescape(const char *text, std::size_t size);
    std::size_t offset_of(const char *place) const { return static_cast<std::size_t>(place - text_.bytes.get()); }
    void fail_ending() const;
    [[noreturn]] void fail_syntax(simdjson::error_code error);
    [[noreturn]] void fail_indexing(simdjson::error_code error);

    /* The result's value, or the syntax error that it is instead. */
    template <typename result> auto take(result &&from)
    {
        if (from.error() != simdjson::SUCCESS)
            fail_syntax(from.error());
        return std::forward<result>(from).value_unsafe();
    }

    const document_text &text_;
    arena &memory_;
    document_use use_;
    tree_builder builder_;
    name_table names_;
    std::size_t json_depth_;
    ondemand::parser parser_;
    ondemand::document *document_ = nullptr;
    std::vector<level> levels_;
    std::vector<name_entry *> names_seen_;
    std::vector<name_entry *> notes_seen_;
    name_entry own_note_ = {"",      {},      "", nullptr,
                            nullptr, nullptr, 0}; /* stands for the annotation of an object itself */
    std::vector<annotation> annotations_;
    std::uint64_t objects_ = 0; /* ended so far */
};

dtf_datatree json_reader::read()
{
    if (parser_.allocate(text_.size, json_depth_) != simdjson::SUCCESS)
        throw parse_error(text_.name + ": no memory to read it");
    const std::size_t skipped = byte_order_mark_size(text_);
    const std::size_t size = text_.size - skipped;
    auto document = parser_.iterate(text_.bytes.get() + skipped, size, size + document_text::padding);
    if (document.error() != simdjson::SUCCESS)
        fail_indexing(document.error());
    run(document.value_unsafe());
    dtf_datatree root = builder_.finish();
    if (use_ == document_use::edit)
        inherit_operations(root);
    return root;
}

void json_reader::run(ondemand::document &document)
{
    document_ = &document;
    if (take(document.type()) != ondemand::json_type::object)
        fail_at(text_, 0, "a document is a JSON object");
    open_object(take(document.get_object()), nullptr);
    while (!levels_.empty())
        levels_.back().is_object ? step_object() : step_array();
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS)
        fail_syntax(simdjson::TRAILING_CONTENT);
}

/* The iterators compare with an end that they do not look at. */
void json_reader::step_object()
{
    level &at = levels_.back();
    if (at.member != ondemand::object_iterator())
        read_member(take(*at.member));
    else
        end_object();
}

void json_reader::step_array()
{
    level &at = levels_.back();
    if (at.element == ondemand::array_iterator()) {
        end_array();
        return;
    }
    ++at.elements;
    read_value(take(*at.element), *at.name, at.ns);
}

/* Behind a value: past the comma. A value that is none shows here or when the next one is read. */
void json_reader::advance()
{
    if (levels_.empty())
        return;
    level &at = levels_.back();
    if (at.is_object)
        ++at.member;
    else
        ++at.element;
}

void json_reader::end_object()
{
    apply_annotations();
    check_names_once(levels_.back().first_name);
    check_notes_once(levels_.back().first_note);
    names_seen_.resize(levels_.back().first_name);
    notes_seen_.resize(levels_.back().first_note);
    levels_.pop_back();
    if (!levels_.empty())
        builder_.close();
    advance();
}

void json_reader::end_array()
{
    const level &at = levels_.back();
    if (use_ == document_use::data && at.nulls > 0 && at.elements > 1)
        builder_.fail_child(at.name->tag, "null among the elements of an array");
    levels_.pop_back();
    advance();
}

void json_reader::read_member(ondemand::field field)
{
    const char *const key = field.key().raw();
    const char *const inherited = levels_.back().ns;
    if (*key == '@') {
        read_annotation(decode_name(key).substr(1), field.value());
        advance();
        return;
    }
    name_entry &name = find_name(key);
    const char *const ns = name.ns != nullptr ? name.ns : inherited;
    if (ns == nullptr)
        builder_.fail_child(name.text,
                            "a top member's name begins with its module: \"module:" + std::string(name.tag) + "\"");
    names_seen_.push_back(same_namespace(ns, inherited) ? name.plain : &name);
    read_value(field.value(), name, ns);
}

void json_reader::read_value(ondemand::value value, const name_entry &name, const char *ns)
{
    const char first = value.raw_json_token().front();
    if (first == '{') {
        builder_.open(name.tag, ns);
        open_object(take(value.get_object()), ns);
        return;
    }
    if (first == '[') {
        if (!levels_.back().is_object)
            builder_.fail_child(name.tag, "an array in an array");
        auto array = take(value.get_array());
        auto begin = take(array.begin());
        levels_.push_back({false, {}, begin, ns, &name, 0, 0, 0, 0});
        return;
    }
    if (first == '"')
        read_string(value, builder_.add(name.tag, ns));
    else
        read_word(value, builder_.add(name.tag, ns));
    advance();
}

void json_reader::open_object(ondemand::object object, const char *ns)
{
    levels_.push_back({true, take(object.begin()), {}, ns, nullptr, names_seen_.size(), notes_seen_.size(), 0, 0});
}

void json_reader::read_word(ondemand::value value, dtf_datatree &leaf)
{
    const std::string_view token = token_of(value);
    if (token == "null")
        read_null(leaf);
    else if (token == "true" || token == "false" || is_json_number(token))
        set_value(leaf, memory_.copy(token));
    else
        fail_at(text_, offset_of(token.data()),
                "malformed JSON: '" + std::string(token.substr(0, 20)) + "' is no value");
}

/* A text without escapes stays where it is; its closing quote makes room for the terminator. */
void json_reader::read_string(ondemand::value value, dtf_datatree &leaf)
{
    const char *const text = take(value.get_raw_json_string()).raw();
    bool has_escapes = false;
    const char *const end = string_end(text, has_escapes);
    if (end == text && use_ != document_use::data)
        return;
    if (has_escapes) {
        set_value(leaf, unescape(text, static_cast<std::size_t>(end - text)).data());
        return;
    }
    text_.bytes[static_cast<std::ptrdiff_t>(offset_of(end))] = '\0';
    set_value(leaf, text);
}

void json_reader::read_null(dtf_datatree &leaf)
{
    level &at = levels_.back();
    if (!at.is_object)
        ++at.nulls;
    else if (use_ == document_use::data)
        builder_.fail_child(leaf.tag, "null is no value in data");
}

/* ---- annotations (RFC 7952, section 5.2) ---- */

/*
 * `target` is what follows the "@": nothing, for the object itself, or the name of members beside it. These have one
 * annotation object, or an array of them (null where there is none) when they are a run.
 */
void json_reader::read_annotation(std::string_view target, ondemand::value value)
{
    if (use_ == document_use::data)
        builder_.fail("annotations are not supported in data: '@" + std::string(target) + "'");
    name_entry *name = nullptr;
    if (!target.empty()) {
        name = names_.find(target);
        if (name == nullptr)
            builder_.fail("'@" + std::string(target) + "' annotates no member name");
        const char *const ns = name->ns;
        name = ns == nullptr || same_namespace(ns, levels_.back().ns) ? name->plain : name;
    }
    notes_seen_.push_back(name != nullptr ? name : &own_note_);
    if (value.raw_json_token().front() != '[') {
        annotate(name, 0, read_operation(target, value));
        return;
    }
    std::uint32_t index = 0;
    for (auto element : take(value.get_array())) {
        ondemand::value one = take(element);
        if (token_of(one) != "null")
            annotate(name, index, read_operation(target, one));
        ++index;
    }
}

/* The operation that an annotation object gives; `target` as above. */
std::uint32_t json_reader::read_operation(std::string_view target, ondemand::value value)
{
    if (value.raw_json_token().front() != '{')
        builder_.fail("an annotation is a JSON object");
    std::uint32_t operation = 0;
    bool is_given = false;
    for (auto member : take(value.get_object())) {
        ondemand::field field = take(member);
        const std::string_view name = take(field.unescaped_key());
        if (name != operation_annotation)
            builder_.fail_attribute(attribute_error::kind::unknown, target, name,
                                    "unknown annotation '" + std::string(name) + "'");
        if (std::exchange(is_given, true))
            builder_.fail("the annotation '" + std::string(name) + "' is there twice");
        if (const std::string_view token = token_of(field.value()); token.front() != '"')
            builder_.fail_attribute(attribute_error::kind::bad, target, "operation",
                                    "an edit operation is a text, not " + std::string(token.substr(0, 20)));
        const std::string_view word = take(field.value().get_string());
        const auto known = operation_of(word);
        if (!known)
            builder_.fail_attribute(attribute_error::kind::bad, target, "operation",
                                    "unknown edit operation '" + std::string(word) + "'");
        operation = *known;
    }
    return operation;
}

void json_reader::annotate(const name_entry *name, std::uint32_t index, std::uint32_t operation)
{
    if (name != nullptr)
        annotations_.push_back({levels_.size(), name, index, operation});
    else if (levels_.size() == 1)
        builder_.fail("an annotation of the document itself");
    else if (use_ == document_use::edit)
        set_operation(builder_.current(), operation);
}

/* Gives the current object's members what was kept for them. */
void json_reader::apply_annotations()
{
    if (annotations_.empty() || annotations_.back().depth != levels_.size())
        return;
    const auto members = builder_.children();
    const auto name_of = [](const char *tag, const char *ns) {
        return std::pair(tag, ns == nullptr ? std::string_view() : std::string_view(ns));
    };
    /* The first of a name; others of it follow in a row. */
    std::map<std::pair<const char *, std::string_view>, std::size_t> first;
    for (std::size_t i = 0; i < members.size(); ++i)
        first.emplace(name_of(members[i].tag, members[i].ns), i);
    for (; !annotations_.empty() && annotations_.back().depth == levels_.size(); annotations_.pop_back()) {
        const annotation &kept = annotations_.back();
        const auto name = name_of(kept.name->tag, kept.name->ns != nullptr ? kept.name->ns : levels_.back().ns);
        const auto run = first.find(name);
        const std::size_t at = run == first.end() ? members.size() : run->second + kept.index;
        if (at >= members.size() || name_of(members[at].tag, members[at].ns) != name)
            builder_.fail("'@" + std::string(kept.name->text) + "' annotates no member");
        if (use_ == document_use::edit)
            set_operation(members[at], kept.operation);
    }
}

/* Each object has a number of its own, so that a name stamped with it already is there twice. */
void json_reader::check_names_once(std::size_t first)
{
    ++objects_;
    for (std::size_t i = first; i < names_seen_.size(); ++i) {
        if (names_seen_[i]->stamp == objects_)
            builder_.fail_child(names_seen_[i]->tag, "the member is there twice");
        names_seen_[i]->stamp = objects_;
    }
}

/* The same for annotations: a name has a place among the members and one among the annotations. */
void json_reader::check_notes_once(std::size_t first)
{
    ++objects_;
    for (std::size_t i = first; i < notes_seen_.size(); ++i) {
        if (notes_seen_[i]->stamp == objects_)
            builder_.fail("the member '@" + std::string(notes_seen_[i]->text) + "' is there twice");
        notes_seen_[i]->stamp = objects_;
    }
}

/* ---- texts and errors ---- */

/* `key` lies behind its opening quote. The comparison with the guess stays within the padding or before it. */
name_entry &json_reader::find_name(const char *key)
{
    const std::string_view guess = names_.guess()->text;
    const std::size_t left = text_.size - offset_of(key);
    if (guess.size() < left && key[guess.size()] == '"' && guess == std::string_view(key, guess.size()))
        return *names_.take_guess();
    const std::string_view text = decode_name(key);
    name_entry *const name = names_.find(text);
    if (name == nullptr)
        builder_.fail_child(text, "not a member name");
    return *name;
}

/* A member name from behind its opening quote. */
std::string_view json_reader::decode_name(const char *key)
{
    bool has_escapes = false;
    const auto size = static_cast<std::size_t>(string_end(key, has_escapes) - key);
    return has_escapes ? unescape(key, size) : std::string_view(key, size);
}

/* The decoded copy of a string, which cannot be kept when it holds what YANG texts never do (RFC 7950, 9.4). */
std::string_view json_reader::unescape(const char *text, std::size_t size)
{
    auto *to = static_cast<std::uint8_t *>(memory_.allocate(size + simdjson::SIMDJSON_PADDING));
    auto *const start = to;
    const ondemand::raw_json_string raw(reinterpret_cast<const std::uint8_t *>(text));
    if (parser_.unescape(raw, to).error() != simdjson::SUCCESS)
        fail_at(text_, offset_of(text), "malformed JSON: bad escape in a string");
    *to = 0;
    const std::string_view decoded(reinterpret_cast<const char *>(start), static_cast<std::size_t>(to - start));
    const auto is_control = [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
    };
    if (std::ranges::any_of(decoded, is_control))
        fail_at(text_, offset_of(text), "control character in a string");
    return decoded;
}

/*
 * Throws where all brackets are closed before the text ends, or some not when it does; the parser calls both the same.
 * Of the strings already read the closing quote is a NUL by now.
 */
void json_reader::fail_ending() const
{
    const std::string_view text = text_.view();
    std::string open;
    bool in_string = false;
    for (std::size_t i = text.find('{'); i < text.size(); ++i) {
        const char c = text[i];
        if (in_string) {
            i += c == '\\' ? 1 : 0;
            in_string = c != '"' && c != '\0';
        } else if (c == '"') {
            in_string = true;
        } else if (c == '{' || c == '[') {
            open += c;
        } else if (c == '}' || c == ']') {
            if (open.back() != (c == '}' ? '{' : '['))
                return;
            open.pop_back();
        }
        if (!open.empty())
            continue;
        const std::size_t rest = text.find_first_not_of(" \t\r\n", i + 1);
        if (rest == std::string_view::npos)
            return;
        fail_at(text_, rest, "malformed JSON: text behind the document");
    }
    fail_at(text_, text.size(), "malformed JSON: the document ends early");
}

void json_reader::fail_syntax(simdjson::error_code error)
{
    fail_ending();
    const auto location = document_->current_location();
    const std::size_t offset = location.error() == simdjson::SUCCESS ? offset_of(location.value_unsafe()) : text_.size;
    fail_at(text_, std::min(offset, text_.size), "malformed JSON: " + std::string(simdjson::error_message(error)));
}

/* The first pass over the text failed: on strings or on UTF-8, and does not tell where. */
void json_reader::fail_indexing(simdjson::error_code error)
{
    const std::string what = "malformed JSON: " + std::string(simdjson::error_message(error));
    const std::string_view text = text_.view();
    if (error == simdjson::UTF8_ERROR)
        fail_at(text_, valid_utf8_prefix(text), "not UTF-8");
    std::size_t string_start = 0;
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (in_string && static_cast<unsigned char>(text[i]) < 0x20)
            fail_at(text_, i, what);
        if (in_string && text[i] == '\\')
            ++i;
        else if (text[i] == '"' && (in_string = !in_string))
            string_start = i;
    }
    fail_at(text_, in_string ? string_start : 0, what);
}

} // namespace

dtf_datatree read_json(const document_text &text, arena &memory, const document_options &options)
{
    return json_reader(text, memory, options).read();
}

} // namespace framework
