/* Documents that are refused, and what the message says. */
#include "tree_text.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

using namespace framework;

namespace {

constexpr auto data = document_use::data;
constexpr auto edit = document_use::edit;

struct refused_document {
    document_use use;
    std::string_view document;
    std::string_view message;
};

#define NC "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\""

constexpr refused_document refused[] = {
    {data, "", "doc: the document is empty"},
    {data, " \n", "doc: the document is empty"},
    /* XML: syntax */
    {data, "<a\n>\n<b>\n</a>", "doc:4:3: malformed XML"},
    {data, "<a><b></b>", "doc:1:11: malformed XML: the document ends inside of <a>"},
    {data, "<a b='1", "doc:1:8: malformed XML: the document ends in an attribute value"},
    {data, "<a", "doc:1:3: malformed XML: the document ends early"},
    {data, "<a>\n<!-- x", "doc:2:7: malformed XML: the document ends in a comment"},
    {data, "<a><!-- -- --></a>", "doc:1:11: malformed XML: \"--\" in a comment"},
    {data, "<a b='1'c='2'/>", "doc:1:9: malformed XML: a start tag goes on without white space"},
    {data, "<a b='<'/>", "doc:1:7: malformed XML: '<' in an attribute value"},
    {data, "<a b=1/>", "doc:1:6: malformed XML: attribute value without quotes"},
    {data, "<a>]]></a>", "doc:1:4: malformed XML: \"]]>\" outside of a CDATA section"},
    {data, "<a>\n<?xml version='1.0'?></a>", "doc:2:1: malformed XML: an XML declaration"},
    {data, "<a><b >1</b\n></a b>", "doc:2:6: malformed XML: an end tag without its '>'"},
    {data, "< a/>", "doc:1:2: malformed XML: a name is missing"},
    {data, "</a>", "doc:1:1: malformed XML: not inside of an element"},
    {data, "<a>\n<!ELEMENT a ANY></a>", "doc:2:2: malformed XML: '<!' begins neither"},
    {data, "<a><!-- \x02 --></a>", "doc:1:9: control character"},
    {data, "<a/><b/>", "second root element"},
    {data, "<a/>\n text", "doc:2:2: text outside of the root element"},
    {data, "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", "document type declaration is not allowed"},
    {data, "<!-- nothing -->", "doc: the document has no element"},
    {data, "<a>\nx\xff</a>", "doc:2:2: not UTF-8"},
    {data, "<a>\n\x01</a>", "doc:2:1: control character"},
    {data, {"<a>\0</a>", 8}, "doc:1:4: control character"},
    {data, "<?xml version='1.0' encoding='ISO-8859-1'?><a/>", "doc: the document is in ISO-8859-1; only UTF-8"},
    {data, "<a>&e;</a>", "doc: /a: unknown reference '&e;'"},
    {data, "<a>&#0;</a>", "doc: /a: unknown reference '&#0;'"},
    {data, "<a>&#xd800;</a>", "doc: /a: unknown reference"},
    {data, "<a>a & b</a>", "doc: /a: '&' without a reference"},
    /* XML: structure */
    {data, "<a><b>1</b><b><c/>text</b></a>", "doc: /a/b[2]: text beside elements"},
    {data, "<a><b>text<c/></b></a>", "doc: /a/b: text beside elements"},
    {data, "<a><x:b/></a>", "doc: /a/b: unbound prefix 'x'"},
    {data, "<a><b xmlns:x='m'/><x:c/></a>", "doc: /a/c: unbound prefix 'x'"},
    {data, "<a xmlns:x=''/>", "doc: /a: prefix 'x' bound to no namespace"},
    {data, "<a><b colour='red'/></a>", "doc: /a/b: unexpected attribute 'colour'"},
    {edit, "<a><b c='1' c='1'/></a>", "doc: /a/b: malformed XML: attribute 'c' is there twice"},
    {document_use::read,
     "<a " NC " xmlns:n='urn:ietf:params:xml:ns:netconf:base:1.0' nc:operation='merge' n:operation='merge'/>",
     "doc: /a: malformed XML: attribute 'operation' is there twice"},
    {document_use::read, "<a " NC "><b nc:operation='move'/></a>", "doc: /a/b: unknown edit operation 'move'"},
    {data, "<a " NC "><b nc:operation='delete'/></a>", "doc: /a/b: edit operation in data"},
    {edit, "<filter type='xpath' select='/'/>", "unexpected attribute 'select'"},
    {data, "<data>text</data>", "text in <data>"},
    {data, "<data><a/>text</data>", "text in <data>"},
    /* JSON: syntax */
    {data, "[]", "doc:1:1: a document is a JSON object"},
    {data, "{\"m:a\": {\n\"b\": 1 \"c\": 2}}", "doc:2:8: malformed JSON"},
    {data, "{\"m:a\": 01}", "doc:1:9: malformed JSON: '01' is no value"},
    {data, "{\"m:a\": nul}", "'nul' is no value"},
    {data, "{\"m:a\": 1}\n 2", "doc:2:2: malformed JSON: text behind the document"},
    {data, "{\"m:a\": {\"b\": \"x\": 1}}", "malformed JSON"},
    {data, "{\"m:a\":\n{\"b\": \"1\",", "doc:2:11: malformed JSON: the document ends early"},
    {data, "{\"m:a\": {}}}", "doc:1:12: malformed JSON: text behind the document"},
    {data, "{\"m:a\":\n\"x}", "doc:2:1: malformed JSON"},
    {data, "{\"m:a\": \"\n\"}", "doc:1:10: malformed JSON"},
    {data, "{\"m:a\": \"\\q\"}", "doc:1:10: malformed JSON: bad escape"},
    {data, "{\"m:a\": \"\\u0000\"}", "doc:1:10: control character in a string"},
    {data, "{\"m:a\":\n\"\xff\"}", "doc:2:2: not UTF-8"},
    /* JSON: structure */
    {data, "{\"a\": 1}", "doc: /a: a top member's name begins with its module"},
    {data, "{\"m:a\": {\"b c\": 1}}", "doc: /a/b c: not a member name"},
    {data, "{\"m:a\": {\"\": 1}}", "doc: /a/: not a member name"},
    {data, "{\"m:a\": {\"b\": 1, \"c\": {\"b\": 1}, \"m:b\": 2}}", "doc: /a/b: the member is there twice"},
    {data, "{\"m:a\": {\"b\": null}}", "doc: /a/b: null is no value in data"},
    {data, "{\"m:a\": {\"b\": [null, 1]}}", "doc: /a/b: null among the elements"},
    {data, "{\"m:a\": {\"b\": [[1]]}}", "doc: /a/b: an array in an array"},
    {data, "{\"m:a\": {\"@\": {\"ietf-netconf:operation\": \"delete\"}}}", "doc: /a: annotations are not supported"},
    {edit, "{\"m:a\": {\"@\": {\"ietf-netconf:operation\": 7}}}", "doc: /a: an edit operation is a text, not 7"},
    {edit, "{\"m:a\": {\"@\": {}, \"@\": {}}}", "doc: /a: the member '@' is there twice"},
    {edit, "{\"m:a\": {\"b\": 1, \"@b\": {}, \"@m:b\": {}}}", "doc: /a: the member '@b' is there twice"},
    {edit, "{\"m:a\": {\"@\": {\"ietf-netconf:operation\": \"merge\", \"ietf-netconf:operation\": \"merge\"}}}",
     "doc: /a: the annotation 'ietf-netconf:operation' is there twice"},
    {edit, "{\"m:a\": {\"@b\": {\"ietf-netconf:operation\": \"merge\"}}}", "doc: /a: '@b' annotates no member"},
    {edit, "{\"m:a\": {\"b\": [1], \"@b\": [[]]}}", "doc: /a: an annotation is a JSON object"},
    {edit, "{\"@\": {\"ietf-netconf:operation\": \"merge\"}}", "an annotation of the document itself"},
};

TEST(refused_documents, say_what_and_where)
{
    for (const refused_document &row : refused) {
        const std::string result = parsed(row.document, row.use);
        EXPECT_NE(result.find(row.message), std::string::npos)
            << "document: " << row.document << "\nwanted:   " << row.message << "\ngot:      " << result;
        EXPECT_TRUE(result.starts_with("error: doc:")) << result;
    }
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
TEST(refused_documents, are_too_large_or_cannot_be_read)
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
