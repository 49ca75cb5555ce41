#include "device/document.h"

#include <string>
#include <string_view>

namespace device {
namespace {

/// Whether a JSON text ends inside of a string or bracket. One whose brackets do not match is another fault.
bool is_cut_json(std::string_view text)
{
    std::string open;
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (in_string) {
            i += c == '\\' ? 1 : 0;
            in_string = c != '"';
        } else if (c == '"') {
            in_string = true;
        } else if (c == '{' || c == '[') {
            open += c;
        } else if (c == '}' || c == ']') {
            if (open.empty() || open.back() != (c == '}' ? '{' : '[')) {
                return false;
            }
            open.pop_back();
        }
    }
    return in_string || !open.empty();
}

} // namespace

document_kind kind_of(const framework::document_text &text)
{
    if (framework::format_of(text) == framework::document_format::xml) {
        return document_kind::native_xml;
    }
    constexpr std::string_view white_space = " \t\r\n";
    const std::string_view view = text.view();
    const std::size_t member = view.find_first_not_of(white_space, view.find('{') + 1);
    // The top members of YANG data are written module:name (RFC 7951, section 4): none can be "inventory".
    const bool is_inventory = member != std::string_view::npos && view.substr(member).starts_with("\"inventory\"");
    return is_inventory ? document_kind::inventory : document_kind::native_json;
}

void check_text(const framework::document_text &text)
{
    const std::string_view view = text.view();
    if (const std::size_t good = framework::valid_utf8_prefix(view); good != view.size()) {
        framework::fail_at(text, good, "not UTF-8");
    }
    if (framework::format_of(text) == framework::document_format::json && is_cut_json(view)) {
        framework::fail_at(text, view.size(), "the document ends early");
    }
}

} // namespace device
