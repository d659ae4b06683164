#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string_view>

#include "host/vexacore/Xml.h"

struct _xmlEntity;      // NOLINT(bugprone-reserved-identifier): libxml2's names
struct _xmlError;       // NOLINT(bugprone-reserved-identifier)
struct _xmlParserCtxt;  // NOLINT(bugprone-reserved-identifier)

namespace vexacore::xml {

// Parses a document with libxml2's SAX2 parser and reports it to the host's handler.
//
// Owns:     its handler, which is never null; during ParseBuffer the libxml2 context.
// Invariant: one scope map for each open element, with the declarations made on it. An element that
//           a failed parse left open keeps its map until the parser is destroyed.
// Entities: internal ones are replaced by their text. References to external ones are refused: no
//           file or address that the document names is opened.
// Encodings: libxml2 itself reads UTF-8, UTF-16, US-ASCII and ISO 8859-1. For any other encoding,
//           the C library's iconv loads a conversion module from its own folder.
// Limits:   a document of more than 2 GiB is refused. A document has a budget of 1 MB plus twelve
//           times its size, in bytes of UTF-8. Everything passed to the handler spends it (of a
//           namespace URI that names repeat, only what exceeds 128 bytes), and so does the text of
//           an entity at each reference. Without entities, default attributes and longer URIs, it
//           is enough for any document with at most 100 attributes in a tag and namespaces in
//           scope, and element names of at most 64 bytes; more of them spend it too.
//           Also refused: more than 10,000 attributes in a tag, namespaces in scope, or tokens and
//           defaults in all attribute lists (one under an element name of 1,000 bytes counts as
//           two, of 2,000 bytes as three); different names, namespace URIs and declared defaults of
//           more than about 340,000 bytes together; a document of more than 1 MB whose attribute
//           lists declare namespaces. These limits hold in every encoding and inside entities. They
//           bound the time in proportion to the size.
//           libxml2's own limits: 257 open elements in the document and again in each entity;
//           entities in entities 20 deep; names of 50,000 bytes; 10 MB for an attribute value, a
//           comment, a CDATA section, a processing instruction or an entity. Text has no limit.
// Failure:  kParseFailed for a document that cannot be parsed, for an exception of the
//           handler, which is discarded, and for a parse that the handler asks its own parser for,
//           which changes nothing. The events before the first fatal error have been delivered;
//           none follows, not even EndDocument. Nothing is written to the standard error stream:
//           until ParseBuffer returns, it redirects libxml2's errors on its thread, also those of
//           other parsers that the handler uses, and again after each event.
//           Errors of the file layer leave ParseDocument as exceptions.
// Threads:  none; separate parsers may work on separate threads.
class LibXML2ParseHandler : public AbstractDocParser {
public:
    // Takes over the handler; the caller's owner is empty afterwards.
    explicit LibXML2ParseHandler(Owner<AbstractParseHandler>& handler);
    ~LibXML2ParseHandler() override;

    bool HasNamespaceSupport() const override;
    ResultCode ParseDocument(const UTF16String& path) override;
    // The document ends at its first NUL.
    ResultCode ParseBuffer(const ByteString& document) override;

    // libxml2 calls these; `parser` is the LibXML2ParseHandler. They let no exception out: it would
    // pass through libxml2's frames and leak what those own. Outside ParseBuffer they report too,
    // as long as nothing has failed.
    static void internalSubset(void* parser, const unsigned char* name,
                               const unsigned char* externalId, const unsigned char* systemId);
    static _xmlEntity* getEntity(void* parser, const unsigned char* name);
    static void startDocument(void* parser);
    static void endDocument(void* parser);
    static void characters(void* parser, const unsigned char* text, int length);
    static void cdataBlock(void* parser, const unsigned char* text, int length);
    static void comment(void* parser, const unsigned char* text);
    // `namespaces` contains pairs of prefix and URI; `attributes` five pointers each: local name,
    // prefix, URI, start and end of the value.
    static void startElementWithNamespace(void* parser, const unsigned char* localName,
                                          const unsigned char* prefix, const unsigned char* uri,
                                          int namespaceCount, const unsigned char** namespaces,
                                          int attributeCount, int defaultedCount,
                                          const unsigned char** attributes);
    static void endElementWithNamespace(void* parser, const unsigned char* localName,
                                        const unsigned char* prefix, const unsigned char* uri);

private:
    using Scope = std::map<UTF16String, UTF16String>;  // prefix to namespace URI

    template <class Action>
    static void Report(void* parser, Action action) noexcept;
    static void receiveError(void* parser, _xmlError* error);  // of any parser on this thread
    void Stop(std::string_view reason) noexcept;               // the first reason counts
    void CheckDocument();                                      // throws when it exceeds a limit
    // These convert for the handler and count against the budget; Spend only counts. They throw
    // when the budget is spent.
    void Spend(std::size_t cost);
    UTF16String HandOn(std::string_view text);
    UTF16String HandOnUri(const unsigned char* uri);
    UTF16String HandOnQualifiedName(const unsigned char* prefix, const unsigned char* localName);

    _xmlParserCtxt* context = nullptr;  // null outside ParseBuffer
    std::deque<Scope> scopes;
    // For the current parse:
    bool failed = false;                   // by a fatal error, or a callback has thrown
    std::size_t budget = ~std::size_t{0};  // what it may still spend, in bytes
    std::size_t namespacesInScope = 0;     // in the document and the entities that are open
    std::size_t declaredNamespaces = 0;    // or other entries of lists that declare namespaces
};

// Makes LibXML2ParseHandlers.
class LibXML2ParserFactory : public DocParserFactory {
public:
    ~LibXML2ParserFactory() override;
    Owner<AbstractDocParser> GetParser(Owner<AbstractParseHandler>& handler) override;
};

}  // namespace vexacore::xml
