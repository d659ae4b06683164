#include "xml/LibXML2ParseHandler.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>

#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"

namespace vexacore::xml {

namespace {

constexpr std::size_t kLongestDocument = std::numeric_limits<int>::max();  // libxml2 counts in int
constexpr std::size_t kAllowedExpansion = 1'000'000;                       // bytes
// Enough for what a document says itself: the name of an empty element is handed on four times,
// qualified and local, at start and end, and a byte of ISO 8859 or of a Windows code page takes up
// to three in UTF-8.
constexpr std::size_t kAllowedFactor = 12;
// An element, an attribute and a reference each cost what the document is allowed for the least
// that writes one, names aside: "</>", " =''" and "&e;".
constexpr std::size_t kElementCost = 3 * kAllowedFactor;
constexpr std::size_t kAttributeCost = 4 * kAllowedFactor;
constexpr std::size_t kReferenceCost = 3 * kAllowedFactor;
// Honest documents repeat their namespace on every element: this many bytes of it are free.
constexpr std::size_t kFreeUriLength = 128;
// Attributes of one start tag, namespaces in scope, or entries of all attribute-list declarations.
constexpr int kLongestList = 10'000;

struct FreeContext {
    // The context does not own its document, which a malformed DTD leaves behind.
    void operator()(xmlParserCtxt* context) const {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

std::string_view View(const xmlChar* text) {
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

std::string_view View(const xmlChar* begin, std::size_t length) {
    return {reinterpret_cast<const char*>(begin), length};
}

std::span<const xmlChar* const> Pointers(const xmlChar** first, int groups, std::size_t groupSize) {
    return {first, static_cast<std::size_t>(groups) * groupSize};
}

// Whether the markup holds a list that is too long. libxml2 compares each entry with all before it,
// and no callback comes between. An unquoted '<' begins each tag, a quoted one is an error in it.
bool NeedsSquareTime(std::string_view text) {
    int declared = 0;  // in all attribute-list declarations
    for (std::size_t at = text.find('<'), next; at != text.npos; at = next) {
        next = text.find('<', at + 1);
        const std::string_view tag = text.substr(at, next - at);
        const bool isDeclaration = tag.starts_with("<!ATTLIST");
        if (!isDeclaration && tag.find_first_of("!?/ \t\r\n", 1) == 1) continue;
        int attributes = 0;
        char quote = '\0', previous = '\0';
        for (const char c : tag) {
            if (quote != '\0') {
                if (c == quote) quote = '\0';
                continue;
            }
            if (c == '>') break;
            const bool isQuote = c == '"' || c == '\'';
            if (isQuote) quote = c;
            if (isDeclaration)
                declared += isQuote || c == '|';
            else
                attributes += isQuote && previous == '=';
            if (!std::strchr(" \t\r\n", c)) previous = c;
        }
        if (std::max(attributes, declared) > kLongestList) return true;
    }
    return false;
}

}  // namespace

LibXML2ParseHandler::LibXML2ParseHandler(Owner<AbstractParseHandler>& newHandler)
    : AbstractDocParser(newHandler) {}

LibXML2ParseHandler::~LibXML2ParseHandler() = default;

bool LibXML2ParseHandler::HasNamespaceSupport() const { return true; }

ResultCode LibXML2ParseHandler::ParseDocument(const UTF16String& path) {
    if (!utility::FileUtils::FileExists(path)) return kParseFailed;
    const filesupport::File file(path, filesupport::StorageType::kPlain);
    filesupport::IPlatformByteStream stream(file, filesupport::IPlatformByteStream::kRead);
    if (stream.Length() > kLongestDocument) return kParseFailed;
    const auto length = static_cast<std::uint32_t>(stream.Length());
    ByteString document(length, '\0');
    stream.ReadBlock(document.data(), length);
    return ParseBuffer(document);
}

ResultCode LibXML2ParseHandler::ParseBuffer(const ByteString& document) {
    const std::size_t length = std::strlen(document.c_str());
    if (length > kLongestDocument || NeedsSquareTime({document.data(), length}))
        return kParseFailed;

    // Before the context is made, which copies the setting; libxml2 keeps one for each thread.
    xmlSubstituteEntitiesDefault(1);
    xmlSAXHandler callbacks{};
    callbacks.initialized = XML_SAX2_MAGIC;
    callbacks.internalSubset = internalSubset;
    callbacks.getEntity = getEntity;
    callbacks.startDocument = startDocument;
    callbacks.endDocument = endDocument;
    callbacks.characters = characters;
    callbacks.comment = comment;
    callbacks.cdataBlock = cdataBlock;
    callbacks.startElementNs = startElementWithNamespace;
    callbacks.endElementNs = endElementWithNamespace;

    const std::unique_ptr<xmlParserCtxt, FreeContext> owner(
        xmlCreateDocParserCtxt(reinterpret_cast<const xmlChar*>(document.c_str())));
    if (!owner) return kParseFailed;
    context = owner.get();
    context->userData = this;
    context->options |= XML_PARSE_NOENT;
    xmlSAXHandler* const ownCallbacks = std::exchange(context->sax, &callbacks);
    failed = false;
    budget = kAllowedExpansion + kAllowedFactor * length;

    const int result = xmlParseDocument(context);

    context->sax = ownCallbacks;  // freed with the context
    context = nullptr;
    return result == 0 && !failed ? kParseSucceeded : kParseFailed;
}

// Runs the action of one callback. The first exception is the end of the parse: libxml2 is told to
// stop, and what it still calls on its way out is not reported.
template <class Action>
void LibXML2ParseHandler::Report(void* parser, Action action) noexcept {
    auto& self = *static_cast<LibXML2ParseHandler*>(parser);
    if (self.failed) return;
    try {
        action(self);
    } catch (...) {
        self.failed = true;
        xmlStopParser(self.context);
    }
}

// Entities and default attributes make a short document yield a long one.
void LibXML2ParseHandler::Spend(std::size_t cost) {
    if (cost > budget) throw std::length_error("XML document yields too much text");
    budget -= cost;
}

UTF16String LibXML2ParseHandler::HandOn(std::string_view text) {
    Spend(text.size());
    return utility::UTF8to16(text);
}

UTF16String LibXML2ParseHandler::HandOnUri(const xmlChar* uri) {
    const std::string_view text = View(uri);
    Spend(text.size() - std::min(text.size(), kFreeUriLength));
    return utility::UTF8to16(text);
}

UTF16String LibXML2ParseHandler::HandOnQualifiedName(const xmlChar* prefix,
                                                     const xmlChar* localName) {
    ByteString name(View(prefix));
    if (!name.empty()) name += ':';
    name += View(localName);
    return HandOn(name);
}

// The context that libxml2 passes its own callbacks is the stored one, not the user data.

void LibXML2ParseHandler::internalSubset(void* parser, const xmlChar* name,
                                         const xmlChar* externalId, const xmlChar* systemId) {
    auto& self = *static_cast<LibXML2ParseHandler*>(parser);
    xmlSAX2InternalSubset(self.context, name, externalId, systemId);
}

xmlEntity* LibXML2ParseHandler::getEntity(void* parser, const xmlChar* name) {
    xmlEntity* given = nullptr;  // stays so in a stopped parser, which may still be in an entity
    Report(parser, [&](auto& self) {
        xmlEntity* const entity = xmlSAX2GetEntity(self.context, name);
        // Given an external one, libxml2 would read the file or web address that it names.
        if (!entity || entity->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY) return;
        // Each reference is parsed anew, and an attribute value is put together before any event.
        self.Spend(kReferenceCost + static_cast<std::size_t>(entity->length));
        if (NeedsSquareTime(View(entity->content))) throw std::length_error("XML tag is too long");
        given = entity;
    });
    return given;
}

void LibXML2ParseHandler::startDocument(void* parser) {
    Report(parser, [](auto& self) { self.handler->StartDocument(); });
}

void LibXML2ParseHandler::endDocument(void* parser) {
    Report(parser, [](auto& self) { self.handler->EndDocument(); });
}

void LibXML2ParseHandler::characters(void* parser, const xmlChar* text, int length) {
    Report(parser, [&](auto& self) {
        self.handler->Characters(self.HandOn(View(text, static_cast<std::size_t>(length))));
    });
}

void LibXML2ParseHandler::cdataBlock(void* parser, const xmlChar* text, int length) {
    Report(parser, [&](auto& self) {
        self.handler->StartCDATA();
        self.handler->Characters(self.HandOn(View(text, static_cast<std::size_t>(length))));
        self.handler->EndCDATA();
    });
}

void LibXML2ParseHandler::comment(void* parser, const xmlChar* text) {
    Report(parser, [&](auto& self) { self.handler->Comment(self.HandOn(View(text))); });
}

void LibXML2ParseHandler::startElementWithNamespace(void* parser, const xmlChar* localName,
                                                    const xmlChar* prefix, const xmlChar* uri,
                                                    int namespaceCount, const xmlChar** namespaces,
                                                    int attributeCount, int,
                                                    const xmlChar** attributes) {
    Report(parser, [&](auto& self) {
        self.Spend(kElementCost);
        Attributes list;
        const auto given = Pointers(attributes, attributeCount, 5);
        for (std::size_t i = 0; i < given.size(); i += 5) {
            const std::string_view value(
                View(given[i + 3], static_cast<std::size_t>(given[i + 4] - given[i + 3])));
            self.Spend(kAttributeCost);
            list.push_back({self.HandOnQualifiedName(given[i + 1], given[i]),
                            self.HandOnUri(given[i + 2]), self.HandOn(View(given[i])),
                            self.HandOn(value)});
        }

        Scope scope;
        const auto declared = Pointers(namespaces, namespaceCount, 2);
        for (std::size_t i = 0; i < declared.size(); i += 2) {
            self.Spend(kAttributeCost);
            const UTF16String declaredPrefix = self.HandOn(View(declared[i]));
            const UTF16String declaredUri = self.HandOn(View(declared[i + 1]));
            scope[declaredPrefix] = declaredUri;
            self.handler->StartPrefixMapping(declaredPrefix, declaredUri);
        }
        if (self.context->nsNr > 2 * kLongestList) throw std::length_error("too many namespaces");
        self.scopes.push_back(std::move(scope));
        self.handler->StartElement(self.HandOnQualifiedName(prefix, localName), self.HandOnUri(uri),
                                   self.HandOn(View(localName)), list);
    });
}

void LibXML2ParseHandler::endElementWithNamespace(void* parser, const xmlChar* localName,
                                                  const xmlChar* prefix, const xmlChar* uri) {
    Report(parser, [&](auto& self) {
        self.handler->EndElement(self.HandOnQualifiedName(prefix, localName), self.HandOnUri(uri),
                                 self.HandOn(View(localName)));
        const Scope ended = std::move(self.scopes.back());
        self.scopes.pop_back();
        for (const auto& [declaredPrefix, declaredUri] : ended)
            self.handler->EndPrefixMapping(declaredPrefix);
    });
}

LibXML2ParserFactory::~LibXML2ParserFactory() = default;

Owner<AbstractDocParser> LibXML2ParserFactory::GetParser(Owner<AbstractParseHandler>& handler) {
    return Owner<AbstractDocParser>(new LibXML2ParseHandler(handler));
}

}  // namespace vexacore::xml
