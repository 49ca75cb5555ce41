#include "xml_reader.h"

#include "edit_operations.h"
#include "name_table.h"
#include "tree_builder.h"
#include "xml_cursor.h"
#include "xml_text.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace framework {

namespace {

constexpr std::string_view xml_namespace = "http://www.w3.org/XML/1998/namespace";

class xml_reader
{
  public:
    xml_reader(const document_text &text, arena &memory, const document_options &options)
        : text_(text),
          memory_(memory),
          use_(options.use),
          builder_(memory, text, options),
          names_(memory),
          cursor_(text)
    {
    }

    dtf_datatree read();

  private:
    /* One namespace declaration; the default one has an empty prefix. */
    struct binding {
        std::string_view prefix;
        const char *uri;   /* null: no namespace */
        std::size_t level; /* of the element that declares it; the root element is at 0 */
        std::size_t outer; /* the one of the same prefix that it hides, as in innermost_ */
    };

    /* What an element's attributes say beside its namespaces. */
    struct attributes {
        int operation = -1;                       /* none */
        bool has_operation = false;               /* whether or not it has a meaning here */
        std::string_view filter_type = "subtree"; /* of a wrapper */
        bool is_match = false;                    /* of a filter: attributes that the data should have */
    };

    void read_outside(bool root_is_over);
    void read_content();

    void start_element();
    void end_element();
    bool root_wraps(const name_entry &name) const;
    void read_wrapper(const name_entry &name);
    void open_node(const name_entry &name);
    const name_entry &take_name();
    bool stands_in_wrapper() const { return is_wrapped_ && open_.size() == 1; }

    void declare_namespaces(const name_entry &element);
    void drop_bindings(std::size_t level);
    attributes read_attributes(const name_entry &element, bool is_wrapper);
    void check_attributes_once(const name_entry &element) const;
    [[noreturn]] void fail_doubled(const name_entry &element, std::string_view attribute) const;
    void read_other_attribute(const name_entry &element, std::string_view attribute, bool is_wrapper,
                              attributes &given) const;
    const char *element_namespace(const name_entry &name) const;
    const char *find_prefix(std::string_view prefix, std::string_view tag) const;
    int read_operation(const std::string &tag, std::string_view word) const;
    std::string_view value_of(const xml_attribute &attribute, const name_entry &element);

    void add_text(const character_data &text);
    void add_cdata(std::string_view text);
    void add_piece(std::string_view text, bool is_cdata);
    void check_text_allowed() const;
    void give_value(dtf_datatree &leaf);

    const document_text &text_;
    arena &memory_;
    document_use use_;
    tree_builder builder_;
    name_table names_;
    xml_cursor cursor_;
    std::vector<const name_entry *> open_; /* the elements that are open, the root element first */
    bool is_wrapped_ = false;              /* the root element is none of the tree */
    std::vector<xml_attribute> attributes_;
    std::vector<binding> bindings_;
    std::unordered_map<std::string_view, std::size_t> innermost_; /* by prefix, place in bindings_ + 1; 0: none */
    const char *default_ns_ = nullptr;

