#include "service/netconf_error.h"

#include "framework/faults.h"

#include <algorithm>
#include <utility>

namespace service {

namespace {

/* What a result code is to a client. */
struct fault_meaning {
    faultno code;
    const char *tag;
    /* What is wrong; null: the code's own text says it. */
    const char *message;
};

/* The one place that turns result codes into errors. A code that is not here is the server's own failure. */
constexpr fault_meaning meanings[] = {
    /* A delete names its subtree by the topmost node alone; what is listed below it would not be looked at. */
    {FAULT_INVALID_ARGS, "operation-not-supported", "a delete names the container alone, nothing below it"},
    {FAULT_TREE_ERROR, "missing-element", "a list entry without its key"},
    {FAULT_UNSUPPORTED_TAG, "unknown-element", "no such element here"},
    {FAULT_LIST_KEY_ERROR, "missing-element", "the list key is missing or has no value"},
    {FAULT_KEY_DELETE, "operation-not-supported", "a list key cannot be deleted, only its entry"},
    {FAULT_UNSUPPORTED_AUGMENT, "unknown-namespace", "no element of that namespace here"},
    {framework::fault_leafref_mismatch, "invalid-value", nullptr},
    {framework::fault_hierarchy_full, "resource-denied", nullptr},
    {framework::fault_stack_full, "resource-denied", nullptr},
    {framework::fault_no_memory, "resource-denied", nullptr},
};

const char *tag_of(ostore::store_fault kind)
{
    switch (kind) {
    case ostore::store_fault::permission:
        return "access-denied";
    case ostore::store_fault::full:
        return "resource-denied";
    default:
        return "operation-failed";
    }
}

std::string line_of(std::string_view type, std::string_view tag, const std::string &path, const std::string &message)
{
    std::string line = std::string(type).append(" ").append(tag);
    if (!path.empty())
        line.append(" ").append(one_line(path));
    return line.append(": ").append(one_line(message));
}

/* The tag that a fault names is a child of the place where it happened; a list key names the entry that lacks it. */
std::string place_of(const walk_fault &fault, const std::string &otherwise)
{
    std::string path = fault.path().empty() ? otherwise : fault.path();
    return fault.tag().empty() ? path : path + "/" + fault.tag();
}

} // namespace

std::string one_line(std::string text)
{
    constexpr std::size_t longest = 400;
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    if (text.size() > longest)
        text = text.substr(0, longest / 2) + " ... " + text.substr(text.size() - longest / 2);
    return text;
}

netconf_error::netconf_error(std::string_view type, std::string_view tag, std::string path, const std::string &message)
    : std::runtime_error(line_of(type, tag, path, message)), tag_(tag), path_(std::move(path))
{
}

std::string_view error_tag_of(faultno code)
{
    const auto known = std::ranges::find(meanings, code, &fault_meaning::code);
    return known == std::end(meanings) ? "operation-failed" : known->tag;
}

netconf_error to_netconf_error(const walk_fault &fault, const std::string &path)
{
    const auto known = std::ranges::find(meanings, fault.code(), &fault_meaning::code);
    if (known == std::end(meanings))
        return application_error("operation-failed", place_of(fault, path), fault.what());
    const char *const message = known->message != nullptr ? known->message : fault_strerror(fault.code());
    return application_error(known->tag, place_of(fault, path), message);
}

netconf_error to_netconf_error(const framework::parse_error &refused)
{
    if (const auto *const wrong = dynamic_cast<const framework::attribute_error *>(&refused)) {
        const bool is_unknown = wrong->how == framework::attribute_error::kind::unknown;
        std::string element = wrong->path.substr(wrong->path.rfind('/') + 1);
        element = element.substr(0, element.find('[')); /* its ordinal among equal ones */
        return {"protocol", is_unknown ? "unknown-attribute" : "bad-attribute", wrong->path,
                wrong->message + " (bad-attribute " + wrong->attribute + ", bad-element " + element + ")"};
    }
    return {"rpc", "malformed-message", {}, refused.what()};
}

netconf_error to_netconf_error(const ostore::store_error &failed)
{
    return application_error(tag_of(failed.kind()), {}, failed.what());
}

} // namespace service
