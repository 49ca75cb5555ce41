/* What is read is what was written, in both encodings; and both encodings of one document are one tree. */
#include "document.h"
#include "edit_operations.h"
#include "json_writer.h"
#include "tree.h"
#include "xml_writer.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <unistd.h>

using namespace framework;

namespace {

/* All that a reader sets, a line per node; also checks that flags, counts and pointers agree. */
void append_tree(std::string &text, const dtf_datatree &node, std::size_t level)
{
    const bool has_value = (node.flags & DTF_FLAG_HAS_VALUE) != 0;
    const bool has_children = (node.flags & DTF_FLAG_HAS_SUBTREE) != 0;
    const bool agree = has_value == (node.value != nullptr) && has_children == (node.child_count > 0) &&
                       has_children == (node.children != nullptr);
    EXPECT_TRUE(agree && (node.flags & DTF_FLAG_VALID) != 0) << text;
    if (node.tag != nullptr) {
        text += std::string(2 * level, ' ') + node.tag + " {" + (node.ns == nullptr ? "" : node.ns) + "}";
        text += has_value ? " = '" + std::string(node.value) + "'" : "";
        text += " op " + std::to_string(node.operation) + ((node.flags & DTF_FLAG_OP_SET) != 0 ? "!\n" : "\n");
    }
    for (std::uint32_t i = 0; i < node.child_count; ++i)
        append_tree(text, node.children[i], level + 1);
}

std::string tree_text(const dtf_datatree &root)
{
    std::string text;
    append_tree(text, root, 0);
    return text;
}

/* The tree of a document as text, or "error: " and the message. The document is called "doc" in messages. */
std::string parsed(std::string_view document, document_use use)
{
    arena memory;
    document_options options;
    options.use = use;
    try {
        return tree_text(parse_document(make_document_text(document, "doc"), memory, options));
    } catch (const parse_error &error) {
        EXPECT_EQ(std::string_view(error.what()).find('\n'), std::string_view::npos) << error.what();
        return std::string("error: ") + error.what();
    }
}

/* Every spelling a writer has, read again; each time the same tree. */
void expect_round_trips(const dtf_datatree &root, document_use use, const std::string &what)
{
    const std::string tree = tree_text(root);
    for (const bool pretty : {true, false}) {
        std::string xml = "kept";
        write_xml(xml, root, {pretty, use == document_use::edit ? note_teller(explicit_operation) : note_teller()});
        ASSERT_TRUE(xml.starts_with("kept<"));
        EXPECT_EQ(parsed(xml.substr(4), use), tree) << what << " as XML";
        std::string json;
        write_json(json, root, {pretty, use == document_use::edit ? note_teller(explicit_operation) : note_teller()});
        EXPECT_EQ(parsed(json, use), tree) << what << " as JSON";
    }
}

/* Files of one name, whose first word says what they are read for. */
TEST(documents, both_encodings_are_one_tree)
{
    int pairs = 0;
    for (const auto &file : std::filesystem::directory_iterator(CHMON_SOURCE "/tests/documents/pairs")) {
        std::filesystem::path path = file.path();
        if (path.extension() != ".xml")
            continue;
        const std::string name = path.filename();
        const document_use use = name.starts_with("data")   ? document_use::data
                                 : name.starts_with("edit") ? document_use::edit
                                                            : document_use::read;
        const document_text xml = read_document_text(path, 1 << 20);
        const document_text json = read_document_text(path.replace_extension(".json"), 1 << 20);
        const std::string tree = parsed(xml.view(), use);
        EXPECT_EQ(tree, parsed(json.view(), use)) << name;
        EXPECT_EQ(tree.find("error"), std::string::npos) << tree;
        EXPECT_EQ(tree, parsed("\xef\xbb\xbf\n" + std::string(json.view()), use));
        arena memory;
        document_options options;
        options.use = use;
        expect_round_trips(parse_document(json, memory, options), use, name);
        ++pairs;
    }
    EXPECT_GE(pairs, 6);
}

/* Random nodes with texts and names that need care. Runs of one name stand together, as JSON has them. */
void fill(std::mt19937 &random, arena &memory, dtf_datatree &parent, int level, bool with_operations)
{
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    static constexpr const char *tags[] = {
        "channel-monitors",         "channel-monitor",  "name", "mtu", "config", "a.b", "_c",
        "interface-configurations", "\xc3\xa9t\xc3\xa9"};
    static constexpr const char *namespaces[] = {"http://openconfig.net/yang/channel-monitor",
                                                 "urn:vantra:talin:ifmgr-cfg", "foreign", "urn:a&b\"<c>"};
    static constexpr const char *values[] = {"1",   "-0.5e+3", "01",    "true",   "null",
                                             " ",   "\t x\n",  "\"\\/", "<&>]]>", "\xf0\x9f\x98\x80",
                                             "a b", "&amp;",   "1e",    "-",      "\x7f"};
    const std::size_t first = below(std::size(tags));
    for (std::size_t t = 0; t < std::size(tags); ++t) {
        const char *const ns = level > 0 && below(4) > 0 ? parent.ns : namespaces[below(std::size(namespaces))];
        const bool leaves = level > 2 || below(2) == 0;
        for (std::size_t count = below(level == 0 ? 2 : 4) == 0 ? 1 + below(3) : 0; count > 0; --count) {
            dtf_datatree &node = add_child(memory, parent);
            node.tag = tags[(first + t) % std::size(tags)];
            node.ns = ns;
            if (with_operations && below(3) == 0)
                set_operation(node, static_cast<std::uint32_t>(below(5)));
            if (leaves && below(3) > 0) {
                node.value = values[below(std::size(values))];
                node.flags |= DTF_FLAG_HAS_VALUE;
            } else if (!leaves) {
                fill(random, memory, node, level + 1, with_operations);
            }
        }
    }
}

TEST(documents, random_trees_survive_both_encodings)
{
    constexpr unsigned trees = 150;
    std::size_t nodes = 0;
    for (unsigned seed = 0; seed < trees && !HasFailure(); ++seed) {
        arena memory;
        const bool edit = seed % 2 == 0;
        dtf_datatree root = {};
        root.flags = DTF_FLAG_VALID;
        std::mt19937 random(seed);
        fill(random, memory, root, 0, edit);
        inherit_operations(root);
        expect_round_trips(root, edit ? document_use::edit : document_use::read, "seed " + std::to_string(seed));
        const std::string text = tree_text(root);
        nodes += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }
    std::cout << trees << " trees, " << nodes << " nodes\n";
    EXPECT_GT(nodes, 10000u);
}

TEST(documents, up_to_500_levels_come_back)
{
    std::string xml = "<a xmlns='m'>", json = "{\"m:a\":";
    for (int level = 1; level < 500; ++level) {
        xml += "<a>";
        json += "[{\"a\":";
    }
    json += "{}";
    for (int level = 1; level < 500; ++level) {
        xml += "</a>";
        json += "}]";
    }
    for (const std::string &document : {xml + "</a>", json + "}"}) {
        arena memory;
        expect_round_trips(parse_document(make_document_text(document, "doc"), memory), document_use::data,
                           "500 levels");
    }
}

TEST(documents, members_of_one_name_are_put_together)
{
    /* Few names, and more than are compared one by one. */
    for (const int names : {2, 100}) {
        std::string apart, together;
        for (int i = 0; i < names; ++i) {
            const std::string tag = "t" + std::to_string(i);
            apart += "<" + tag + ">1</" + tag + ">";
            together.append(i == 0 ? "\"" : ",\"").append(tag).append("\":[\"1\",\"2\"]");
        }
        std::string document = "<a xmlns='m'>" + apart;
        for (int i = names - 1; i >= 0; --i)
            document += "<t" + std::to_string(i) + ">2</t" + std::to_string(i) + ">";
        arena memory;
        std::string json;
        write_json(json, parse_document(make_document_text(document + "</a>", "doc"), memory), {false, {}});
        EXPECT_EQ(json, "{\"m:a\":{" + together + "}}");
    }
}

TEST(documents, what_is_no_text_comes_out_as_a_replacement)
{
    dtf_datatree leaf = {};
    leaf.tag = "a";
    leaf.value = "\x01|\xc3|\xed\xa0\x80|\xc0\xaf|\xf5|\xe2\x82";
    leaf.flags = DTF_FLAG_VALID | DTF_FLAG_HAS_VALUE;
    std::string xml, json;
    write_xml(xml, leaf, {false, {}});
    write_json(json, leaf, {false, {}});
    const std::string r = "\xef\xbf\xbd";
    const std::string rest = "|" + r + "|" + r + r + r + "|" + r + r + "|" + r + "|" + r + r;
    EXPECT_EQ(xml, "<a>" + r + rest + "</a>");
    EXPECT_EQ(json, "{\"a\":\"\\u0001" + rest + "\"}");
}

/* A document's text, or the message of the refusal. */
std::string read_or_refused(const std::string &path, std::size_t limit)
{
    try {
        return std::string(read_document_text(path, limit).view());
    } catch (const std::runtime_error &error) {
        return error.what();
    }
}

/* A pipe has no size to go by, so the buffer grows; and over the limit reading stops. */
TEST(documents, are_too_large_or_cannot_be_read)
{
    const std::string document = "<a>" + std::string(500'000, 'x') + "</a>";
    const std::string file = testing::TempDir() + "document." + std::to_string(::getpid());
    std::ofstream(file) << document;
    for (const std::size_t limit : {document.size(), document.size() - 1}) {
        const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pipe(::popen(("cat " + file).c_str(), "r"), ::pclose);
        for (const std::string &source : {"/dev/fd/" + std::to_string(::fileno(pipe.get())), file})
            EXPECT_EQ(read_or_refused(source, limit),
                      limit == document.size()
                          ? document
                          : source + ": document is larger than the limit of " + std::to_string(limit) + " bytes");
    }
    std::filesystem::remove(file);
    EXPECT_EQ(read_or_refused(testing::TempDir(), 1), testing::TempDir() + ": cannot read: it is a directory");
}

} // namespace
