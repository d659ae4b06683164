#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <limits>
#include <map>
#include <memory>
#include <optional>

#include "tools/base/Files.h"
#include "tools/exchange/ShownText.h"
#include "tools/exchange/Xliff.h"

namespace tool {

namespace {

// Attributes and namespaces of one tag. libxml2 compares each attribute with the others of its tag
// and with the namespaces in scope.
constexpr std::size_t kMostAttributes = 10'000;
constexpr std::size_t kMostNamespaces = 32;
// No shorter tag exceeds either.
constexpr std::size_t kShortTag = 5 * kMostNamespaces;

struct FreeContext {
    // The context does not own its document.
    void operator()(xmlParserCtxt* context) const {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

std::uint64_t LineAt(std::string_view text, std::size_t at) {
    return 1 + static_cast<std::uint64_t>(std::ranges::count(text.substr(0, at), '\n'));
}

std::size_t CountOf(std::string_view word, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + word.size()))
        ++count;
    return count;
}

// A tag ends at the next "<" at the latest: a quoted one is an error there. The text after the tag
// is counted with it.
void CheckTags(const std::string& name, std::string_view text) {
    for (std::size_t at = text.find('<'), next; at != text.npos; at = next) {
        next = text.find('<', at + 1);
        const std::string_view tag = text.substr(at, next - at);
        if (tag.size() <= kShortTag) continue;
        if (CountOf("=", tag) <= kMostAttributes && CountOf("xmlns", tag) <= kMostNamespaces) {
            continue;
        }
        throw Failure(name + ':' + std::to_string(LineAt(text, at)) +
                      ": a tag with too many attributes or namespaces");
    }
}

std::string_view NameOf(const xmlNode* node) { return reinterpret_cast<const char*>(node->name); }

// The value of an attribute without a namespace, or nothing.
std::optional<std::string> AttributeOf(const xmlNode* node, const char* attribute) {
    xmlChar* const value = xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(attribute));
    if (value == nullptr) return std::nullopt;
    std::string text(reinterpret_cast<const char*>(value));
    xmlFree(value);
    return text;
}

const xmlNode* Child(const xmlNode* node, std::string_view name) {
    for (const xmlNode* child = node->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && NameOf(child) == name) return child;
    return nullptr;
}

// The texts of inline codes by id, or by the id of the data.
using CodeTexts = std::map<std::string, std::string>;

class Reader {
public:
    explicit Reader(const std::string& fileName) : name(fileName) {}

    void BeginRoot(const xmlNode* root) {
        const std::string version = AttributeOf(root, "version").value_or("");
        isVersion2 = version.starts_with("2.");
        if (NameOf(root) != "xliff" || (!isVersion2 && !version.starts_with("1."))) {
            Fail(root, "not XLIFF 1.2, 2.0 or 2.1");
        }
    }

    bool IsUnit(const xmlNode* node) const {
        return NameOf(node) == (isVersion2 ? "unit" : "trans-unit");
    }
    void ReadUnit(const xmlNode* node) { isVersion2 ? ReadUnit21(node) : ReadUnit12(node); }

    Exchange Take() && { return std::move(exchange); }

private:
    [[noreturn]] void Fail(const xmlNode* node, const std::string& why) const {
        throw Failure(name + ':' + std::to_string(xmlGetLineNo(node)) + ": " + why);
    }

    Unit BeginUnit(const xmlNode* node, const char* keyAttribute) const {
        const auto key = AttributeOf(node, keyAttribute);
        if (!key) {
            Fail(node, std::string("no attribute ") + keyAttribute +
                           ", which is the key; remove the unit");
        }
        Unit unit;
        unit.key = *key;
        unit.line = static_cast<std::uint64_t>(xmlGetLineNo(node));
        return unit;
    }

    void ReadUnit12(const xmlNode* node) {
        Unit unit = BeginUnit(node, "resname");
        const xmlNode* const source = Child(node, "source");
        if (source == nullptr) Fail(node, "a unit without a source");
        CodeTexts codes;
        unit.source = InlineText(source, codes, true);
        if (const xmlNode* const target = Child(node, "target")) {
            unit.target = InlineText(target, codes, false);
            unit.line = static_cast<std::uint64_t>(xmlGetLineNo(target));
            const std::string state = AttributeOf(target, "state").value_or("translated");
            const bool isDone = state == "translated" || state == "final" || state == "signed-off";
            SetState(unit, isDone);
        }
        exchange.units.push_back(std::move(unit));
    }

