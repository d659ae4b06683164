#include "xml/LibXML2ParseHandler.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "host/vexacore/Utility.h"

namespace {

using namespace vexacore;
using xml::kParseFailed;
using xml::kParseSucceeded;

// Writes each event as one line: its name, then its texts in brackets.
class Recorder : public xml::AbstractParseHandler {
public:
    Recorder(std::string& newLog, std::function<void()> newBefore)
        : log(newLog), before(std::move(newBefore)) {}

    void StartDocument() override { Note("StartDocument", {}); }
    void StartElement(const UTF16String& name, const xml::Attributes&) override {
        Note("StartElement without namespace", {name});
    }
    void StartElement(const UTF16String& qualifiedName, const UTF16String& uri,
                      const UTF16String& localName, const xml::Attributes& attributes) override {
        std::vector<UTF16String> texts{qualifiedName, uri, localName};
        for (const auto& a : attributes)
            texts.insert(texts.end(), {a.qualifiedName, a.namespaceUri, a.localName, a.value});
        Note("StartElement", texts);
    }
    void EndElement(const UTF16String& name) override {
        Note("EndElement without namespace", {name});
    }
    void EndElement(const UTF16String& qualifiedName, const UTF16String& uri,
                    const UTF16String& localName) override {
        Note("EndElement", {qualifiedName, uri, localName});
    }
    void StartCDATA() override { Note("StartCDATA", {}); }
    void EndCDATA() override { Note("EndCDATA", {}); }
    void Characters(const UTF16String& text) override { Note("Characters", {text}); }
    void Comment(const UTF16String& text) override { Note("Comment", {text}); }
    void EndDocument() override { Note("EndDocument", {}); }
    void StartPrefixMapping(const UTF16String& prefix, const UTF16String& uri) override {
        Note("StartPrefixMapping", {prefix, uri});
    }
    void EndPrefixMapping(const UTF16String& prefix) override {
        Note("EndPrefixMapping", {prefix});
    }

private:
    void Note(const char* event, const std::vector<UTF16String>& texts) {
        before();
        log += event;
        for (const auto& text : texts)
            log += "[" + utility::UTF16toStdString(text) + "]";
        log += '\n';
    }

