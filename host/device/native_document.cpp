#include "device/native_document.h"

#include "framework/xml_wrapper.h"

#include <libyang/libyang.h>

namespace device {
namespace {

/// The leaves of a list entry; their values are libyang's and live as long as the tree.
class entry_leaves
{
  public:
    explicit entry_leaves(const lyd_node *entry) { gather(entry); }

    /// The same with another entry; keeps the memory.
    void gather(const lyd_node *entry)
    {
        leaves_.clear();
        for (const lyd_node *child = lyd_child(entry); child != nullptr; child = child->next) {
            if (child->schema->nodetype == LYS_LEAF) {
                add(child);
            }
        }
    }

    const std::vector<native_leaf> &get() const { return leaves_; }

  private:
    void add(const lyd_node *leaf)
    {
        const auto tag = native_tag_of(leaf->schema->name);
        if (!tag) {
            throw std::logic_error(std::string("no tag for leaf ") + leaf->schema->name);
        }
        leaves_.push_back({*tag, std::nullopt});
        const auto *type = reinterpret_cast<const lysc_node_leaf *>(leaf->schema)->type;
        if (type->basetype != LY_TYPE_EMPTY) {
            leaves_.back().value = lyd_get_value(leaf);
        }
    }

    std::vector<native_leaf> leaves_;
};

bool has_name(const lyd_node *node, std::string_view name) { return node->schema->name == name; }

/// /interface-configurations
void read_interfaces(const lyd_node *container, native_records &records)
{
    records.begin_interfaces();
    for (const lyd_node *entry = lyd_child(container); entry != nullptr; entry = entry->next) {
        records.add_interface(entry_leaves(entry).get());
    }
}

/// /ots-oper/ots-ports/ots-port/ots-spectrum-info
void read_slices(const lyd_node *container, native_records &records)
{
    const lyd_node *slice = lyd_child(container);
    for (entry_leaves leaves(slice); slice != nullptr; slice = slice->next) {
        leaves.gather(slice);
        records.add_slice(leaves.get());
    }
}

/// /ots-oper/ots-ports/ots-port
void read_port(const lyd_node *port, native_records &records)
{
    // libyang keeps the keys first: this is the name.
    records.begin_port(lyd_get_value(lyd_child(port)), entry_leaves(port).get());
    for (const lyd_node *child = lyd_child(port); child != nullptr; child = child->next) {
        if (has_name(child, "ots-spectrum-info")) {
            read_slices(child, records);
        }
    }
    records.end_port();
}

/// /ots-oper
void read_ots_oper(const lyd_node *container, native_records &records)
{
    records.begin_ports();
    for (const lyd_node *ports = lyd_child(container); ports != nullptr; ports = ports->next) {
        for (const lyd_node *port = lyd_child(ports); port != nullptr; port = port->next) {
            read_port(port, records);
        }
    }
}

[[noreturn]] void refuse(const framework::document_text &from, const lyd_node *top, const char *cause)
{
    throw invalid_document(from.name + ": /" + top->schema->module->name + ":" + top->schema->name + ": " + cause);
}

bool is_native(const lyd_node *top) { return has_name(top, "interface-configurations") || has_name(top, "ots-oper"); }

/// The document's tree. Of one that fits another of our modules this is told, and not what else is wrong with it.
data_tree parse(const schema &modules, const framework::document_text &from, format written_as)
{
    const auto inner = written_as == format::xml ? framework::without_wrapper(from) : std::nullopt;
    const std::string_view text = inner ? std::string_view(*inner) : framework::content_of(from);
    try {
        return modules.parse(text, written_as, check::whole, from.name);
    } catch (const invalid_document &) {
        const data_tree read = modules.parse(text, written_as, check::types, from.name);
        if (read != nullptr && !is_native(read.get())) {
            refuse(from, read.get(), "not of a native module");
        }
        throw;
    }
}

} // namespace

void read_native(const schema &modules, const framework::document_text &from, format written_as,
                 native_records &records)
{
    const data_tree tree = parse(modules, from, written_as);
    if (tree == nullptr) {
        throw invalid_document(from.name + ": holds no data");
    }
    for (const lyd_node *top = tree.get(); top != nullptr; top = top->next) {
        if (!is_native(top)) {
            refuse(from, top, "not of a native module");
        }
        const bool is_interfaces = has_name(top, "interface-configurations");
        if (is_interfaces ? records.has_interfaces() : records.has_ports()) {
            refuse(from, top, "stands in another document of the same load, too");
        }
        is_interfaces ? read_interfaces(top, records) : read_ots_oper(top, records);
    }
}

} // namespace device
