// What documents cost that repeat one costly thing, at three sizes in MB: docs/untrusted-input.md
// has the table. The handler does nothing. The label is the reason of a document that is refused.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <cstddef>
#include <functional>
#include <string>

#include "xml/LibXML2ParseHandler.h"

namespace benchmarks {
namespace {

using namespace std::string_literals;
namespace xml = vexacore::xml;
using vexacore::UTF16String;

class Ignore : public xml::AbstractParseHandler {
public:
    void StartDocument() override {}
    void StartElement(const UTF16String&, const xml::Attributes&) override {}
    void StartElement(const UTF16String&, const UTF16String&, const UTF16String&,
                      const xml::Attributes&) override {}
    void EndElement(const UTF16String&) override {}
    void EndElement(const UTF16String&, const UTF16String&, const UTF16String&) override {}
    void StartCDATA() override {}
    void EndCDATA() override {}
    void Characters(const UTF16String&) override {}
    void Comment(const UTF16String&) override {}
    void EndDocument() override {}
    void StartPrefixMapping(const UTF16String&, const UTF16String&) override {}
    void EndPrefixMapping(const UTF16String&) override {}
};

// A document of about `size` bytes: as many pieces as fit. In them '#' stands for the number of the
// piece, '%' for the rest of its division by 1,000 and '@' for that by 997.
std::string Fill(std::size_t size, std::string text, const std::string& piece,
                 const std::string& tail) {
    for (std::size_t i = 0; text.size() + tail.size() < size; ++i) {
        for (const char c : piece) {
            const std::size_t number = c == '%' ? i % 1'000 : c == '@' ? i % 997 : i;
            text += c == '#' || c == '%' || c == '@' ? std::to_string(number) : std::string(1, c);
        }
    }
    return text + tail;
}

// Numbered pieces, each with the value, or with one of its own.
std::string Repeat(int count, const std::string& piece, const std::string& value = "") {
    std::string text;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += piece + number + (value.empty() ? "='u" + number + "'" : value);
    }
    return text;
}

std::string Ebcdic(std::string text) {
    text.insert(0, "<?xml version='1.0' encoding='IBM037'?>");
    std::string result(text.size(), '\0');
    char *from = text.data(), *to = result.data();
    std::size_t fromSize = text.size(), toSize = result.size();
    const iconv_t conversion = iconv_open("IBM037", "US-ASCII");
    iconv(conversion, &from, &fromSize, &to, &toSize);
    iconv_close(conversion);
    return result;
}

std::string Utf7(const std::string& text) {
    return "<?xml version='1.0' encoding='UTF-7'?>" + text;
}

void Parse(benchmark::State& state, const std::function<std::string(std::size_t)>& make) {
    const std::string text = make(static_cast<std::size_t>(state.range(0)) * 1'000'000);
    const vexacore::ByteString document(text.data(), text.size());
    for (auto _ : state) {
        vexacore::Owner<xml::AbstractParseHandler> handler(new Ignore);
        xml::LibXML2ParseHandler parser(handler);
        const bool refused = parser.ParseBuffer(document) != xml::kParseSucceeded;
        state.SetLabel(refused ? "refused: " + parser.LastFailure() : "");
    }
}

const bool registered = [] {
    const auto add = [](const char* name, std::string head, std::string piece, std::string tail,
                        std::string (*encode)(const std::string&) = nullptr) {
        const auto make = [=](std::size_t size) {
            const std::string document = Fill(size, head, piece, tail);
            return encode ? encode(document) : document;
        };
        benchmark::RegisterBenchmark(name, Parse, make)
            ->Arg(1)
            ->Arg(4)
            ->Arg(8)
            ->Unit(benchmark::kMillisecond);
    };
    const auto ebcdic = [](const std::string& text) { return Ebcdic(text); };
    const std::string dtd = "<!DOCTYPE a [", end = "</a>";
    const std::string entity = dtd + "<!ENTITY e ";
    const std::string scope1000 = "<a" + Repeat(1'000, " xmlns:p") + ">";
    const std::string scope9990 = "<a" + Repeat(9'990, " xmlns:p") + ">";
    add("empty elements", "<a>", "<b/>", end);
    add("empty elements in EBCDIC", "<a>", "<b/>", end, ebcdic);
    add("empty elements in UTF-7", "<a>", "<b/>", end, Utf7);
    add("references to an entity of one element", entity + "'<b/>'>]><a>", "&e;", end);
    add("references with 9,990 namespaces in scope", entity + "'x'>]>" + scope9990, "&e;", end);
    add("elements with 1,000 namespaces in scope", scope1000, "<b/>", end);
    add("elements with 9,990 namespaces in scope", scope9990, "<b/>", end);
    add("tags of 500 declared namespaces",
        dtd + "<!ATTLIST b" + Repeat(500, " xmlns:p", " CDATA 'u'") + ">]><b>", "<b/>", "</b>");
    add("new namespaces inside an entity", entity + "\"", "<b" + Repeat(100, " xmlns:p#_") + ">",
        "\">]><a>&e;</a>");
    add("tags of 1,000 attributes", "<a>", "<b" + Repeat(1'000, " c") + "/>", end);
    add("tags of 9,990 attributes", "<a>", "<b" + Repeat(9'990, " c") + "/>", end);
    add("one tag of attributes", "<a", " b#=''", "/>");
    add("one tag of attributes in EBCDIC", "<a", " b#=''", "/>", ebcdic);
    add("one tag of attributes in UTF-7", "<a", " b#+AD0-''", "/>", Utf7);
    add("one tag of attributes in 1,000 namespaces", "<a" + Repeat(1'000, " xmlns:p"), " p%:b@=''",
        "/>");
    const std::string name(45'000, 'n');
    add("undefined prefixes in tags of a long name", "<a>", "<" + name + Repeat(200, " p:b") + "/>",
        end);
    add("attribute declarations for a long name", dtd + "<!ATTLIST " + name, " b# CDATA ''",
        ">]><a/>");
    add("attribute declarations", dtd + "<!ATTLIST a", " b# CDATA ''", ">]><a/>");
    add("values of one attribute declaration", dtd + "<!ATTLIST a b (c", "|c#",
        ") #IMPLIED>]><a/>");
    add("different names of elements", "<a>", "<b#/>", end);
    add("declarations of entities", dtd, "<!ENTITY e# 'x'>", "]><a/>");
    add("a content model of one name", dtd + "<!ELEMENT a (a", "|a", ")>]><a/>");
    add("a content model of different names", dtd + "<!ELEMENT a (a", "|b#", ")>]><a/>");
    add("processing instructions of one name", "<a>", "<?p x?>", end);
    add("processing instructions of different names", "<a>", "<?p# x?>", end);
    add("anything after a fatal error", "<a>&", "<b/>", end);
    return true;
}();

}  // namespace
}  // namespace benchmarks
