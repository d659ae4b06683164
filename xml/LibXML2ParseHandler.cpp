#include "xml/LibXML2ParseHandler.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <utility>

#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"

namespace vexacore::xml {

namespace {

constexpr std::size_t kLongestDocument = std::numeric_limits<int>::max();  // libxml2 counts in int
constexpr const char* kTooLong = "the document is longer than 2 GiB";
constexpr const char* kOutOfMemory = "out of memory";
constexpr const char* kUndecoded = "bytes after the root element are not in the declared encoding";
constexpr const char* kTooCostly = "its entities, attributes or namespaces cost too much";
constexpr const char* kLongList =
    "a list of attributes has more than 10,000 entries, or fewer with a long element name";
constexpr const char* kManyNamespaces = "more than 10,000 namespaces are in scope";
constexpr const char* kManyNames = "the document has too many different names";
constexpr const char* kLongForNamespace =
    "an attribute list declares a namespace, and the document is longer than 1 MB";
constexpr std::size_t kAllowedExpansion = 1'000'000;  // bytes
// Enough for what a document itself says. The name of an empty element is passed on four times
// (qualified and local, at start and end), and one byte of ISO 8859 or of a Windows code page takes
// up to three bytes in UTF-8.
constexpr std::size_t kAllowedFactor = 12;
// An element, an attribute and a reference each cost what the document is allowed for their
// shortest form without names: "</>", " =''" and "&e;".
constexpr std::size_t kElementCost = 3 * kAllowedFactor;
constexpr std::size_t kAttributeCost = 4 * kAllowedFactor;
constexpr std::size_t kReferenceCost = 3 * kAllowedFactor;
// Ordinary documents repeat their namespace on every element, so this many bytes of it are free.
constexpr std::size_t kFreeUriLength = 128;
// Attributes of one start tag, namespaces in scope, or entries of all attribute-list declarations.
constexpr std::size_t kLongestList = 10'000;
// Each further so many bytes of an element's name make its attributes count once more there.
constexpr std::size_t kNameBytesPerCount = 1'000;

// Work that libxml2 2.9.14 does without calling back, as measured; a test bounds the time. Each
// start tag compares its attributes and namespaces with each other, with the namespaces in scope
// and with the declared defaults. For each of them it reads the element's name again: for its
// declared type, and for the text of an error when its prefix is not defined. An entity copies the
// namespaces in scope. One byte of the budget pays for so many of these steps.
constexpr std::size_t kComparisonsPerByte = 128;
constexpr std::size_t kNameBytesReadPerByte = 16;
constexpr std::size_t kNamespacesCopiedPerByte = 8;
// Bytes of names, namespace URIs and declared defaults, which libxml2 keeps in 4608 lists. Its last
// block of memory for them may exceed the limit.
constexpr std::size_t kDictionaryLimit = 340'000;
// libxml2 crashes on a declared namespace that does not fit into its dictionary. So a document that
// declares one has no dictionary limit, but this limit on its length.
constexpr std::size_t kDeclaredNamespaceLimit = 1'000'000;

struct FreeContext {
    // The context does not own its document; a malformed DTD leaves one.
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

// Counts the entries that libxml2 compares with all before them, before it calls back. The limit of
// the dictionary does not bound their number: a few prefixes and names make many attributes, and
// the values of an attribute declaration are not in the dictionary. Without this count 4 MB of
// either take minutes. libxml2 reads the element's name again for each entry, so an entry of a long
// name counts more than once. Each tag begins with an unquoted '<'; a quoted one is an error there.
struct Lists {
    std::size_t attributes = 0;  // of the tag with most of them
    std::size_t declared = 0;    // defaults and tokens in all attribute-list declarations
    bool namespaces = false;     // such a declaration may declare one