    std::string& log;
    std::function<void()> before;  // called first in every event
};

struct Outcome {
    xml::ResultCode result;
    std::string log;
};

using Parse = std::function<xml::ResultCode(xml::AbstractDocParser&)>;

Outcome Observe(
    const Parse& parse, std::function<void()> before = [] {}) {
    Outcome outcome;
    Owner<xml::AbstractParseHandler> handler(new Recorder(outcome.log, std::move(before)));
    xml::LibXML2ParserFactory factory;
    Owner<xml::AbstractDocParser> parser = factory.GetParser(handler);
    EXPECT_EQ(nullptr, handler.get());
    EXPECT_TRUE(parser->HasNamespaceSupport());
    outcome.result = parse(*parser);
    return outcome;
}

Outcome ObserveText(
    std::string_view document, std::function<void()> before = [] {}) {
    return Observe([=](auto& parser) { return parser.ParseBuffer(ByteString(document)); },
                   std::move(before));
}

constexpr std::string_view kRich =
    "<!DOCTYPE r [<!ENTITY e 'a<i/>b'><!ATTLIST i d CDATA 'default'>]>"
    "<r xmlns='u1' xmlns:p='u2' p:x='1' y='&lt;'><!--c--><![CDATA[<&]]>&e;<p:i/>&e;</r>";

TEST(Events, ComeInOrder) {
    const struct {
        int line;
        std::string_view document;
        std::string expected;  // between StartDocument and EndDocument
    } rows[] = {
        {__LINE__, "<a xmlns='u1' xmlns:p='u2' p:x='1' y='2'/>",
         "StartPrefixMapping[][u1]\nStartPrefixMapping[p][u2]\n"
         "StartElement[a][u1][a][p:x][u2][x][1][y][][y][2]\n"
         "EndElement[a][u1][a]\nEndPrefixMapping[]\nEndPrefixMapping[p]\n"},
        {__LINE__, "<a xmlns:z='u1' xmlns:b='u2'/>",
         "StartPrefixMapping[z][u1]\nStartPrefixMapping[b][u2]\nStartElement[a][][a]\n"
         "EndElement[a][][a]\nEndPrefixMapping[b]\nEndPrefixMapping[z]\n"},
        {__LINE__, "<p:a xmlns:p='u'><b xmlns:p='v'><p:c/></b></p:a>",
         "StartPrefixMapping[p][u]\nStartElement[p:a][u][a]\nStartPrefixMapping[p][v]\n"
         "StartElement[b][][b]\nStartElement[p:c][v][c]\nEndElement[p:c][v][c]\n"
         "EndElement[b][][b]\nEndPrefixMapping[p]\nEndElement[p:a][u][a]\nEndPrefixMapping[p]\n"},
        {__LINE__, "<a>x<![CDATA[<&>]]><!-- c --><?target ignored?></a>",
         "StartElement[a][][a]\nCharacters[x]\nStartCDATA\nCharacters[<&>]\nEndCDATA\n"
         "Comment[ c ]\nEndElement[a][][a]\n"},
        {__LINE__, "<!DOCTYPE a [<!ENTITY e 'one'>]><a b='&e;'>&e;&amp;&e;</a>",
         "StartElement[a][][a][b][][b][one]\nCharacters[one]\nCharacters[&]\nCharacters[one]\n"
         "EndElement[a][][a]\n"},
        {__LINE__, "<!DOCTYPE a [<!ATTLIST a d CDATA 'x'>]><a/>",
         "StartElement[a][][a][d][][d][x]\nEndElement[a][][a]\n"},
        {__LINE__, "<\xC3\xA9 \xE5\x90\x8D='\xF0\x9F\x8E\xAC'/>",
         "StartElement[\xC3\xA9][][\xC3\xA9][\xE5\x90\x8D][][\xE5\x90\x8D][\xF0\x9F\x8E\xAC]\n"
         "EndElement[\xC3\xA9][][\xC3\xA9]\n"},
        {__LINE__, "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>",
         "StartElement[a][][a]\nCharacters[\xC3\xA9]\nEndElement[a][][a]\n"},
        {__LINE__, {"<a/>\0<b", 7}, "StartElement[a][][a]\nEndElement[a][][a]\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const Outcome outcome = ObserveText(row.document);
        EXPECT_EQ(kParseSucceeded, outcome.result);
        EXPECT_EQ("StartDocument\n" + row.expected + "EndDocument\n", outcome.log);
    }
}

TEST(Malformed, GivesTheEventsUpToThere) {
    const struct {
        int line;
        std::string_view document;
        std::string expected;
    } rows[] = {
        {__LINE__, "", ""},
        {__LINE__, {"\0<a/>", 5}, ""},
        {__LINE__, {"\xFF\xFE<\0a\0/\0>\0", 10}, "StartDocument\n"},  // the first NUL ends it
        {__LINE__, "<!DOCTYPE a [<!ENTITY e 'x'><!ENTITY f 'y'><!ENTITY", "StartDocument\n"},
        {__LINE__, "<a xmlns='u'><b></a>",
         "StartDocument\nStartPrefixMapping[][u]\nStartElement[a][u][a]\nStartElement[b][u][b]\n"},
        {__LINE__, "<a>&unknown;</a>", "StartDocument\nStartElement[a][][a]\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        testing::internal::CaptureStderr();
        const Outcome outcome = ObserveText(row.document);
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
        EXPECT_EQ(kParseFailed, outcome.result);
        EXPECT_EQ(row.expected, outcome.log.substr(0, outcome.log.find("EndDocument")));
    }
}

TEST(Handler, ThrowingAtAnyEventEndsTheParse) {
    const Outcome whole = ObserveText(kRich);
    ASSERT_EQ(kParseSucceeded, whole.result);
    const auto count = std::count(whole.log.begin(), whole.log.end(), '\n');
    ASSERT_LT(20, count);
    for (long thrower = 0; thrower < count; ++thrower) {
        SCOPED_TRACE(thrower);
        long events = 0;
        const Outcome outcome = ObserveText(kRich, [&] {
            if (events++ == thrower) throw std::runtime_error("handler");
        });
        EXPECT_EQ(kParseFailed, outcome.result);
        EXPECT_EQ(thrower + 1, events);  // none behind the one that threw
        EXPECT_EQ(whole.log.substr(0, outcome.log.size()), outcome.log);
    }
}

TEST(Parser, ServesOneParseAfterAnother) {
    bool failing = true;
    const Outcome outcome = Observe(
        [&](auto& parser) {
            EXPECT_EQ(kParseFailed, parser.ParseBuffer("<a/>"));
            failing = false;
            return parser.ParseBuffer("<b/>");
        },
        [&] {
            if (failing) throw 1;
        });
    EXPECT_EQ(kParseSucceeded, outcome.result);
    EXPECT_EQ("StartDocument\nStartElement[b][][b]\nEndElement[b][][b]\nEndDocument\n",
              outcome.log);
}

// Counts what libxml2 opens for entities while it lives.
struct LoaderTrap {
    LoaderTrap() {
        opened.clear();
        xmlSetExternalEntityLoader(Load);
    }
    ~LoaderTrap() { xmlSetExternalEntityLoader(previous); }
    static xmlParserInputPtr Load(const char* url, const char*, xmlParserCtxtPtr) {
        opened.push_back(url ? url : "");
        return nullptr;
    }
    xmlExternalEntityLoader previous = xmlGetExternalEntityLoader();
    static inline std::vector<std::string> opened;
};

class Folder : public testing::Test {
protected:
    Folder() {
        std::filesystem::create_directory(path);
        std::ofstream(path / "secret") << "SECRET";
    }
    ~Folder() override { std::filesystem::remove_all(path); }

    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("xml-bridge-" + std::to_string(getpid()));
};

TEST_F(Folder, ExternalEntitiesAreRefused) {
    const std::string file = (path / "secret").native();
    const std::string documents[] = {
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + file + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + file + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e PUBLIC 'id' 'http://localhost/x'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + file + "'><!ENTITY f '&e;'>]><a>&f;</a>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + file + "'>]><a b='&e;'/>",
        "<!DOCTYPE a [<!ENTITY % e SYSTEM '" + file + "'>%e;]><a>&f;</a>",
        "<!DOCTYPE a SYSTEM '" + file + "' [<!ENTITY e SYSTEM '" + file + "'>]><a>&e;</a>",
    };
    for (const auto& document : documents) {
        SCOPED_TRACE(document);
        EXPECT_EQ(std::string::npos, ObserveText(document).log.find("SECRET"));
        const LoaderTrap trap;
        EXPECT_NE("", ObserveText(document).log);
        EXPECT_EQ(std::vector<std::string>(), LoaderTrap::opened);
    }
}

TEST(Budget, EndsDocumentsThatYieldTooMuch) {
    const std::string big(100'000, 'x'), uri(2'000, 'u');
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + big + "'>]><a>";
    const auto repeated = [](std::string text, int count, const std::string& piece) {
        while (count-- > 0)
            text += piece;
        return text + "</a>";
    };
    const struct {
        int line;
        std::string document;
        xml::ResultCode expected;
    } rows[] = {
        {__LINE__, repeated(entity, 15, "&e;"), kParseSucceeded},
        {__LINE__, repeated(entity, 16, "&e;"), kParseFailed},
        {__LINE__, repeated("<!DOCTYPE a [<!ATTLIST b d CDATA '" + big + "'>]><a>", 16, "<b/>"),
         kParseFailed},
        {__LINE__, repeated("<a xmlns='" + uri + "'>", 1000, "<b/>"), kParseFailed},
        {__LINE__, repeated("<a xmlns='" + uri.substr(0, 1000) + "'>", 3000, "<b/>"),
         kParseSucceeded},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, ObserveText(row.document).result);
    }
}

TEST_F(Folder, ParseDocumentReadsTheFile) {
    const auto run = [&](const char* name) {
        return Observe([&](auto& parser) {
            return parser.ParseDocument(utility::StdToUTF16String((path / name).native()));
        });
    };
    std::ofstream(path / "good") << "<a/>";
    const Outcome good = run("good");
    EXPECT_EQ(kParseSucceeded, good.result);
    EXPECT_EQ(ObserveText("<a/>").log, good.log);
    for (const char* name : {"missing", "", "secret"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(kParseFailed, run(name).result);
    }
    EXPECT_EQ("", run("missing").log);
    std::ofstream(path / "huge");
    std::filesystem::resize_file(path / "huge", 0x1'0000'0004);
    EXPECT_EQ(kParseFailed, run("huge").result);
}

}  // namespace
