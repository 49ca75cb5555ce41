/*
 * Every combination of operations on the levels of an edit, on a monitor that is there or not, under each default
 * operation, against a plain telling of RFC 6241, section 7.2, over a set of paths.
 */
#include "edit_device.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>

namespace {

/* A node of an edit: its operation (empty: none of its own) and what is below it. */
struct node {
    std::string path;
    std::string operation;
    std::vector<node> children;
};

struct refusal {
    std::string tag;
    std::string path;
};

bool removes(const std::string &operation) { return operation == "delete" || operation == "remove"; }

/* The datastore as the set of paths that are there; a path's subtree begins with it and "/". */
class datastore
{
  public:
    explicit datastore(std::set<std::string> paths) : paths_(std::move(paths)) {}

    bool has(const std::string &path) const
    {
        const auto at = paths_.lower_bound(path);
        return at != paths_.end() && (*at == path || at->starts_with(path + "/"));
    }

    void erase(const std::string &path)
    {
        std::erase_if(paths_, [&](const std::string &each) { return each == path || each.starts_with(path + "/"); });
    }

    void apply(const node &at, const std::string &inherited)
    {
        const std::string operation = at.operation.empty() ? inherited : at.operation;
        const bool is_top = at.path == "m", is_entry = at.path == "m/X";
        if (operation == "create" && has(at.path))
            throw refusal{"data-exists", at.path};
        if ((operation == "delete" || (operation == "none" && !is_top)) && !has(at.path))
            throw refusal{"data-missing", at.path};
        if (removes(operation)) {
            /* Parts of a monitor are there as long as it is. */
            if (!is_top && !is_entry && has(at.path))
                throw refusal{"operation-not-supported", at.path};
            for (const node &child : at.children) {
                if (!child.operation.empty() && !removes(child.operation))
                    throw refusal{"bad-attribute", child.path};
            }
            return erase(at.path);
        }
        if (operation == "replace")
            erase(at.path);
        if (operation != "none")
            paths_.insert(at.path);
        for (const node &child : at.children)
            apply(child, operation);
    }

  private:
    std::set<std::string> paths_;
};

/* What the mapping refuses before the operations are looked at: content listed below a container that goes. */
void refuse_listed_content(const node &at, const std::string &inherited)
{
    const std::string operation = at.operation.empty() ? inherited : at.operation;
    const bool is_list_entry = at.path == "m/X";
    if (removes(operation) && !at.children.empty() && !is_list_entry)
        throw refusal{"operation-not-supported", at.path};
    for (const node &child : at.children)
        refuse_listed_content(child, operation);
}

constexpr const char *name = "0/1-CHMON-BST";
const std::vector<std::string> operations = {"", "merge", "replace", "create", "delete", "remove"};

std::string attribute(const node &of) { return of.operation.empty() ? "" : " nc:operation=\"" + of.operation + "\""; }

std::string xml_of(const node &top)
{
    std::string entries;
    for (const node &entry : top.children) {
        std::string inside;
        for (const node &config : entry.children) {
            std::string leaves;
            for (const node &leaf : config.children) {
                const std::string tag = leaf.path.substr(leaf.path.rfind('/') + 1);
                leaves +=
                    "<" + tag + attribute(leaf) + ">" + (tag == "name" ? name : "0/1-OtsCtrl-0/0") + "</" + tag + ">";
            }
            inside += "<config" + attribute(config) + ">" + leaves + "</config>";
        }
        entries += "<channel-monitor" + attribute(entry) + "><name>" + name + "</name>" + inside + "</channel-monitor>";
    }
    return edits::document(entries, attribute(top));
}

/* The reference's paths in the terms of the answer. */
std::string answered(const std::string &path)
{
    return path == "m" ? "/channel-monitors"
                       : std::string("/channel-monitors/channel-monitor[name='") + name + "']" + path.substr(3);
}

const char *const leaf_paths[] = {"m/X/config/name", "m/X/config/monitor-port"};

/* All edits: an operation on the top, on the entry, on config or no config, and on one, the other or no leaf. */
std::vector<node> all_edits()
{
    std::vector<node> all;
    for (const std::string &top : operations) {
        all.push_back({"m", top, {}});
        for (const std::string &entry : operations) {
            all.push_back({"m", top, {{"m/X", entry, {}}}});
            for (const std::string &config : operations) {
                all.push_back({"m", top, {{"m/X", entry, {{"m/X/config", config, {}}}}}});
                for (const std::string &leaf : operations) {
                    for (const char *const path : leaf_paths)
                        all.push_back({"m", top, {{"m/X", entry, {{"m/X/config", config, {{path, leaf, {}}}}}}}});
                }
            }
        }
    }
    return all;
}

class matrix : public testing::Test
{
  protected:
    matrix()
    {
        edits::fill(device_);
        configure(true);
        all_ = edits::stored(device_);
    }