    void ReadUnit21(const xmlNode* node) {
        Unit unit = BeginUnit(node, "name");
        CodeTexts codes;
        if (const xmlNode* const data = Child(node, "originalData")) {
            for (const xmlNode* child = data->children; child != nullptr; child = child->next) {
                if (child->type != XML_ELEMENT_NODE) continue;
                CodeTexts none;
                const auto text = CodeOfName(InlineText(child, none, false));
                if (!text) Fail(child, "not a code of a dictionary");
                codes["#" + AttributeOf(child, "id").value_or("")] = *text;
            }
        }
        std::size_t segments = 0;
        std::size_t translated = 0;
        bool isDone = true;
        for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (child->type != XML_ELEMENT_NODE) continue;
            const bool isSegment = NameOf(child) == "segment";
            if (!isSegment && NameOf(child) != "ignorable") continue;
            const xmlNode* const source = Child(child, "source");
            if (source == nullptr) Fail(child, "a segment without a source");
            const std::string text = InlineText(source, codes, true);
            unit.source += text;
            const xmlNode* const target = Child(child, "target");
            const std::string ofTarget =
                target == nullptr ? std::string() : InlineText(target, codes, false);
            unit.target += isSegment || target != nullptr ? ofTarget : text;
            if (!isSegment) continue;
            ++segments;
            if (!ofTarget.empty()) ++translated;
            isDone &= AttributeOf(child, "state").value_or("translated") != "initial";
            if (target != nullptr && translated == 1) {
                unit.line = static_cast<std::uint64_t>(xmlGetLineNo(target));
            }
        }
        if (translated != 0 && translated != segments) {
            Fail(node, "only some segments of \"" + unit.key +
                           "\" are translated; translate all of them or none");
        }
        if (translated == 0) unit.target.clear();
        SetState(unit, isDone);
        exchange.units.push_back(std::move(unit));
    }

    static void SetState(Unit& unit, bool isDone) {
        if (unit.target.empty()) return;
        unit.state = isDone ? State::kTranslated : State::kNeedsReview;
    }

    // The text of a source, which adds its codes, or of a target.
    std::string InlineText(const xmlNode* node, CodeTexts& codes, bool isSource) const {
        std::string text;
        for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
                text += reinterpret_cast<const char*>(child->content);
            } else if (child->type == XML_ELEMENT_NODE) {
                text += InlineElement(child, codes, isSource);
            }
        }
        return text;
    }

    std::string InlineElement(const xmlNode* node, CodeTexts& codes, bool isSource) const {
        const std::string_view element = NameOf(node);
        if (element == "mrk") return InlineText(node, codes, isSource);
        if (isVersion2 && (element == "sm" || element == "em")) return {};
        if (isVersion2 && element == "cp") return Character(node);
        const bool isCode = element == "ph" || (!isVersion2 && element == "x");
        if (!isCode) {
            Fail(node, "the element <" + std::string(element) +
                           "> has no meaning in a dictionary; remove it");
        }
        const std::string id = AttributeOf(node, "id").value_or("");
        const auto code = TextOfCode(node, id, codes);
        if (!code) {
            Fail(node, "the source has no inline element <" + std::string(element) + " id=\"" + id +
                           "\">; remove it, or write its text");
        }
        if (isSource) codes[id] = *code;
        return *code;
    }

    // The source's code with the same id counts, so that the target cannot change a code.
    std::optional<std::string> TextOfCode(const xmlNode* node, const std::string& id,
                                          const CodeTexts& codes) const {
        if (const auto known = codes.find(id); known != codes.end()) return known->second;
        const auto data = codes.find("#" + AttributeOf(node, "dataRef").value_or(""));
        if (data != codes.end()) return data->second;
        for (const char* const attribute : {"equiv-text", "disp", "equiv"}) {
            const auto named = AttributeOf(node, attribute);
            auto code = named ? CodeOfName(*named) : std::nullopt;
            if (code) return code;
        }
        return std::nullopt;
    }

    // <cp hex="0008"/>: a character that XML cannot contain. A shown text has its number.
    std::string Character(const xmlNode* node) const {
        constexpr int kHexadecimal = 16;
        const std::string hex = AttributeOf(node, "hex").value_or("");
        unsigned short unit = 0;
        const auto [end, error] =
            std::from_chars(hex.data(), hex.data() + hex.size(), unit, kHexadecimal);
        if (error != std::errc() || end != hex.data() + hex.size()) {
            Fail(node, "\"" + hex + "\" is not the number of a character");
        }
        return "#{" + CodePoint(unit) + "}";
    }

    const std::string& name;
    bool isVersion2 = false;
    Exchange exchange;
};