    /* The text of the innermost element so far: one run of characters, or what comments and CDATA sections cut. */
    character_data text_run_ = {};
    std::string text_pieces_;
    bool has_text_ = false;
    bool is_in_pieces_ = false;
};

dtf_datatree xml_reader::read()
{
    check_encoding(text_);
    read_outside(false);
    start_element();
    read_content();
    read_outside(true);
    dtf_datatree root = builder_.finish();
    if (use_ == document_use::edit)
        inherit_operations(root);
    return root;
}

/* What stands before the root element, and behind it up to the end. */
void xml_reader::read_outside(bool root_is_over)
{
    for (;;) {
        const character_data text = cursor_.take_text();
        if (!text.is_blank())
            cursor_.fail(text.first, "text outside of the root element");
        const char *const place = text.end;
        switch (cursor_.take_mark()) {
        case xml_cursor::mark::passed:
            break;
        case xml_cursor::mark::document_end:
            if (root_is_over)
                return;
            throw parse_error(text_.name + ": the document has no element");
        case xml_cursor::mark::start:
            if (!root_is_over)
                return;
            cursor_.fail(place, "second root element; several top containers stand in <data> or <config>");
        case xml_cursor::mark::end:
        case xml_cursor::mark::cdata:
            cursor_.fail(place, "malformed XML: not inside of an element");
        }
    }
}

/* In document order, without recursion: documents nest as deep as they like until the builder refuses. */
void xml_reader::read_content()
{
    while (!open_.empty()) {
        const character_data text = cursor_.take_text();
        if (!text.is_blank() || has_text_)
            add_text(text);
        switch (cursor_.take_mark()) {
        case xml_cursor::mark::start:
            start_element();
            break;
        case xml_cursor::mark::end:
            cursor_.take_end_tag(open_.back()->text);
            end_element();
            break;
        case xml_cursor::mark::cdata:
            add_cdata(cursor_.take_cdata());
            break;
        case xml_cursor::mark::passed:
            break;
        case xml_cursor::mark::document_end:
            cursor_.fail("malformed XML: the document ends inside of <" + std::string(open_.back()->text) + ">");
        }
    }
}

/* Behind the "<" of a start tag. The element is open then, unless it ends with its tag. */
void xml_reader::start_element()
{
    if (has_text_)
        builder_.fail("text beside elements");
    const name_entry &name = take_name();
    attributes_.clear();
    const bool is_empty = cursor_.take_attributes(attributes_);
    if (!attributes_.empty())
        declare_namespaces(name);
    is_wrapped_ = is_wrapped_ || (open_.empty() && root_wraps(name));
    if (is_wrapped_ && open_.empty())
        read_wrapper(name);
    else
        open_node(name);
    open_.push_back(&name);
    if (is_empty)
        end_element();
}

/* Whether the root element is a wrapper. Refuses a whole NETCONF message. */
bool xml_reader::root_wraps(const name_entry &name) const
{
    const std::string_view tag = name.tag;
    const char *const ns = element_namespace(name);
    if ((tag == "data" || tag == "config" || tag == "filter") && (ns == nullptr || ns == netconf_namespace))
        return true;
    /* Else it would be an element of no model, or of a filter that selects nothing, and told as that. */
    const bool is_message =
        tag == "rpc" || tag == "hello" || tag == "get" || tag == "get-config" || tag == "edit-config";
    if (ns == nullptr ? is_message : ns == netconf_namespace)
        builder_.fail_child(tag, "a NETCONF message; the document is what stands in its <filter>, <config> or <data>");
    return false;
}

void xml_reader::read_wrapper(const name_entry &name)
{
    const attributes given = read_attributes(name, true);
    if (given.filter_type != "subtree")
        builder_.fail_attribute(attribute_error::kind::bad, name.text, "type",
                                "filters of type '" + std::string(given.filter_type) +
                                    "' are not supported, only subtree");
}

void xml_reader::open_node(const name_entry &name)
{
    const char *const ns = element_namespace(name);
    if (attributes_.empty()) {
        builder_.open(name.tag, ns);
        return;
    }
    const attributes given = read_attributes(name, false);
    dtf_datatree &node = builder_.open(name.tag, given.is_match ? nowhere_namespace : ns);
    if (given.operation >= 0)
        set_operation(node, static_cast<std::uint32_t>(given.operation));
}

/* Of the innermost element; its end tag has been read. */
void xml_reader::end_element()
{
    if (!stands_in_wrapper()) {
        if (has_text_)
            give_value(builder_.current());
        builder_.close();
    }
    open_.pop_back();
    if (!bindings_.empty())
        drop_bindings(open_.size());
}

/* ---- names and namespaces ---- */

const name_entry &xml_reader::take_name()
{
    if (cursor_.take_name(names_.guess()->text))
        return *names_.take_guess();
    const std::string_view name = cursor_.take_name();
    const name_entry *const entry = names_.find(name);
    if (entry == nullptr)
        builder_.fail_child(name, "not an element name");
    return *entry;
}

/* The declarations of an element, all of them before any name is resolved: their order does not matter. */
void xml_reader::declare_namespaces(const name_entry &element)
{
    for (const xml_attribute &attribute : attributes_) {
        std::string_view name = attribute.name;
        if (!name.starts_with("xmlns") || (name.size() > 5 && name[5] != ':'))
            continue;
        name.remove_prefix(std::min<std::size_t>(name.size(), 6));
        const std::string_view uri = value_of(attribute, element);
        if (uri.empty() && !name.empty())
            builder_.fail_child(element.text, "prefix '" + std::string(name) + "' bound to no namespace");
        std::size_t &innermost = innermost_[name];
        bindings_.push_back({name, uri.empty() ? nullptr : names_.namespace_of(uri), open_.size(), innermost});
        innermost = bindings_.size();
        if (name.empty())
            default_ns_ = bindings_.back().uri;
    }
}

/* Forgets what the element of that level declared. */
void xml_reader::drop_bindings(std::size_t level)
{
    bool default_changed = false;
    for (; !bindings_.empty() && bindings_.back().level == level; bindings_.pop_back()) {
        innermost_[bindings_.back().prefix] = bindings_.back().outer;
        default_changed = default_changed || bindings_.back().prefix.empty();
    }
    if (default_changed)
        default_ns_ = find_prefix({}, {});
}

const char *xml_reader::element_namespace(const name_entry &name) const
{
    return name.prefix.empty() ? default_ns_ : find_prefix(name.prefix, name.tag);
}

/* The innermost binding; of the empty prefix none is needed. */
const char *xml_reader::find_prefix(std::string_view prefix, std::string_view tag) const
{
    const auto found = innermost_.find(prefix);
    if (found != innermost_.end() && found->second != 0)
        return bindings_[found->second - 1].uri;
    if (prefix == "xml")
        return xml_namespace.data();
    if (!prefix.empty())
        builder_.fail_child(tag, "unbound prefix '" + std::string(prefix) + "'");
    return nullptr;
}

/* ---- attributes ---- */

xml_reader::attributes xml_reader::read_attributes(const name_entry &element, bool is_wrapper)
{
    attributes given;
    check_attributes_once(element);
    for (const xml_attribute &attribute : attributes_) {
        const std::string_view name = attribute.name;
        if (name == "xmlns" || name.starts_with("xmlns:"))
            continue;
        const std::size_t colon = name.rfind(':');
        const bool has_prefix = colon != std::string_view::npos && colon > 0;
        const bool is_netconf = has_prefix && find_prefix(name.substr(0, colon), element.text) == netconf_namespace;
        const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
        if (is_netconf && local == "operation" && !is_wrapper) {
            if (std::exchange(given.has_operation, true))
                fail_doubled(element, local);
            given.operation = read_operation(std::string(element.text), value_of(attribute, element));
        } else if (is_wrapper && local == "type" && (is_netconf || colon == std::string_view::npos))
            given.filter_type = value_of(attribute, element);
        else
            read_other_attribute(element, name, is_wrapper, given);
    }
    return given;
}

/* Doubles are not well-formed (XML 1.0, section 3.1). */
void xml_reader::check_attributes_once(const name_entry &element) const
{
    std::vector<std::string_view> names;
    for (const xml_attribute &attribute : attributes_)
        names.push_back(attribute.name);
    std::ranges::sort(names);
    if (const auto twice = std::ranges::adjacent_find(names); twice != names.end())
        fail_doubled(element, *twice);
}

void xml_reader::fail_doubled(const name_entry &element, std::string_view attribute) const
{
    builder_.fail_child(builder_.next_child(std::string(element.text)),
                        "malformed XML: attribute '" + std::string(attribute) + "' is there twice");
}

void xml_reader::read_other_attribute(const name_entry &element, std::string_view attribute, bool is_wrapper,
                                      attributes &given) const
{
    if (use_ != document_use::read || is_wrapper)
        builder_.fail_attribute(attribute_error::kind::unknown, builder_.next_child(std::string(element.text)),
                                attribute, "unexpected attribute '" + std::string(attribute) + "'");
    given.is_match = true;
}

/* The operation to set; -1 where the document's use gives it no meaning. */
int xml_reader::read_operation(const std::string &tag, std::string_view word) const
{
    const auto operation = operation_of(word);
    if (!operation)
        builder_.fail_attribute(attribute_error::kind::bad, builder_.next_child(tag), "operation",
                                "unknown edit operation '" + std::string(word) + "'");
    if (use_ == document_use::data)
        builder_.fail_child(tag, "edit operation in data");
    return use_ == document_use::edit ? static_cast<int>(*operation) : -1;
}

std::string_view xml_reader::value_of(const xml_attribute &attribute, const name_entry &element)
{
    const std::string_view value = trim_xml(attribute.value);
    if (value.find_first_of("&\r") == std::string_view::npos)
        return value;
    try {
        const std::string decoded = decode_xml(value, true);
        return {memory_.copy(decoded), decoded.size()};
    } catch (const xml_text_error &error) {
        builder_.fail_child(element.text, error.what);
    }
}

/* ---- text ---- */

/* A run of characters that is not blank, or goes on with a text. */
void xml_reader::add_text(const character_data &text)
{
    if (has_text_) {
        add_piece({text.start, static_cast<std::size_t>(text.end - text.start)}, false);
        return;
    }
    check_text_allowed();
    text_run_ = text;
    has_text_ = true;
}

void xml_reader::add_cdata(std::string_view text)
{
    if (text.empty())
        return;
    check_text_allowed();
    add_piece(text, true);
}

void xml_reader::add_piece(std::string_view text, bool is_cdata)
{
    try {
        if (!std::exchange(is_in_pieces_, true))
            text_pieces_ = has_text_ ? decode_xml({text_run_.start, text_run_.end}, true) : "";
        text_pieces_ += decode_xml(text, !is_cdata);
    } catch (const xml_text_error &error) {
        builder_.fail(error.what);
    }
    has_text_ = true;
}

void xml_reader::check_text_allowed() const
{
    if (stands_in_wrapper())
        builder_.fail("text in <" + std::string(open_.back()->text) + ">");
    if (!builder_.is_childless())
        builder_.fail("text beside elements");
}

/* The text as the value of its element; a plain one, the rule, stays where it is. */
void xml_reader::give_value(dtf_datatree &leaf)
{
    has_text_ = false;
    if (std::exchange(is_in_pieces_, false)) {
        if (const std::string_view trimmed = trim_xml(text_pieces_); !trimmed.empty())
            set_value(leaf, memory_.copy(trimmed));
        return;
    }
    if (text_run_.is_plain && static_cast<unsigned char>(text_run_.end[-1]) > ' ') {
        *text_run_.end = '\0'; /* the "<" that follows */
        set_value(leaf, text_run_.first);
        return;
    }
    try {
        set_value(leaf, memory_.copy(decode_xml(trim_xml({text_run_.first, text_run_.end}), true)));
    } catch (const xml_text_error &error) {
        builder_.fail(error.what);
    }
}

} // namespace

dtf_datatree read_xml(const document_text &text, arena &memory, const document_options &options)
{
    return xml_reader(text, memory, options).read();
}

} // namespace framework