    explicit Lists(std::string_view text) {
        for (std::size_t at = text.find('<'), next; at != text.npos; at = next) {
            next = text.find('<', at + 1);
            Add(text.substr(at, next - at));
        }
    }
    void Check() const {
        if (std::max(attributes, declared) > kLongestList) throw std::length_error(kLongList);
    }

private:
    void Add(std::string_view tag) {
        constexpr std::string_view kDeclaration = "<!ATTLIST", kBlanks = " \t\r\n";
        const bool isDeclaration = tag.starts_with(kDeclaration);
        if (!isDeclaration && tag.find_first_of("!?/ \t\r\n", 1) == 1) return;
        namespaces |= isDeclaration && tag.find("xmlns") != tag.npos;
        std::size_t entries = 0;
        char quote = '\0', previous = '\0';
        for (const char c : tag) {
            if (quote != '\0') {
                if (c == quote) quote = '\0';
                continue;
            }
            if (c == '>') break;
            const bool isQuote = c == '"' || c == '\'';
            if (isQuote) quote = c;
            entries += isDeclaration ? isQuote || c == '|' || c == '#' : isQuote && previous == '=';
            if (kBlanks.find(c) == kBlanks.npos) previous = c;
        }
        tag.remove_prefix(isDeclaration ? kDeclaration.size() : 1);
        tag.remove_prefix(std::min(tag.find_first_not_of(kBlanks), tag.size()));
        entries *= 1 + std::min(tag.find_first_of(kBlanks), tag.size()) / kNameBytesPerCount;
        if (isDeclaration)
            declared += entries;
        else
            attributes = std::max(attributes, entries);
    }
};

// Decodes the rest of a document that is not in UTF-8. libxml2 would do so a little later.
void Decode(xmlParserInput& input) {
    if (!input.buf || !input.buf->encoder) return;
    const std::ptrdiff_t offset = input.cur - input.base;
    while (xmlParserInputBufferGrow(input.buf, 1) > 0) {
    }
    input.base = xmlBufContent(input.buf->buffer);
    input.cur = input.base + offset;
    input.end = xmlBufEnd(input.buf->buffer);
}

// libxml2 ends the document at the first bytes that are not in its encoding. It does not report
// them when they follow the root element.
bool HasUndecodedBytes(const xmlParserInput& input) {
    return input.buf && input.buf->raw && xmlBufUse(input.buf->raw) != 0;
}

// The line of an error and the first line of its text, in UTF-8. A text with a very long name is
// cut between two characters.
std::array<char, 200> Describe(const xmlError& error) noexcept {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), "line %d: %s", error.line, error.message);
    std::size_t end = std::strcspn(text.data(), "\n");
    if (end == text.size() - 1) {
        constexpr unsigned char kContinuationMask = 0xC0, kContinuation = 0x80;
        while ((static_cast<unsigned char>(text[--end]) & kContinuationMask) == kContinuation) {
        }
    }
    text[end] = '\0';
    return text;
}

// What libxml2 calls a lack of memory. The dictionary refuses every further name then.
const char* WhyNoMemory(xmlDict* dictionary) noexcept {
    const std::size_t limit = xmlDictSetLimit(dictionary, 1);
    return limit != 0 && xmlDictGetUsage(dictionary) > limit ? kManyNames : kOutOfMemory;
}

// Sends libxml2's errors on this thread to one function instead of the standard error stream.
class ErrorRedirection {
public:
    ErrorRedirection(void* receiver, xmlStructuredErrorFunc function)
        : previousReceiver(xmlStructuredErrorContext), previousFunction(xmlStructuredError) {
        xmlSetStructuredErrorFunc(receiver, function);
    }
    ~ErrorRedirection() { xmlSetStructuredErrorFunc(previousReceiver, previousFunction); }
    ErrorRedirection(const ErrorRedirection&) = delete;
    ErrorRedirection& operator=(const ErrorRedirection&) = delete;

private:
    void* previousReceiver;
    xmlStructuredErrorFunc previousFunction;
};

}  // namespace

LibXML2ParseHandler::LibXML2ParseHandler(Owner<AbstractParseHandler>& newHandler)
    : AbstractDocParser(newHandler) {}

LibXML2ParseHandler::~LibXML2ParseHandler() = default;

bool LibXML2ParseHandler::HasNamespaceSupport() const { return true; }

