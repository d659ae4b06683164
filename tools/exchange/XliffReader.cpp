#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <charconv>
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

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeContext {
    // The context does not own its document.
    void operator()(xmlParserCtxt* context) const {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

// The results of the parser's callbacks.
struct Outcome {
    bool hasDeclaration = false;
    int line = 0;
    std::string error;  // the first one
};

Outcome& OutcomeOf(void* context) {
    return *static_cast<Outcome*>(static_cast<xmlParserCtxt*>(context)->_private);
}

// Stops before the declaration's entities are read.
void OnInternalSubset(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
    auto* const parser = static_cast<xmlParserCtxt*>(context);
    OutcomeOf(context).hasDeclaration = true;
    OutcomeOf(context).line = parser->input == nullptr ? 0 : parser->input->line;
    xmlStopParser(parser);
}

void OnError(void* context, xmlError* error) {
    Outcome& outcome = OutcomeOf(context);
    const bool isFirst = outcome.error.empty() && error->level >= XML_ERR_ERROR;
    if (!isFirst || error->message == nullptr) return;
    outcome.line = error->line;
    outcome.error = error->message;
    outcome.error.erase(std::min(outcome.error.find('\n'), outcome.error.size()));
}

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

std::unique_ptr<xmlDoc, FreeDocument> Parse(const std::string& name, const std::string& bytes) {
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw Failure(name + ": longer than 2 GiB, which libxml2 does not read");
    }
    CheckTags(name, bytes);
    const std::unique_ptr<xmlParserCtxt, FreeContext> context(xmlNewParserCtxt());
    if (!context) throw std::bad_alloc();
    Outcome outcome;
    context->_private = &outcome;
    context->sax->internalSubset = OnInternalSubset;
    context->sax->serror = OnError;
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_BIG_LINES;
    std::unique_ptr<xmlDoc, FreeDocument> document(xmlCtxtReadMemory(
        context.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, "UTF-8", kOptions));
    const std::string place = name + ':' + std::to_string(outcome.line) + ": ";
    if (outcome.hasDeclaration) {
        throw Failure(place + "a document type declaration, which XLIFF does not have; remove it");
    }
    if (!outcome.error.empty()) throw Failure(place + outcome.error);
    if (!document || xmlDocGetRootElement(document.get()) == nullptr) {
        throw Failure(name + ": not XLIFF");
    }
    return document;
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

    Exchange Read(const xmlNode* root) && {
        const std::string version = AttributeOf(root, "version").value_or("");
        isVersion2 = version.starts_with("2.");
        if (NameOf(root) != "xliff" || (!isVersion2 && !version.starts_with("1."))) {
            Fail(root, "not XLIFF 1.2, 2.0 or 2.1");
        }
        Visit(root);
        return std::move(exchange);
    }

private:
    [[noreturn]] void Fail(const xmlNode* node, const std::string& why) const {
        throw Failure(name + ':' + std::to_string(xmlGetLineNo(node)) + ": " + why);
    }

    // libxml2 limits how deep elements are nested.
    void Visit(const xmlNode* node) {
        for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (child->type != XML_ELEMENT_NODE) continue;
            if (isVersion2 && NameOf(child) == "unit") {
                ReadUnit21(child);
            } else if (!isVersion2 && NameOf(child) == "trans-unit") {
                ReadUnit12(child);
            } else {
                Visit(child);
            }
        }
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

}  // namespace

bool LooksLikeXml(const std::string& bytes) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    const std::size_t begin = bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    const std::size_t first = bytes.find_first_not_of(" \t\r\n", begin);
    return first != std::string::npos && bytes[first] == '<';
}

Exchange ReadXliff(const std::string& name, const std::string& bytes) {
    const auto document = Parse(name, bytes);
    return Reader(name).Read(xmlDocGetRootElement(document.get()));
}

}  // namespace tool
