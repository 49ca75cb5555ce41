/* Depth and size limits, and where a document's text may come from. */
#include "json_writer.h"
#include "tree_text.h"
#include "xml_writer.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>
#include <unistd.h>

using namespace framework;

namespace {

/* Runs a test's body on a stack of 256 KiB, as a thread of a server may have it. */
void on_small_stack(const std::function<void()> &body)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} << 10), 0);
    const auto start = [](void *argument) -> void * {
        (*static_cast<const std::function<void()> *>(argument))();
        return nullptr;
    };
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, &attributes, start, const_cast<std::function<void()> *>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

std::string repeated(std::string_view text, std::size_t times)
{
    std::string all;
    for (; times > 0; --times)
        all += text;
    return all;
}

std::string deep_xml(std::size_t levels)
{
    return "<a xmlns='m'>" + repeated("<a>", levels - 1) + repeated("</a>", levels);
}

std::string deep_json(std::size_t levels)
{
    return "{\"m:a\":" + repeated("[{\"a\":", levels - 1) + "{}" + repeated("}]", levels - 1) + "}";
}

/* Levels of the first branch of a document that is read, written, and read again. */
std::size_t levels_read(const std::string &document)
{
    arena memory;
    std::string json;
    write_json(json, parse_document(make_document_text(document, "doc"), memory));
    std::string xml;
    write_xml(xml, parse_document(make_document_text(json, "doc"), memory));
    dtf_datatree root = parse_document(make_document_text(xml, "doc"), memory);
    std::size_t levels = 0;
    for (; root.child_count > 0; root = root.children[0])
        ++levels;
    return levels;
}

TEST(document_limits, depth)
{
    const std::string refusal = "error: doc: /a: elements are nested deeper than the limit of 500 levels";
    on_small_stack([&refusal] {
        for (const auto &document : {deep_xml(500), deep_json(500)})
            EXPECT_EQ(levels_read(document), 500u);
        for (const std::size_t levels : {std::size_t{501}, std::size_t{100'000}})
            for (const auto &document : {deep_xml(levels), deep_json(levels)})
                EXPECT_EQ(parsed(document, document_use::edit), refusal) << levels;
        /* Not even well-formed, in ways of their own. */
        for (const auto *const piece : {"<a>", "[", "{\"m:a\":", "{\"m:a\":[", "{\"m:a\":{\"@\":"})
            EXPECT_TRUE(parsed(repeated(piece, 100'000), document_use::edit).starts_with("error: doc")) << piece;
    });
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
TEST(document_limits, size_and_source)
{
    const std::filesystem::path folder(testing::TempDir());
    const std::string document = "<a>" + repeated("0123456789", 50'000) + "</a>";
    const std::string file = folder / ("document." + std::to_string(::getpid()));
    std::ofstream(file) << document;
    for (const std::size_t limit : {document.size(), document.size() - 1}) {
        int ends[2] = {};
        ASSERT_EQ(::pipe(ends), 0);
        const std::string pipe = "/dev/fd/" + std::to_string(ends[0]);
        std::thread writer([&] {
            EXPECT_EQ(::write(ends[1], document.data(), document.size()), static_cast<ssize_t>(document.size()));
            ::close(ends[1]);
        });
        for (const std::string &source : {pipe, file})
            EXPECT_EQ(read_or_refused(source, limit),
                      limit == document.size()
                          ? document
                          : source + ": document is larger than the limit of " + std::to_string(limit) + " bytes");
        char rest[4096];
        while (::read(ends[0], rest, sizeof rest) > 0) {
        }
        writer.join();
        ::close(ends[0]);
    }
    std::filesystem::remove(file);
    EXPECT_EQ(read_or_refused(folder, 1), folder.string() + ": cannot read: it is a directory");
    EXPECT_EQ(read_or_refused(file, 1), file + ": cannot read: No such file or directory");
}

} // namespace