    /* The edited monitor there or not; the other one is. */
    void configure(bool there)
    {
        ostore::write_transaction txn(device_.database());
        edits::put(txn, "act", edits::controllers[3]);
        if (there)
            edits::put(txn, "act", edits::controllers[0]);
        else
            device::native_writer(txn).remove_interface("act", edits::controllers[0]);
        txn.commit();
    }

    /* All that is stored when it is as the reference says; what an edit must never touch is there as ever. */
    edits::records as_in(const datastore &data) const
    {
        edits::records wanted = all_;
        if (!data.has("m/X"))
            wanted.erase(device::interface_key("act", edits::controllers[0]));
        if (!data.has("m/other"))
            wanted.erase(device::interface_key("act", edits::controllers[3]));
        return wanted;
    }

    /* "ok", or tag and path of the error. */
    std::string run(const std::string &text, service::edit_operation otherwise, bool dry_run)
    {
        try {
            edits::edit(mapper_, device_, folder_.path, text, otherwise, dry_run);
            return "ok";
        } catch (const service::netconf_error &error) {
            return error.tag() + " " + error.path();
        }
    }

    /* The same by the reference, which changes `data` unless it refuses. */
    static std::string judge(const node &edit, const std::string &otherwise, datastore &data)
    {
        datastore after = data;
        try {
            refuse_listed_content(edit, "");
            after.apply(edit, otherwise);
        } catch (const refusal &refused) {
            return refused.tag + " " + answered(refused.path);
        }
        data = after;
        return "ok";
    }

    temporary_folder folder_;
    device::folder device_ = device::folder::create(folder_.path / "device");
    service::plugin mapper_;
    edits::records all_;
};

TEST_F(matrix, operations_on_all_levels)
{
    int cases = 0, changed = 0;
    for (const bool there : {false, true}) {
        configure(there);
        const datastore found(there ? std::set<std::string>{"m/other", "m/X", leaf_paths[0], leaf_paths[1]}
                                    : std::set<std::string>{"m/other"});
        for (const std::string otherwise : {"merge", "replace", "none"}) {
            for (const node &edit : all_edits()) {
                if (!edit.operation.empty() && otherwise != "merge")
                    continue; /* the default operation reaches no node */
                const std::string text = xml_of(edit);
                SCOPED_TRACE((there ? "configured, " : "absent, ") + otherwise + ", " + text);
                datastore data = found;
                const std::string wanted = judge(edit, otherwise, data);
                const auto operation = service::default_operation_named(otherwise);
                /* Half of them: a dry run differs at the end alone. */
                if (text.find("monitor-port") == std::string::npos) {
                    EXPECT_EQ(run(text, operation, true), wanted);
                    EXPECT_EQ(edits::stored(device_), as_in(found)) << "a dry run changed something";
                }
                EXPECT_EQ(run(text, operation, false), wanted);
                EXPECT_EQ(edits::stored(device_), as_in(data));
                ++cases;
                if (as_in(data) != as_in(found)) {
                    ++changed;
                    configure(there);
                }
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    std::printf("cases=%d changed=%d\n", cases, changed);
    EXPECT_GE(cases, 7600);
    EXPECT_GE(changed, 1000);
}

} // namespace
