#include "xml_reader.h"

#include "big_block.h"
#include "edit_operations.h"
#include "name_table.h"
#include "tree_builder.h"
#include "xml_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <pugixml.hpp>
#include <utility>
#include <vector>

namespace framework {

namespace {

constexpr std::string_view xml_namespace = "http://www.w3.org/XML/1998/namespace";

/*
 * The parser's work is kept small: a leaf's first text stays in its element (embed_pcdata), references are decoded here
 * (the parser keeps unknown ones as text), and text outside of the root is seen (fragment) so that it can be refused.
 */
constexpr unsigned parse_flags =
    pugi::parse_minimal | pugi::parse_cdata | pugi::parse_doctype | pugi::parse_embed_pcdata | pugi::parse_fragment;

bool is_text(const pugi::xml_node &node)
{
    const pugi::xml_node_type type = node.type();
    return type == pugi::node_pcdata || type == pugi::node_cdata;
}

/* The text lies in the document's own buffer, which the parser was given to write in. */
char *writable(const char *text) { return const_cast<char *>(text); }

/*
 * The memory of the parser's nodes, which go together: no call of malloc() and free() for each page of them, and the
 * trees that are made next get the blocks.
 */
class parser_memory
{
  public:
    parser_memory();
    parser_memory(const parser_memory &) = delete;
    parser_memory &operator=(const parser_memory &) = delete;
    ~parser_memory();

    void *allocate(std::size_t size)
    {
        const std::size_t aligned = (size + alignment - 1) / alignment * alignment;
        if (aligned > left_)
            open_block(aligned);
        left_ -= aligned;
        return std::exchange(next_, next_ + aligned);
    }

  private:
    static constexpr std::size_t alignment = alignof(std::max_align_t);
    static constexpr std::size_t first_block = std::size_t{128} << 10;

    struct sized_block {
        memory_block bytes;
        std::size_t size;
    };

    /* Blocks grow fast, so that most of a large document's are of the size that can be used again. */
    void open_block(std::size_t least)
    {
        const std::size_t standard = blocks_.size() < 3 ? first_block << (2 * blocks_.size()) : pooled_block_size;
        const std::size_t size = std::max(least, standard);
        blocks_.push_back({allocate_block(size), size});
        next_ = blocks_.back().bytes.get();
        left_ = size;
    }

