// Documents against the modules, and inventory files: what is accepted, and what the error says of the rest.
#include "device/inventory_file.h"
#include "device/schema.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace device;

namespace {

std::string text_of_file(const std::filesystem::path &file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// The message of the invalid_document that a call throws, empty when it throws none.
template <class Call> std::string refusal(Call call)
{
    try {
        call();
        return "";
    } catch (const invalid_document &error) {
        return error.what();
    }
}

/// Whether a message names the document first, is one line of bounded length and holds all of the given parts.
void expect_message(const std::string &message, const std::vector<const char *> &parts)
{
    EXPECT_EQ(message.rfind("doc: ", 0), 0U) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
    EXPECT_LT(message.size(), 400U);
    for (const char *part : parts) {
        EXPECT_NE(message.find(part), std::string::npos) << "missing: " << part << "\nin: " << message;
    }
}

const std::string config_head = R"(<interface-configurations xmlns="urn:vantra:talin:ifmgr-cfg">)";
const std::string config_tail = "</interface-configurations>";
const std::string entry = "<interface-configuration>";

std::string interfaces(const std::string &content)
{
    return config_head + "\n" + entry + content + "</interface-configuration>" + config_tail;
}

std::string slices(const std::string &content)
{
    return R"({"Vantra-TALIN-controller-kestrel-ots-oper:ots-oper": {"ots-ports": {"ots-port": [
               {"name": "Ots0/1/0/0", "ots-spectrum-info": {"spectrum-slice-power-info": [)" +
           content + "]}}]}}}";
}

TEST(schema, every_example_is_valid)
{
    const schema modules;
    int documents = 0;
    for (const char *stem : {"interfaces", "ots-oper"}) {
        for (const auto &[written_as, ending] : {std::pair{format::xml, ".xml"}, {format::json, ".json"}}) {
            const auto file = std::filesystem::path(CHMON_SOURCE) / "examples/device" / (stem + std::string(ending));
            EXPECT_NE(modules.parse(text_of_file(file), written_as, check::whole, file.string()), nullptr);
            ++documents;
        }
    }
    EXPECT_EQ(documents, 4);
}

TEST(schema, says_what_is_wrong_and_where)
{
    struct faulty {
        format written_as;
        std::string text;
        std::vector<const char *> message;
    };
    const std::string good = "<active>act</active><interface-name>a</interface-name>";
    const std::string port = R"({"lower-frequency": "1", "upper-frequency": "2")";
    const faulty table[] = {
        {format::xml, interfaces("<active>on</active><interface-name>a</interface-name>"), {"line 2", "active", "on"}},
        {format::xml, interfaces("<active>act</active>"), {"line 2", "interface-name"}},
        {format::xml, interfaces(good + "<mtu>63</mtu>"), {"line 2", "mtu", "63"}},
        {format::xml, interfaces(good + "<colour>red</colour>"), {"line 2", "colour"}},
        {format::xml, interfaces(good + "</interface-configuration>" + entry + good), {"a", "Duplicate"}},
        {format::xml,
         interfaces("<active>act</active><interface-name>" + std::string(200, 'x') + "</interface-name>"),
         {"line 2", "interface-name", "length"}},
        {format::xml, "<interface-configurations xmlns=\"urn:other\"/>", {"line 1", "urn:other"}},
        {format::xml, config_head + "\n\n<interface-configuration>", {"line 3"}},
        {format::xml, std::string("<a\0b/>", 6), {"byte 2", "NUL"}},
        {format::json, slices(port + R"(, "rx-power": -12.5})"), {"rx-power", "-12.5"}},
        {format::json, slices(port + R"(, "rx-power": 3000000000})"), {"rx-power", "3000000000"}},
        {format::json, slices(R"({"lower-frequency": "1"})"), {"upper-frequency"}},
        {format::json, slices(port + "}," + port + "}"), {"spectrum-slice-power-info", "Duplicate"}},
        {format::json, "{\"Vantra-TALIN-ifmgr-cfg:interface-configurations\": {", {"line 1"}},
        {format::json, R"({"elsewhere:top": {}})", {"elsewhere"}},
        {format::json, "{} {}", {"byte 3"}},
        {format::xml, interfaces(good) + " rest", {"line 2", "rest"}},
    };
    const schema modules;
    for (const faulty &each : table) {
        SCOPED_TRACE(each.text);
        expect_message(refusal([&] { modules.validate(each.text, each.written_as, check::whole, "doc"); }),
                       each.message);
    }
}

TEST(schema, references_are_judged_in_whole_trees_alone)
{
    const std::string state_only = R"(<channel-monitors xmlns="http://openconfig.net/yang/channel-monitor">
        <channel-monitor><name>0/1-CHMON-BST</name><state><name>0/1-CHMON-BST</name></state></channel-monitor>
        </channel-monitors>)";
    const schema modules;
    EXPECT_NO_THROW(modules.validate(state_only, format::xml, check::types, "reply"));
    expect_message(refusal([&] { modules.validate(state_only, format::xml, check::whole, "doc"); }), {"config/name"});
}

TEST(schema, names_a_folder_that_lacks_a_module)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "no-modules";
    EXPECT_THROW(schema{folder}, std::runtime_error);
    std::filesystem::create_directory(folder);
    try {
        const schema modules(folder);
        ADD_FAILURE() << "modules from an empty folder";
    } catch (const std::runtime_error &error) {
        EXPECT_NE(std::string(error.what()).find("openconfig-channel-monitor"), std::string::npos) << error.what();
    }
    std::filesystem::remove(folder);
}

TEST(inventory_file, accepts_monitor_names_alone)
{
    EXPECT_EQ(read_inventory(R"({"inventory": ["0/1-CHMON-BST", "0/12-CHMON-PRE"]})", "doc"),
              (std::vector<std::string>{"0/1-CHMON-BST", "0/12-CHMON-PRE"}));
    EXPECT_TRUE(read_inventory(R"({"inventory": []})", "doc").empty());
    const std::pair<const char *, std::vector<const char *>> table[] = {
        {"{\"inventory\": [", {"JSON"}},
        {"[]", {"object"}},
        {"{}", {"inventory"}},
        {R"({"inventory": [], "inventory": []})", {"2"}},
        {R"({"inventory": [], "owner": ""})", {"owner"}},
        {R"({"inventory": {}})", {"/inventory", "array"}},
        {R"({"inventory": ["0/1-CHMON-BST", 7]})", {"/inventory/1", "7"}},
        {R"({"inventory": ["0/1-CHMON-BST", "0/1-CHMON-BST"]})", {"/inventory/1", "twice"}},
        {R"({"inventory": ["1/1-CHMON-BST"]})", {"/inventory/0"}},
        {R"({"inventory": ["0/-CHMON-BST"]})", {"/inventory/0"}},
        {R"({"inventory": ["0/1x-CHMON-BST"]})", {"/inventory/0"}},
        {R"({"inventory": ["0/01-CHMON-BST"]})", {"/inventory/0"}},
        {R"({"inventory": ["0/1-CHMON-BSTX"]})", {"/inventory/0"}},
        {R"({"inventory": ["0/12345678-CHMON-PRE"]})", {"/inventory/0"}},
        {R"({"inventory": ["Ots0/1/0/0"]})", {"/inventory/0", "Ots0/1/0/0"}},
    };
    for (const auto &each : table) {
        SCOPED_TRACE(each.first);
        expect_message(refusal([&] { read_inventory(each.first, "doc"); }), each.second);
    }
}

} // namespace
