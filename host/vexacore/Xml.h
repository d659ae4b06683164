#pragma once
// The host's XML interface. A factory makes a parser for a handler; the parser reports the document
// to the handler event by event. The order of the virtual operations is part of the interface.
//
// Threads:  none. A parser and its handler serve one thread at a time. The factory is installed on
//           the launcher's thread.

#include <cstdint>
#include <string>
#include <vector>

#include "host/vexacore/Owner.h"
#include "host/vexacore/String.h"

namespace vexacore::xml {

struct Attribute {
    UTF16String qualifiedName;
    UTF16String namespaceUri;
    UTF16String localName;
    UTF16String value;

    bool operator==(const Attribute&) const = default;
};
using Attributes = std::vector<Attribute>;

// A missing namespace or prefix is the empty string.
class AbstractParseHandler {
public:
    virtual ~AbstractParseHandler();

    virtual void StartDocument() = 0;
    // Only parsers without namespace support call it.
    virtual void StartElement(const UTF16String& name, const Attributes& attributes) = 0;
    virtual void StartElement(const UTF16String& qualifiedName, const UTF16String& namespaceUri,
                              const UTF16String& localName, const Attributes& attributes) = 0;
    // Only parsers without namespace support call it.
    virtual void EndElement(const UTF16String& name) = 0;
    virtual void EndElement(const UTF16String& qualifiedName, const UTF16String& namespaceUri,
                            const UTF16String& localName) = 0;
    virtual void StartCDATA() = 0;
    virtual void EndCDATA() = 0;
    virtual void Characters(const UTF16String& text) = 0;  // one text may come in several calls
    virtual void Comment(const UTF16String& text) = 0;
    virtual void EndDocument() = 0;
    virtual void StartPrefixMapping(const UTF16String& prefix, const UTF16String& namespaceUri) = 0;
    virtual void EndPrefixMapping(const UTF16String& prefix) = 0;
};

using ResultCode = std::int32_t;
constexpr ResultCode kParseSucceeded = 0;
constexpr ResultCode kParseFailed = 10;

// Owns:     its handler.
class AbstractDocParser {
public:
    // Takes over the handler; the caller's owner is empty afterwards.
    explicit AbstractDocParser(Owner<AbstractParseHandler>& newHandler) : handler(newHandler) {}
    virtual ~AbstractDocParser();
    AbstractDocParser(const AbstractDocParser&) = delete;
    AbstractDocParser& operator=(const AbstractDocParser&) = delete;

    virtual bool HasNamespaceSupport() const = 0;
    virtual ResultCode ParseDocument(const UTF16String& path) = 0;
    virtual ResultCode ParseBuffer(const ByteString& document) = 0;

    // Why the last parse failed: one line for people in UTF-8. Empty when the parser does not know.
    const std::string& LastFailure() const noexcept { return failure; }

protected:
    Owner<AbstractParseHandler> handler;
    std::string failure;
};

class DocParserFactory {
public:
    virtual ~DocParserFactory();

    // Returns a new parser that takes over the handler; the caller's owner is empty afterwards.
    virtual Owner<AbstractDocParser> GetParser(Owner<AbstractParseHandler>& handler) = 0;
};

// Installs the factory in the holder; an empty holder installs none. Afterwards the holder contains
// the previous factory. The host owns the installed factory.
void SetParserFactory(Owner<DocParserFactory>& holder);
DocParserFactory* GetParserFactory() noexcept;  // borrowed; null when none is installed

}  // namespace vexacore::xml