// Parses a file and reads each unit as soon as it is complete. Only the unit is kept as a tree.
class Parser {
public:
    Parser(const std::string& fileName, const std::string& fileBytes)
        : name(fileName), bytes(fileBytes), reader(fileName), context(xmlNewParserCtxt()) {
        if (!context) throw std::bad_alloc();
        context->_private = this;
        context->sax->internalSubset = OnInternalSubset;
        context->sax->serror = OnError;
        context->sax->startElementNs = OnStart;
        context->sax->endElementNs = OnEnd;
        context->sax->characters = OnText;
        context->sax->ignorableWhitespace = OnText;
        context->sax->cdataBlock = OnCdata;
        context->sax->comment = nullptr;
        context->sax->processingInstruction = nullptr;
    }

    Exchange Run() && {
        if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
            throw Failure(name + ": longer than 2 GiB, which libxml2 does not read");
        }
        CheckTags(name, bytes);
        constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_BIG_LINES | XML_PARSE_COMPACT;
        context->myDoc =
            xmlCtxtReadMemory(context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr,
                              "UTF-8", kOptions);
        if (failure) std::rethrow_exception(failure);
        const std::string place = name + ':' + std::to_string(line) + ": ";
        if (hasDeclaration) {
            throw Failure(place +
                          "a document type declaration, which XLIFF does not have; remove it");
        }
        if (!error.empty()) throw Failure(place + error);
        if (!hasRoot) throw Failure(name + ": not XLIFF");
        return std::move(reader).Take();
    }

private:
    static xmlParserCtxt* ContextOf(void* context) { return static_cast<xmlParserCtxt*>(context); }
    static Parser& Of(void* context) { return *static_cast<Parser*>(ContextOf(context)->_private); }

    // Stops before the declaration's entities are read.
    static void OnInternalSubset(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
        const xmlParserInput* const input = ContextOf(context)->input;
        Of(context).hasDeclaration = true;
        Of(context).line = input == nullptr ? 0 : input->line;
        xmlStopParser(ContextOf(context));
    }

    static void OnError(void* context, xmlError* problem) {
        Parser& parser = Of(context);
        const bool isFirst = parser.error.empty() && problem->level >= XML_ERR_ERROR;
        if (!isFirst || problem->message == nullptr) return;
        parser.line = problem->line;
        parser.error = problem->message;
        parser.error.erase(std::min(parser.error.find('\n'), parser.error.size()));
    }

    static void OnStart(void* context, const xmlChar* element, const xmlChar* prefix,
                        const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                        int attributeCount, int defaultedCount, const xmlChar** attributes) {
        xmlSAX2StartElementNs(context, element, prefix, uri, namespaceCount, namespaces,
                              attributeCount, defaultedCount, attributes);
        Parser& parser = Of(context);
        const xmlNode* const node = ContextOf(context)->node;
        if (node == nullptr || parser.unit != nullptr) return;
        if (!parser.hasRoot) {
            parser.hasRoot = true;
            parser.Guard([&] { parser.reader.BeginRoot(node); });
        } else if (parser.reader.IsUnit(node)) {
            parser.unit = node;
        }
    }

    static void OnEnd(void* context, const xmlChar* element, const xmlChar* prefix,
                      const xmlChar* uri) {
        Parser& parser = Of(context);
        xmlNode* const node = ContextOf(context)->node;
        xmlSAX2EndElementNs(context, element, prefix, uri);
        if (node == nullptr || node != parser.unit) return;
        parser.Guard([&] { parser.reader.ReadUnit(node); });
        parser.unit = nullptr;
        xmlUnlinkNode(node);
        xmlFreeNode(node);
    }

    // Text between units has no meaning.
    static void OnText(void* context, const xmlChar* text, int length) {
        if (Of(context).unit != nullptr) xmlSAX2Characters(context, text, length);
    }
    static void OnCdata(void* context, const xmlChar* text, int length) {
        if (Of(context).unit != nullptr) xmlSAX2CDataBlock(context, text, length);
    }

    // Exceptions do not pass through libxml2.
    template <typename Work>
    void Guard(const Work& work) noexcept {
        if (failure) return;
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
            xmlStopParser(context.get());
        }
    }

    const std::string& name;
    const std::string& bytes;
    Reader reader;
    std::unique_ptr<xmlParserCtxt, FreeContext> context;
    const xmlNode* unit = nullptr;  // the one being parsed
    bool hasRoot = false;
    std::exception_ptr failure;  // of the reader
    bool hasDeclaration = false;
    std::string error;  // the parser's first one
    int line = 0;       // of the declaration or the error
};

}  // namespace

bool LooksLikeXml(const std::string& bytes) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    const std::size_t begin = bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    const std::size_t first = bytes.find_first_not_of(" \t\r\n", begin);
    return first != std::string::npos && bytes[first] == '<';
}

Exchange ReadXliff(const std::string& name, const std::string& bytes) {
    return Parser(name, bytes).Run();
}

}  // namespace tool
