#include "xml_wrapper.h"

#include "edit_operations.h"
#include "xml_cursor.h"
#include "xml_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace framework {

namespace {

using attributes = std::vector<xml_attribute>;

/* Bytes of repeated declarations: few where a document has an element or two in its wrapper, without end in others. */
constexpr std::size_t most_declared = std::size_t{1} << 20;

bool is_declaration(std::string_view attribute) { return attribute == "xmlns" || attribute.starts_with("xmlns:"); }

bool declares(const attributes &declared, std::string_view name)
{
    return std::ranges::find(declared, name, &xml_attribute::name) != declared.end();
}

/* An element name in the namespace of wrappers, or in none. */
bool is_wrapper(std::string_view name, const attributes &declared)
{
    const std::size_t colon = name.find(':');
    const bool is_prefixed = colon != std::string_view::npos;
    const std::string_view tag = is_prefixed ? name.substr(colon + 1) : name;
    if (tag != "data" && tag != "config")
        return false;
    const std::string declaration = is_prefixed ? "xmlns:" + std::string(name.substr(0, colon)) : "xmlns";
    const auto found = std::ranges::find(declared, declaration, &xml_attribute::name);
    const std::string_view uri = found == declared.end() ? std::string_view() : trim_xml(found->value);
    return uri.empty() ? !is_prefixed : uri == netconf_namespace;
}

/* The outline of a document with a wrapper. */
class wrapped_document
{
  public:
    explicit wrapped_document(const document_text &text) : text_(text), cursor_(text), done_(byte_order_mark_size(text))
    {
    }

    /* What is in the wrapper; none where the document has none. */
    std::optional<std::string> inner()
    {
        if (!take_root())
            return std::nullopt;
        take_content();
        return std::move(inner_);
    }

  private:
    /* Up to the root's start tag and through it; false where it is no wrapper's. */
    bool take_root()
    {
        const char *start = nullptr;
        for (auto mark = xml_cursor::mark::passed; mark != xml_cursor::mark::start;) {
            start = cursor_.take_text().end;
            mark = cursor_.take_mark();
            if (mark != xml_cursor::mark::start && mark != xml_cursor::mark::passed)
                return false;
        }
        open_.push_back(cursor_.take_name());
        const bool is_empty = cursor_.take_attributes(declared_);
        if (!is_wrapper(open_.back(), declared_))
            return false;
        for (const xml_attribute &each : declared_)
            if (!is_declaration(each.name))
                cursor_.fail(each.name.data(), "<" + std::string(open_.back()) + "> has no such attribute");
        copy_up_to(start);
        blank_up_to(cursor_.take_text().start);
        if (is_empty)
            open_.clear();
        return true;
    }

    /* What the wrapper holds, and what follows it. */
    void take_content()
    {
        for (;;) {
            const char *const place = cursor_.take_text().end;
            switch (cursor_.take_mark()) {
            case xml_cursor::mark::start:
                if (open_.empty())
                    cursor_.fail(place, "second root element");
                take_start_tag();
                break;
            case xml_cursor::mark::end:
                if (open_.empty())
                    cursor_.fail(place, "malformed XML: not inside of an element");
                cursor_.take_end_tag(open_.back());
                open_.pop_back();
                if (open_.empty()) {
                    copy_up_to(place);
                    blank_up_to(cursor_.take_text().start);
                }
                break;
            case xml_cursor::mark::cdata:
                cursor_.take_cdata();
                break;
            case xml_cursor::mark::passed:
                break;
            case xml_cursor::mark::document_end:
                if (!open_.empty())
                    cursor_.fail("malformed XML: the document ends inside of <" + std::string(open_.back()) + ">");
                copy_up_to(text_.view().data() + text_.size);
                return;
            }
        }
    }

    void take_start_tag()
    {
        const std::string_view name = cursor_.take_name();
        attributes own;
        const bool is_empty = cursor_.take_attributes(own);
        if (open_.size() == 1) {
            copy_up_to(name.data() + name.size());
            for (const xml_attribute &each : declared_)
                if (!declares(own, each.name))
                    declare(each);
        }
        if (!is_empty)
            open_.push_back(name);
    }

    void declare(const xml_attribute &declaration)
    {
        declared_size_ += declaration.name.size() + declaration.value.size();
        if (declared_size_ > most_declared)
            cursor_.fail("the namespaces of <" + std::string(open_.front()) + "> are too long to say for each element");
        const char quote = declaration.value.find('"') == std::string_view::npos ? '"' : '\'';
        inner_.append(" ").append(declaration.name).append("=");
        inner_.append(1, quote).append(declaration.value).append(1, quote);
    }

    void copy_up_to(const char *end)
    {
        inner_.append(text_.view().data() + done_, end);
        done_ = static_cast<std::size_t>(end - text_.view().data());
    }

    void blank_up_to(const char *end)
    {
        for (const char *const start = text_.view().data(); start + done_ != end; ++done_)
            inner_ += start[done_] == '\n' ? '\n' : ' ';
    }

    const document_text &text_;
    xml_cursor cursor_;
    std::vector<std::string_view> open_; /* elements, the wrapper first */
    attributes declared_;
    std::size_t done_; /* bytes of the text that are in inner_, or of the mark before it */
    std::size_t declared_size_ = 0;
    std::string inner_;
};

} // namespace

std::optional<std::string> without_wrapper(const document_text &text) { return wrapped_document(text).inner(); }

} // namespace framework
