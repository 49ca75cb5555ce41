#include "service/edit_resolution.h"

#include "service/netconf_error.h"

#include "device/inventory_file.h"

#include <algorithm>

namespace service {

namespace {

/* What a node's operation finds where it applies: the configuration before the edit, less what is replaced above. */
enum class present { no, yes, replaced };

[[noreturn]] void refuse_existing(const std::string &path)
{
    throw application_error("data-exists", path, "is configured already");
}

[[noreturn]] void refuse_missing(const std::string &path, present before)
{
    throw application_error("data-missing", path,
                            before == present::replaced ? "is not there: what is above it is made anew"
                                                        : "is not configured");
}

/* Create, delete and none say what must be there before. */
void check_presence(edit_operation operation, present before, const std::string &path)
{
    if (operation == edit_operation::create && before == present::yes)
        refuse_existing(path);
    if ((operation == edit_operation::remove_existing || operation == edit_operation::none) && before != present::yes)
        refuse_missing(path, before);
}

/* What children of a node find: below one that is made anew there is nothing yet. */
present below(edit_operation operation, present before)
{
    return operation == edit_operation::replace || operation == edit_operation::create ? present::replaced : before;
}

/* A part of an entry, whose operation is its own or its parent's. Gives the operation. */
edit_operation check_part(const edit_node &part, edit_operation inherited, present before, const std::string &path)
{
    const edit_operation operation = part.operation.value_or(inherited);
    check_presence(operation, before, path);
    if (is_removal(operation) && before == present::yes)
        throw application_error("operation-not-supported", path,
                                "follows from the monitor's name and goes only with the whole entry");
    return operation;
}

void check_leaf(const edit_node &leaf, edit_operation inherited, present before, const std::string &path,
                const std::string &wanted)
{
    if (is_removal(check_part(leaf, inherited, before, path)))
        return;
    if (leaf.value != wanted)
        throw application_error("invalid-value", path,
                                (leaf.value.empty() ? "has no value" : "is '" + leaf.value + "'") +
                                    "; for this monitor it must be '" + wanted + "'");
}

void check_config(const monitor_edit &monitor, edit_operation inherited, present before, const std::string &port)
{
    if (!monitor.config)
        return;
    const std::string path = monitor_path(monitor.name) + "/config";
    const edit_operation operation = check_part(*monitor.config, inherited, before, path);
    const present inside = below(operation, before);
    if (monitor.config_name)
        check_leaf(*monitor.config_name, operation, inside, path + "/name", monitor.name);
    if (monitor.config_port)
        check_leaf(*monitor.config_port, operation, inside, path + "/monitor-port", port);
}

/* What goes as a whole has no parts that stay. */
void check_removed(const monitor_edit &monitor)
{
    if (monitor.config && monitor.config->operation && !is_removal(*monitor.config->operation))
        throw application_error("bad-attribute", monitor_path(monitor.name) + "/config",
                                "another operation below an entry that is deleted");
}

const known_monitor &require_known(const monitor_directory &monitors, const std::string &name)
{
    if (const auto found = monitors.find(name); found != monitors.end())
        return found->second;
    throw application_error("invalid-value", monitor_path(name) + "/name",
                            device::is_monitor_name(name)
                                ? "the device has no such monitor in its inventory"
                                : std::string("is no monitor name ") + device::monitor_name_form);
}

/* One edit being resolved. */
class resolution
{
  public:
    explicit resolution(const monitor_directory &monitors) : monitors_(monitors) {}

    std::vector<monitor_change> resolve(const edit_request &edit, edit_operation default_operation)
    {
        const edit_operation operation = edit.operation.value_or(default_operation);
        const present before = any_configured() ? present::yes : present::no;
        /* A container that is only structure is no level that a parent's `none` could miss. */
        if (operation != edit_operation::none)
            check_presence(operation, before, monitors_path);
        if (is_removal(operation) || operation == edit_operation::replace)
            remove_all_but(edit.monitors);
        if (!is_removal(operation)) {
            for (const monitor_edit &monitor : edit.monitors)
                resolve_entry(monitor, operation);
        }
        return std::move(changes_);
    }

  private:
    bool is_configured(const std::string &name) const
    {
        const auto found = monitors_.find(name);
        return found != monitors_.end() && found->second.configured;
    }

    bool any_configured() const
    {
        return std::ranges::any_of(monitors_, [](const auto &each) { return each.second.configured; });
    }

    /* Entries that the edit names are dealt with on their own. */
    void remove_all_but(const std::vector<monitor_edit> &named)
    {
        for (const auto &[name, monitor] : monitors_) {
            if (monitor.configured && std::ranges::find(named, name, &monitor_edit::name) == named.end())
                changes_.push_back({name, edit_operation::remove});
        }
    }

    void resolve_entry(const monitor_edit &monitor, edit_operation inherited)
    {
        const std::string path = monitor_path(monitor.name);
        const bool configured = is_configured(monitor.name);
        const present before = below(inherited, configured ? present::yes : present::no);
        const edit_operation operation = monitor.operation.value_or(inherited);
        check_presence(operation, before, path);
        if (is_removal(operation)) {
            check_removed(monitor);
            if (configured)
                changes_.push_back({monitor.name, edit_operation::remove});
            return;
        }
        const present inside = below(operation, before);
        if (monitor.key.operation)
            check_presence(*monitor.key.operation, inside, path + "/name");
        check_config(monitor, operation, inside, require_known(monitors_, monitor.name).port);
        if (operation != edit_operation::none)
            changes_.push_back({monitor.name, inherited == edit_operation::replace ? inherited : operation});
    }

    const monitor_directory &monitors_;
    std::vector<monitor_change> changes_;
};

} // namespace

std::vector<monitor_change> resolve_edit(const edit_request &edit, edit_operation default_operation,
                                         const monitor_directory &monitors)
{
    return resolution(monitors).resolve(edit, default_operation);
}

} // namespace service
