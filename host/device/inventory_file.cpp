#include "device/inventory_file.h"

#include "device/schema.h"

#include <algorithm>
#include <set>
#include <simdjson.h>

namespace device {
namespace {

[[noreturn]] void refuse(std::string_view file, const std::string &cause)
{
    throw invalid_document(std::string(file) + ": " + cause);
}

/// A value of the file as a message can show it: one line, not too long.
std::string shown(simdjson::dom::element value)
{
    std::string text = simdjson::minify(value);
    return text.size() > 60 ? text.substr(0, 60) + " ..." : text;
}

/// The array of the names, in a document that has nothing beside it.
simdjson::dom::array members(simdjson::dom::element document, std::string_view file)
{
    simdjson::dom::object object;
    if (document.get(object) != simdjson::SUCCESS) {
        refuse(file, "an inventory is an object {\"inventory\": [...]}");
    }
    // Every member is looked at: simdjson leaves doubles standing, and finds the first of them.
    for (const auto member : object) {
        if (member.key != "inventory") {
            refuse(file, "unknown member \"" + std::string(member.key) + "\": an inventory has \"inventory\" alone");
        }
    }
    if (object.size() != 1) {
        refuse(file, "an inventory has one member \"inventory\", here are " + std::to_string(object.size()));
    }
    simdjson::dom::array names;
    if (object["inventory"].get(names) != simdjson::SUCCESS) {
        refuse(file, "/inventory: not an array of monitor names");
    }
    return names;
}

} // namespace

bool is_monitor_name(std::string_view name)
{
    constexpr std::string_view chassis = "0/";
    if (!name.starts_with(chassis)) {
        return false;
    }
    name.remove_prefix(chassis.size());
    const std::string_view amplifier = name.substr(std::min<std::size_t>(1, name.size()));
    return !name.empty() && name.front() >= '1' && name.front() <= '3' &&
           (amplifier == "-CHMON-BST" || amplifier == "-CHMON-PRE");
}

std::vector<std::string> read_inventory(std::string_view text, std::string_view file)
{
    simdjson::dom::parser parser;
    simdjson::dom::element document;
    if (const auto error = parser.parse(text.data(), text.size()).get(document); error != simdjson::SUCCESS) {
        refuse(file, std::string("not JSON: ") + simdjson::error_message(error));
    }
    std::vector<std::string> names;
    std::set<std::string_view> seen;
    for (const auto element : members(document, file)) {
        const std::string place = "/inventory/" + std::to_string(names.size()) + ": ";
        std::string_view name;
        if (element.get(name) != simdjson::SUCCESS || !is_monitor_name(name)) {
            refuse(file, place + shown(element) + " is no monitor name " + monitor_name_form);
        }
        if (!seen.insert(name).second) {
            refuse(file, place + shown(element) + " stands twice");
        }
        names.emplace_back(name);
    }
    return names;
}

} // namespace device
