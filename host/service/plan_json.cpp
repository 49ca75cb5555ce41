#include "service/plan_notes.h"
#include "service/plan_text.h"

#include "framework/schema_facts.h"

#include <cstdio>
#include <set>
#include <string_view>

namespace service {

namespace {

using framework::schema_kind;
using framework::schema_node;

constexpr std::size_t indent_width = 2;

/* Builds the text; members of objects and elements of arrays are separated and indented here. */
class json_text
{
  public:
    void open(char bracket)
    {
        text_ += bracket;
        ++depth_;
        first_ = true;
    }

    void close(char bracket)
    {
        --depth_;
        if (!first_)
            new_line();
        text_ += bracket;
        first_ = false;
    }

    /* Begins the next member or element. */
    void item()
    {
        if (!first_)
            text_ += ',';
        first_ = false;
        new_line();
    }

    void member(std::string_view name)
    {
        item();
        string(name);
        text_ += ": ";
    }

    void string(std::string_view text)
    {
        text_ += '"';
        for (const char c : text)
            character(c);
        text_ += '"';
    }

    void raw(std::string_view text) { text_ += text; }

    std::string take() { return std::move(text_) + "\n"; }

  private:
    void new_line() { text_.append("\n").append(depth_ * indent_width, ' '); }

    void character(char c)
    {
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[sizeof "\\u0000"];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
            text_ += code;
        } else {
            text_ += c;
        }
    }

    std::string text_;
    std::size_t depth_ = 0;
    bool first_ = true;
};

class plan_writer
{
  public:
    explicit plan_writer(const framework::mapping *walk) : walk_(walk) {}

    std::string write(const dtf_datatree &native)
    {
        text_.open('{');
        members(native, nullptr);
        text_.close('}');
        return text_.take();
    }

  private:
    void notes(const dtf_datatree &node)
    {
        const plan_notes notes = notes_of(walk_, node);
        text_.open('{');
        if (!notes.operation.empty()) {
            text_.member("ietf-netconf:operation");
            text_.string(notes.operation);
        }
        if (!notes.source.empty()) {
            text_.member("chmon:source");
            text_.string(notes.source);
        }
        text_.close('}');
    }

    void object(const dtf_datatree &node, const schema_node *facts)
    {
        text_.open('{');
        if (!notes_of(walk_, node).empty()) {
            text_.member("@");
            notes(node);
        }
        members(node, facts);
        text_.close('}');
    }

    void members(const dtf_datatree &node, const schema_node *facts)
    {
        std::set<std::string_view> done;
        for (const dtf_datatree &child : children_of(node)) {
            if (!done.insert(child.tag).second)
                continue; /* an entry of a list that is written already */
            const schema_node *const child_facts = framework::schema_of(child, node, facts);
            const schema_kind kind = child_facts == nullptr ? schema_kind::container : child_facts->kind;
            const std::string name = member_name(child, node);
            if (kind == schema_kind::container) {
                text_.member(name);
                object(child, child_facts);
            } else if (kind == schema_kind::list) {
                text_.member(name);
                entries(node, child.tag, child_facts);
            } else {
                leaf(child, name, kind);
            }
        }
    }

    void entries(const dtf_datatree &parent, std::string_view tag, const schema_node *facts)
    {
        text_.open('[');
        for (const dtf_datatree &entry : children_of(parent)) {
            if (tag == entry.tag) {
                text_.item();
                object(entry, facts);
            }
        }
        text_.close(']');
    }

    void leaf(const dtf_datatree &node, const std::string &name, schema_kind kind)
    {
        text_.member(name);
        if (value_of(node).empty())
            text_.raw("[null]");
        else if (kind == schema_kind::bare_leaf)
            text_.raw(value_of(node));
        else
            text_.string(value_of(node));
        if (!notes_of(walk_, node).empty()) {
            text_.member("@" + name);
            notes(node);
        }
    }

    /* With the module's name where that is not the parent's (RFC 7951, 4). */
    static std::string member_name(const dtf_datatree &node, const dtf_datatree &parent)
    {
        if (node.ns == nullptr || framework::same_namespace(node.ns, parent.ns))
            return node.tag;
        const framework::schema_module *const module = framework::find_module_by_namespace(node.ns);
        return std::string(module == nullptr ? node.ns : module->name) + ":" + node.tag;
    }

    const framework::mapping *walk_;
    json_text text_;
};

} // namespace

std::string plan_json(const dtf_datatree &native, const framework::mapping *walk)
{
    return plan_writer(walk).write(native);
}

} // namespace service