ResultCode LibXML2ParseHandler::ParseDocument(const UTF16String& path) {
    if (context) return kParseFailed;
    failure.clear();
    if (!utility::FileUtils::FileExists(path)) return kParseFailed;
    const filesupport::File file(path, filesupport::StorageType::kPlain);
    filesupport::IPlatformByteStream stream(file, filesupport::IPlatformByteStream::kRead);
    if (stream.Length() > kLongestDocument) {
        failure = kTooLong;
        return kParseFailed;
    }
    const auto length = static_cast<std::uint32_t>(stream.Length());
    ByteString document(length, '\0');
    stream.ReadBlock(document.data(), length);
    return ParseBuffer(document);
}

ResultCode LibXML2ParseHandler::ParseBuffer(const ByteString& document) {
    const std::size_t length = std::strlen(document.c_str());
    if (context) return kParseFailed;
    failure = length > kLongestDocument ? kTooLong : "";
    if (!failure.empty()) return kParseFailed;

    // Set before the context is made, which copies the setting. libxml2 has one for each thread.
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

    const ErrorRedirection redirection(this, receiveError);
    const std::unique_ptr<xmlParserCtxt, FreeContext> owner(
        xmlCreateDocParserCtxt(reinterpret_cast<const xmlChar*>(document.c_str())));
    if (!owner) {
        failure = length == 0 ? "the document is empty" : kOutOfMemory;
        return kParseFailed;
    }
    context = owner.get();
    context->userData = this;
    context->options |= XML_PARSE_NOENT;
    xmlSAXHandler* const ownCallbacks = std::exchange(context->sax, &callbacks);
    failed = false;
    namespacesInScope = declaredNamespaces = 0;
    budget = kAllowedExpansion + kAllowedFactor * length;

    const int result = xmlParseDocument(context);

    context->sax = ownCallbacks;  // freed with the context
    context = nullptr;
    return result == 0 && !failed ? kParseSucceeded : kParseFailed;
}

// Runs the action of one callback. The first exception ends the parse, as the first fatal error
// does: libxml2 is stopped, and its remaining calls are not reported. A handler that uses libxml2
// may have set its own receiver of errors; without this one, the next error would go unnoticed.
template <class Action>
void LibXML2ParseHandler::Report(void* parser, Action action) noexcept {
    auto& self = *static_cast<LibXML2ParseHandler*>(parser);
    if (self.failed) return;
    try {
        action(self);
    } catch (const std::bad_alloc&) {
        self.Stop(kOutOfMemory);
    } catch (const std::exception& error) {
        self.Stop(error.what());
    } catch (...) {
        self.Stop({});
    }
    if (self.context) xmlSetStructuredErrorFunc(&self, receiveError);
}

// With this limit the dictionary of libxml2 2.9.14 refuses every name, so the parse ends at the
// next name. This also reaches the context of an entity, which is unknown here but shares the
// dictionary. xmlStopParser would free the input, which may still be in use where an error is
// reported.
void LibXML2ParseHandler::Stop(std::string_view reason) noexcept {
    try {
        if (!failed) failure = reason;
    } catch (const std::bad_alloc&) {  // without a reason
    }
    failed = true;
    if (!context) return;
    context->instate = XML_PARSER_EOF;
    xmlDictSetLimit(context->dict, 1);
}

// The context of an entity has the same user data as the document's. Errors of other parsers, which
// the handler may use, do not count.
void LibXML2ParseHandler::receiveError(void* parser, xmlError* error) {
    auto& self = *static_cast<LibXML2ParseHandler*>(parser);
    if (error->domain != XML_FROM_PARSER || error->level != XML_ERR_FATAL || !error->ctxt) return;
    auto& failing = *static_cast<xmlParserCtxt*>(error->ctxt);
    if (failing.userData != &self) return;
    failing.instate = XML_PARSER_EOF;
    self.Stop(error->code == XML_ERR_NO_MEMORY ? WhyNoMemory(failing.dict)
                                               : Describe(*error).data());
}

