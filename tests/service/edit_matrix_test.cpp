/*
 * Every combination of operations on the levels of an edit, on a monitor that is there or not, under each default
 * operation, against a plain telling of RFC 6241, section 7.2, over a set of paths.
 */
#include "edit_device.h"

#include <gtest/gtest.h>

#include <set>

namespace {

/* A node of an edit as it is written: its path in the reference, its tag, and what stands in it at least. */
struct place {
    std::string path, tag, content;
};

/* An edit is one way down from the top: the places on it, each with its operation (empty: none of its own). */
struct step : place {
    std::string operation;
};
using edit_path = std::vector<step>;

constexpr const char *name = "0/1-CHMON-BST";
const std::vector<std::vector<place>> levels = {
    {{"m", "channel-monitors", ""}},
    {{"m/X", "channel-monitor", std::string("<name>") + name + "</name>"}},
    {{"m/X/config", "config", ""}},
    {{"m/X/config/name", "name", name}, {"m/X/config/monitor-port", "monitor-port", "0/1-OtsCtrl-0/0"}}};

/* All edits: down to any level, with any operation on each. */
std::vector<edit_path> all_edits()
{
    std::vector<edit_path> all, last{{}};
    for (const std::vector<place> &level : levels) {
        std::vector<edit_path> longer;
        for (const edit_path &above : last)
            for (const place &at : level)
                for (const char *const operation : {"", "merge", "replace", "create", "delete", "remove"}) {
                    longer.push_back(above);
                    longer.back().push_back({at, operation});
                }
        all.insert(all.end(), longer.begin(), longer.end());
        last = std::move(longer);
    }
    return all;
}

std::string xml_of(const edit_path &edit)
{
    std::string top, opening, closing;
    for (const step &at : edit) {
        std::string attribute;
        if (!at.operation.empty())
            attribute.append(" nc:operation='").append(at.operation).append("'");
        if (at.tag == "channel-monitors") {
            top = attribute;
            continue;
        }
        opening.append("<").append(at.tag).append(attribute).append(">").append(at.content);
        closing = std::string("</").append(at.tag).append(">").append(closing);
    }
    return edits::document(opening + closing, top);
}

/* The datastore as the set of paths that are there; a path's subtree begins with it and "/". */
using datastore = std::set<std::string>;

std::size_t erase(datastore &data, const std::string &path)
{
    return std::erase_if(data, [&](const std::string &each) { return each == path || each.starts_with(path + "/"); });
}

bool has(datastore data, const std::string &path) { return erase(data, path) != 0; }

bool removes(const std::string &operation) { return operation == "delete" || operation == "remove"; }

struct refusal {
    std::string tag, path;
};

/* What the mapping refuses before the operations are looked at: content listed below a container that goes. */
void refuse_listed_content(const edit_path &edit)
{
    bool goes = false;
    for (std::size_t n = 0; n + 1 < edit.size(); ++n) {
        goes = edit[n].operation.empty() ? goes : removes(edit[n].operation);
        if (goes && n != 1)
            throw refusal{"operation-not-supported", edit[n].path};
    }
}

void apply(const edit_path &edit, std::string operation, datastore &data)
{
    for (std::size_t n = 0; n < edit.size(); ++n) {
        const std::string &path = edit[n].path;
        operation = edit[n].operation.empty() ? operation : edit[n].operation;
        if (operation == "create" && has(data, path))
            throw refusal{"data-exists", path};
        if ((operation == "delete" || (operation == "none" && n > 0)) && !has(data, path))
            throw refusal{"data-missing", path};
        if (removes(operation)) {
            /* Parts of a monitor are there as long as it is. */
            if (n > 1 && has(data, path))
                throw refusal{"operation-not-supported", path};
            if (n + 1 < edit.size() && !edit[n + 1].operation.empty() && !removes(edit[n + 1].operation))
                throw refusal{"bad-attribute", edit[n + 1].path};
            erase(data, path);
            return;
        }
        if (operation == "replace")
            erase(data, path);
        if (operation != "none")
            data.insert(path);
    }
}

/* "ok" and `data` as it is then, or the refusal in the terms of the answer. */
std::string judge(const edit_path &edit, const std::string &otherwise, datastore &data)
{
    datastore after = data;
    try {
        refuse_listed_content(edit);
        apply(edit, otherwise, after);
    } catch (const refusal &refused) {
        const std::string entry = std::string("/channel-monitor[name='") + name + "']";
        return refused.tag + " /channel-monitors" + (refused.path == "m" ? "" : entry + refused.path.substr(3));
    }
    data = after;
    return "ok";
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
        if (!has(data, "m/X"))
            wanted.erase(device::interface_key("act", edits::controllers[0]));
        if (!has(data, "m/other"))
            wanted.erase(device::interface_key("act", edits::controllers[3]));
        return wanted;
    }

    /* "ok", or tag and path of the error. */
    std::string run(const std::string &text, service::edit_operation otherwise)
    {
        try {
            edits::edit(mapper_, device_, folder_.path, text, otherwise);
            return "ok";
        } catch (const service::netconf_error &error) {
            return error.tag() + " " + error.path();
        }
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
        const datastore found =
            there ? datastore{"m/other", "m/X", levels[3][0].path, levels[3][1].path} : datastore{"m/other"};
        for (const std::string otherwise : {"merge", "replace", "none"}) {
            for (const edit_path &edit : all_edits()) {
                if (!edit[0].operation.empty() && otherwise != "merge")
                    continue; /* the default operation reaches no node */
                const std::string text = xml_of(edit);
                SCOPED_TRACE(testing::Message() << (there ? "configured, " : "absent, ") << otherwise << ", " << text);
                datastore data = found;
                const std::string wanted = judge(edit, otherwise, data);
                EXPECT_EQ(run(text, service::default_operation_named(otherwise)), wanted);
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
