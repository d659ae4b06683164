// The bridge to libxml2. Every document is parsed twice: to its end, and with a handler that throws
// at an event that depends on the document.

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/Require.h"
#include "xml/LibXML2ParseHandler.h"

namespace {

using namespace vexacore;

// Digests the events in order; throws at event number `thrower`.
class Digest : public xml::AbstractParseHandler {
public:
    struct Result {
        std::vector<std::uint64_t> digests;  // of the first event, the first two, ...
        std::uint64_t textUnits = 0;
        long openElements = 0;
        bool ended = false;
        bool thrown = false;

        std::size_t Events() const { return digests.size(); }
        std::uint64_t OfFirst(std::size_t events) const {
            return events == 0 ? 0 : digests[events - 1];
        }
    };

    Digest(Result& newResult, std::uint64_t newThrower) : result(newResult), thrower(newThrower) {}

    void StartDocument() override { Note(1, {}); }
    void StartElement(const UTF16String&, const xml::Attributes&) override { REQUIRE(false); }
    void StartElement(const UTF16String& qualifiedName, const UTF16String& uri,
                      const UTF16String& localName, const xml::Attributes& attributes) override {
        ++result.openElements;
        for (const auto& a : attributes) {
            result.textUnits += a.value.size();
            Note(2, {a.qualifiedName, a.namespaceUri, a.localName, a.value});
        }
        Note(3, {qualifiedName, uri, localName});
    }
    void EndElement(const UTF16String&) override { REQUIRE(false); }
    void EndElement(const UTF16String& qualifiedName, const UTF16String& uri,
                    const UTF16String& localName) override {
        --result.openElements;
        Note(4, {qualifiedName, uri, localName});
    }
    void StartCDATA() override { Note(5, {}); }
    void EndCDATA() override { Note(6, {}); }
    void Characters(const UTF16String& text) override {
        result.textUnits += text.size();
        Note(7, {text});
    }
    void Comment(const UTF16String& text) override {
        result.textUnits += text.size();
        Note(8, {text});
    }
    void EndDocument() override {
        REQUIRE(result.openElements == 0);
        Note(9, {});
        result.ended = true;
    }
    void StartPrefixMapping(const UTF16String& prefix, const UTF16String& uri) override {
        Note(10, {prefix, uri});
    }
    void EndPrefixMapping(const UTF16String& prefix) override { Note(11, {prefix}); }

private:
    void Note(std::uint64_t kind, std::initializer_list<std::u16string_view> texts) {
        REQUIRE(!result.thrown && !result.ended);                    // none follows
        REQUIRE((result.Events() == 0) == (kind == 1));              // StartDocument comes first
        REQUIRE(result.openElements > 0 || (kind < 5 || kind > 7));  // text is inside an element
        if (result.Events() == thrower) {
            result.thrown = true;
            throw std::runtime_error("handler");
        }
        std::uint64_t digest = result.OfFirst(result.Events());
        const auto mix = [&digest](std::uint64_t number) {  // FNV-1a
            digest = (digest ^ number) * 0x100000001B3;
        };
        mix(kind);
        for (const auto text : texts) {
            for (const auto unit : text)
                mix(unit);
            mix(text.size());
        }
        result.digests.push_back(digest);
    }

    Result& result;
    std::uint64_t thrower;
};

constexpr std::uint64_t kNever = ~std::uint64_t{0};

std::pair<xml::ResultCode, Digest::Result> Parse(const ByteString& document,
                                                 std::uint64_t thrower) {
    Digest::Result result;
    Owner<xml::AbstractParseHandler> handler(new Digest(result, thrower));
    xml::LibXML2ParseHandler parser(handler);
    const xml::ResultCode code = parser.ParseBuffer(document);
    return {code, result};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteString document(reinterpret_cast<const char*>(data), size);
    const auto [code, whole] = Parse(document, kNever);
    REQUIRE(code == xml::kParseSucceeded || code == xml::kParseFailed);
    REQUIRE(whole.ended == (code == xml::kParseSucceeded));
    REQUIRE(whole.textUnits <= 1'000'000 + 12 * size);
    if (whole.Events() == 0) return 0;

    const std::uint64_t thrower = (whole.digests.back() >> 20) % whole.Events();
    const auto [failedCode, cut] = Parse(document, thrower);
    REQUIRE(failedCode == xml::kParseFailed && cut.thrown);
    REQUIRE(cut.Events() == thrower && cut.OfFirst(thrower) == whole.OfFirst(thrower));
    return 0;
}