    std::vector<sized_block> blocks_;
    std::byte *next_ = nullptr;
    std::size_t left_ = 0;
    parser_memory *before_;
};

/* The parser has one pair of functions for the whole process: what others parse stays with the heap. */
thread_local parser_memory *in_use = nullptr;

void *allocate_for_parser(std::size_t size)
{
    try {
        return in_use != nullptr ? in_use->allocate(size) : std::malloc(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void release_for_parser(void *memory)
{
    if (in_use == nullptr)
        std::free(memory);
}

parser_memory::parser_memory() : before_(std::exchange(in_use, this))
{
    static const bool is_set = (pugi::set_memory_management_functions(allocate_for_parser, release_for_parser), true);
    (void)is_set;
}

parser_memory::~parser_memory()
{
    in_use = before_;
    for (sized_block &block : blocks_) {
        if (block.size == pooled_block_size)
            pool_block(std::move(block.bytes));
    }
}

class xml_reader
{
  public:
    xml_reader(const document_text &text, arena &memory, const document_options &options)
        : text_(text), memory_(memory), use_(options.use), builder_(memory, text, options), names_(memory)
    {
    }

    dtf_datatree read();

  private:
    /* One namespace declaration; the default one has an empty prefix. */
    struct binding {
        std::string_view prefix;
        const char *uri;   /* null: no namespace */
        std::size_t level; /* of the element that declares it; the wrapper is at 0 */
    };

    /* What an element's attributes say beside its namespaces. */
    struct attributes {
        int operation = -1;                       /* none */
        bool has_operation = false;               /* whether or not it has a meaning here */
        std::string_view filter_type = "subtree"; /* of a wrapper */
        bool is_match = false;                    /* of a filter: attributes that the data should have */
    };

    pugi::xml_node parse();
    [[noreturn]] void fail_parse(std::ptrdiff_t offset, const std::string &what) const;
    void read_root(pugi::xml_node root);
    void read_wrapped(pugi::xml_node wrapper);
    void read_tree(pugi::xml_node top);
    pugi::xml_node read_element(pugi::xml_node element);
    void read_leaf(const char *tag, const char *ns, std::string_view text, const attributes &given);
    void end_element();

    void declare_namespaces(pugi::xml_node element, std::size_t level);
    attributes read_attributes(pugi::xml_node element, bool is_wrapper);
    void check_attributes_once(pugi::xml_node element) const;
    [[noreturn]] void fail_doubled(pugi::xml_node element, std::string_view attribute) const;
    void read_other_attribute(pugi::xml_node element, std::string_view name, bool is_wrapper, attributes &given) const;
    const char *namespace_for(const name_entry &name, const attributes &given) const
    {
        return given.is_match ? nowhere_namespace : element_namespace(name);
    }
    void drop_bindings(std::size_t level);
    const char *element_namespace(const name_entry &name) const;
    const char *find_prefix(std::string_view prefix, const char *tag) const;
    int read_operation(const char *tag, std::string_view word) const;
    const name_entry &find_name(const char *name);
    std::string_view text_of_pieces(pugi::xml_node element, const name_entry &name);
    std::string_view decoded(char *text, const char *tag) const;

    const document_text &text_;
    arena &memory_;
    document_use use_;
    tree_builder builder_;
    name_table names_;
    parser_memory parser_memory_; /* must outlive the document */
    pugi::xml_document document_;
    std::ptrdiff_t lines_ = 0; /* line ends in the document */
    std::vector<binding> bindings_;
    const char *default_ns_ = nullptr;
};

dtf_datatree xml_reader::read()
{
    lines_ = check_xml_text(text_);
    read_root(parse());
    dtf_datatree root = builder_.finish();
    if (use_ == document_use::edit)
        inherit_operations(root);
    return root;
}

/* Parses, and returns the root element, the only thing that may stand at the top beside comments. */
pugi::xml_node xml_reader::parse()
{
    const auto result = document_.load_buffer_inplace(text_.bytes.get(), text_.size, parse_flags, pugi::encoding_utf8);
    if (!result)
        fail_parse(result.offset, "malformed XML: " + std::string(result.description()));
    pugi::xml_node root;
    for (const pugi::xml_node node : document_.children()) {
        if (node.type() == pugi::node_doctype)
            fail_parse(node.offset_debug(), "a document type declaration is not allowed");
        if (is_text(node))
            fail_parse(node.offset_debug() + static_cast<std::ptrdiff_t>(std::strspn(node.value(), " \t\r\n")),
                       "text outside of the root element");
        if (root)
            fail_parse(node.offset_debug(), "second root element; several top containers stand in <data> or <config>");
        root = node;
    }
    if (!root)
        throw parse_error(text_.name + ": the document has no element");
    return root;
}

/*
 * The parser has overwritten line ends behind element names, but nothing behind `offset` where it stopped: so lines are
 * counted from the end.
 */
void xml_reader::fail_parse(std::ptrdiff_t offset, const std::string &what) const
{
    const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
    fail_at(text_, at, 1 + lines_ - std::ranges::count(text_.view().substr(std::min(at, text_.size)), '\n'), what);
}

void xml_reader::read_root(pugi::xml_node root)
{
    const name_entry &name = find_name(root.name());
    declare_namespaces(root, 0);
    const char *const ns = element_namespace(name);
    const std::string_view tag = name.tag;
    const bool is_wrapper = tag == "data" || tag == "config" || tag == "filter";
    if (is_wrapper && (ns == nullptr || ns == netconf_namespace)) {
        read_wrapped(root);
        return;
    }
    /* Else it would be an element of no model, or of a filter that selects nothing, and told as that. */
    const bool is_message =
        tag == "rpc" || tag == "hello" || tag == "get" || tag == "get-config" || tag == "edit-config";
    if (ns == nullptr ? is_message : ns == netconf_namespace)
        builder_.fail_child(tag, "a NETCONF message; the document is what stands in its <filter>, <config> or <data>");
    read_tree(root);
}

void xml_reader::read_wrapped(pugi::xml_node wrapper)
{
    const attributes given = read_attributes(wrapper, true);
    if (given.filter_type != "subtree")
        builder_.fail_attribute(attribute_error::kind::bad, wrapper.name(), "type",
                                "filters of type '" + std::string(given.filter_type) +
                                    "' are not supported, only subtree");
    if (*wrapper.value() != '\0')
        builder_.fail("text in <" + std::string(wrapper.name()) + ">");
    for (const pugi::xml_node top : wrapper.children()) {
        if (is_text(top))
            builder_.fail("text in <" + std::string(wrapper.name()) + ">");
        read_tree(top);
    }
}

/* In document order, without recursion: documents nest as deep as they like until the builder refuses. */
void xml_reader::read_tree(pugi::xml_node top)
{
    pugi::xml_node at = top;
    std::size_t open = 0; /* elements from the top one on */
    for (;;) {
        if (is_text(at)) {
            if (*at.value() != '\0')
                builder_.fail("text beside elements");
        } else if (const pugi::xml_node first = read_element(at)) {
            at = first;
            ++open;
            continue;
        }
        if (open == 0)
            return;
        pugi::xml_node next = at.next_sibling();
        while (!next) {
            at = at.parent();
            end_element();
            if (--open == 0)
                return;
            next = at.next_sibling();
        }
        at = next;
    }
}

/* Adds the element. Returns the first of its children where these are to be read next; then it is open. */
pugi::xml_node xml_reader::read_element(pugi::xml_node element)
{
    const name_entry &name = find_name(element.name());
    attributes given;
    if (element.first_attribute()) {
        if (element.parent() != document_) /* the root's are declared, at level 0 */
            declare_namespaces(element, builder_.depth() + 1);
        given = read_attributes(element, false);
    }
    const char *const ns = namespace_for(name, given);
    const pugi::xml_node first = element.first_child();
    char *const text = writable(element.value());
    if (!first) {
        read_leaf(name.tag, ns, decoded(text, name.tag), given);
        return {};
    }
    if (*text != '\0' || is_text(first)) {
        read_leaf(name.tag, ns, text_of_pieces(element, name), given);
        return {};
    }
    dtf_datatree &node = builder_.open(name.tag, ns);
    if (given.operation >= 0)
        set_operation(node, static_cast<std::uint32_t>(given.operation));
    return first;
}

void xml_reader::read_leaf(const char *tag, const char *ns, std::string_view text, const attributes &given)
{
    dtf_datatree &node = builder_.add(tag, ns);
    if (!text.empty())
        set_value(node, text.data());
    if (given.operation >= 0)
        set_operation(node, static_cast<std::uint32_t>(given.operation));
    drop_bindings(builder_.depth() + 1);
}

void xml_reader::end_element()
{
    drop_bindings(builder_.depth());
    builder_.close();
}

/* ---- names and namespaces: the parser knows none ---- */

const name_entry &xml_reader::find_name(const char *name)
{
    if (std::strcmp(names_.guess()->text.data(), name) == 0)
        return *names_.take_guess();
    const name_entry *const entry = names_.find(name);
    if (entry == nullptr)
        builder_.fail_child(name, "not an element name");
    return *entry;
}

/* The declarations of an element, all of them before any name is resolved: their order does not matter. */
void xml_reader::declare_namespaces(pugi::xml_node element, std::size_t level)
{
    for (const pugi::xml_attribute attribute : element.attributes()) {
        std::string_view name = attribute.name();
        if (!name.starts_with("xmlns") || (name.size() > 5 && name[5] != ':'))
            continue;
        name.remove_prefix(std::min<std::size_t>(name.size(), 6));
        const std::string_view uri = decoded(writable(attribute.value()), element.name());
        if (uri.empty() && !name.empty())
            builder_.fail_child(element.name(), "prefix '" + std::string(name) + "' bound to no namespace");
        bindings_.push_back({name, uri.empty() ? nullptr : names_.namespace_of(uri), level});
        if (name.empty())
            default_ns_ = bindings_.back().uri;
    }
}

/* Forgets what the element of that level declared. */
void xml_reader::drop_bindings(std::size_t level)
{
    bool default_changed = false;
    for (; !bindings_.empty() && bindings_.back().level == level; bindings_.pop_back())
        default_changed = default_changed || bindings_.back().prefix.empty();
    if (default_changed)
        default_ns_ = find_prefix({}, "");
}

const char *xml_reader::element_namespace(const name_entry &name) const
{
    return name.prefix.empty() ? default_ns_ : find_prefix(name.prefix, name.tag);
}

/* The innermost binding; of the empty prefix none is needed. */
const char *xml_reader::find_prefix(std::string_view prefix, const char *tag) const
{
    const auto found = std::ranges::find(bindings_.rbegin(), bindings_.rend(), prefix, &binding::prefix);
    if (found != bindings_.rend())
        return found->uri;
    if (prefix == "xml")
        return xml_namespace.data();
    if (!prefix.empty())
        builder_.fail_child(tag, "unbound prefix '" + std::string(prefix) + "'");
    return nullptr;
}

/* ---- attributes ---- */

xml_reader::attributes xml_reader::read_attributes(pugi::xml_node element, bool is_wrapper)
{
    attributes given;
    check_attributes_once(element);
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const std::string_view name = attribute.name();
        if (name == "xmlns" || name.starts_with("xmlns:"))
            continue;
        const std::size_t colon = name.rfind(':');
        const bool has_prefix = colon != std::string_view::npos && colon > 0;
        const bool is_netconf = has_prefix && find_prefix(name.substr(0, colon), element.name()) == netconf_namespace;
        const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
        if (is_netconf && local == "operation" && !is_wrapper) {
            if (std::exchange(given.has_operation, true))
                fail_doubled(element, local);
            given.operation = read_operation(element.name(), decoded(writable(attribute.value()), element.name()));
        } else if (is_wrapper && local == "type" && (is_netconf || colon == std::string_view::npos))
            given.filter_type = decoded(writable(attribute.value()), element.name());
        else
            read_other_attribute(element, name, is_wrapper, given);
    }
    return given;
}

/* The parser takes doubles, which are not well-formed (XML 1.0, section 3.1). */
void xml_reader::check_attributes_once(pugi::xml_node element) const
{
    if (!element.first_attribute().next_attribute())
        return;
    std::vector<std::string_view> names;
    for (const pugi::xml_attribute attribute : element.attributes())
        names.emplace_back(attribute.name());
    std::ranges::sort(names);
    if (const auto twice = std::ranges::adjacent_find(names); twice != names.end())
        fail_doubled(element, *twice);
}

void xml_reader::fail_doubled(pugi::xml_node element, std::string_view attribute) const
{
    builder_.fail_child(builder_.next_child(element.name()),
                        "malformed XML: attribute '" + std::string(attribute) + "' is there twice");
}

void xml_reader::read_other_attribute(pugi::xml_node element, std::string_view name, bool is_wrapper,
                                      attributes &given) const
{
    if (use_ != document_use::read || is_wrapper)
        builder_.fail_attribute(attribute_error::kind::unknown, builder_.next_child(element.name()), name,
                                "unexpected attribute '" + std::string(name) + "'");
    given.is_match = true;
}

/* The operation to set; -1 where the document's use gives it no meaning. */
int xml_reader::read_operation(const char *tag, std::string_view word) const
{
    const auto operation = operation_of(word);
    if (!operation)
        builder_.fail_attribute(attribute_error::kind::bad, builder_.next_child(tag), "operation",
                                "unknown edit operation '" + std::string(word) + "'");
    if (use_ == document_use::data)
        builder_.fail_child(tag, "edit operation in data");
    return use_ == document_use::edit ? static_cast<int>(*operation) : -1;
}

/* ---- text ---- */

/*
 * The text of a leaf that comments and CDATA sections cut into pieces; one piece, the rule, stays where it is. Of a
 * piece that is white space alone the parser tells nothing.
 */
std::string_view xml_reader::text_of_pieces(pugi::xml_node element, const name_entry &name)
{
    try {
        std::string whole;
        append_decoded_xml(whole, element.value(), false);
        for (const pugi::xml_node piece : element.children()) {
            if (!is_text(piece))
                builder_.fail_child(name.tag, "text beside elements");
            append_decoded_xml(whole, piece.value(), piece.type() == pugi::node_cdata);
        }
        const std::string_view trimmed = trim_xml(whole);
        return {memory_.copy(trimmed), trimmed.size()};
    } catch (const xml_text_error &error) {
        builder_.fail_child(name.tag, error.what);
    }
}

std::string_view xml_reader::decoded(char *text, const char *tag) const
{
    if (*text == '\0') /* the parser's empty text is a constant */
        return {};
    try {
        return decode_xml(text);
    } catch (const xml_text_error &error) {
        builder_.fail_child(tag, error.what);
    }
}

} // namespace

dtf_datatree read_xml(const document_text &text, arena &memory, const document_options &options)
{
    return xml_reader(text, memory, options).read();
}

} // namespace framework