// Entities and default attributes make a short document yield a long one.
void LibXML2ParseHandler::Spend(std::size_t cost) {
    if (cost > budget) throw std::length_error(kTooCostly);
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

// The context that libxml2 passes to its own callbacks is the stored one, not the user data.

void LibXML2ParseHandler::internalSubset(void* parser, const xmlChar* name,
                                         const xmlChar* externalId, const xmlChar* systemId) {
    auto& self = *static_cast<LibXML2ParseHandler*>(parser);
    xmlSAX2InternalSubset(self.context, name, externalId, systemId);
}

xmlEntity* LibXML2ParseHandler::getEntity(void* parser, const xmlChar* name) {
    xmlEntity* given = nullptr;  // stays so in a stopped parser, which may still be in an entity
    Report(parser, [&](auto& self) {
        xmlEntity* const entity = xmlSAX2GetEntity(self.context, name);
        // With an external entity, libxml2 would read the file or web address that it names.
        if (!entity || entity->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY) return;
        // Each reference is parsed again, and an attribute value is complete before any event.
        self.Spend(kReferenceCost + static_cast<std::size_t>(entity->length) +
                   self.namespacesInScope / kNamespacesCopiedPerByte);
        Lists(View(entity->content)).Check();
        given = entity;
    });
    return given;
}

void LibXML2ParseHandler::CheckDocument() {
    xmlParserInput& input = *context->input;
    Decode(input);
    const auto length = static_cast<std::size_t>(input.end - input.cur);
    const Lists lists(View(input.cur, length));
    lists.Check();
    // A declared namespace that is already in scope is looked up there, and not reported.
    declaredNamespaces = lists.namespaces ? lists.declared : 0;
    if (lists.namespaces && length > kDeclaredNamespaceLimit)
        throw std::length_error(kLongForNamespace);
    xmlDictSetLimit(context->dict, lists.namespaces ? 0 : kDictionaryLimit);
}

void LibXML2ParseHandler::startDocument(void* parser) {
    Report(parser, [](auto& self) {
        if (self.context) self.CheckDocument();
        self.handler->StartDocument();
    });
}

void LibXML2ParseHandler::endDocument(void* parser) {
    Report(parser, [](auto& self) {
        if (self.context && HasUndecodedBytes(*self.context->input))
            throw std::runtime_error(kUndecoded);
        self.handler->EndDocument();
    });
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
        const auto given = Pointers(attributes, attributeCount, 5);
        const auto declared = Pointers(namespaces, namespaceCount, 2);
        self.namespacesInScope += declared.size() / 2;
        if (self.namespacesInScope > kLongestList) throw std::length_error(kManyNamespaces);
        const std::size_t entries = given.size() / 5 + declared.size() / 2;
        const std::size_t compared = entries + self.namespacesInScope;
        const std::size_t nameLength = View(prefix).size() + View(localName).size();
        const std::size_t comparing = 1 + entries + self.declaredNamespaces;
        self.Spend(kElementCost + comparing * compared / kComparisonsPerByte +
                   entries * nameLength / kNameBytesReadPerByte);

        Attributes list;
        for (std::size_t i = 0; i < given.size(); i += 5) {
            if (!given[i] || !given[i + 3]) throw std::length_error(kManyNames);
            const std::string_view value(
                View(given[i + 3], static_cast<std::size_t>(given[i + 4] - given[i + 3])));
            self.Spend(kAttributeCost);
            list.push_back({self.HandOnQualifiedName(given[i + 1], given[i]),
                            self.HandOnUri(given[i + 2]), self.HandOn(View(given[i])),
                            self.HandOn(value)});
        }

        Scope scope;
        for (std::size_t i = 0; i < declared.size(); i += 2) {
            self.Spend(kAttributeCost);
            const UTF16String declaredPrefix = self.HandOn(View(declared[i]));
            const UTF16String declaredUri = self.HandOn(View(declared[i + 1]));
            scope[declaredPrefix] = declaredUri;
            self.handler->StartPrefixMapping(declaredPrefix, declaredUri);
        }
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
        self.namespacesInScope -= ended.size();
        for (const auto& [declaredPrefix, declaredUri] : ended)
            self.handler->EndPrefixMapping(declaredPrefix);
    });
}

LibXML2ParserFactory::~LibXML2ParserFactory() = default;

Owner<AbstractDocParser> LibXML2ParserFactory::GetParser(Owner<AbstractParseHandler>& handler) {
    return Owner<AbstractDocParser>(new LibXML2ParseHandler(handler));
}

}  // namespace vexacore::xml
