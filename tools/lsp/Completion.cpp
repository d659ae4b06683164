#include <algorithm>
#include <set>

#include "tools/lsp/Features.h"
#include "wordlex/functionality/Escapes.h"

namespace tool::lsp {

namespace {

using lexon_private::CharEntityReferencePair;
using lexon_private::Escapes;
using lexon_private::EscapeTableEntry;

constexpr std::size_t kMostItems = 300;
// Kinds of items, with the protocol's numbers.
constexpr int kConstant = 21;
constexpr int kKeyword = 14;
constexpr int kText = 1;

// The text being written: the line up to the cursor and after it.
struct Context {
    const OpenFile& file;
    Position cursor;
    std::vector<unsigned short> line = {};
    std::size_t unit = 0;                   // of the cursor
    const TextFile::Line* entry = nullptr;  // null on an empty line

    std::size_t Back(std::size_t units) const {
        return cursor.character - std::min(cursor.character, units);
    }
    // From a number of units before the cursor to a number after it.
    Range Around(std::size_t before, std::size_t after) const {
        return {{cursor.line, Back(before)}, {cursor.line, cursor.character + after}};
    }
    Units Before() const { return Units(line).first(unit); }
    Units After() const { return Units(line).subspan(unit); }
};

// An editor filters by the label. Neovim 0.7 heeds the range of items without a filter text alone.
Json Item(const std::string& label, int kind, const std::string& detail, const Range& range,
          const std::string& newText) {
    return {{"label", label},
            {"kind", kind},
            {"detail", detail},
            {"textEdit", {{"range", ToJson(range)}, {"newText", newText}}}};
}

std::string Meaning(unsigned short unit) {
    std::string text = CodePoint(unit);
    if (unit > ' ' && unit != 0x00A0) text = Utf8({&unit, 1}) + "  " + text;
    return text;
}

bool IsWordPart(unsigned short unit) {
    return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= 'a' && unit <= 'z') || unit == '+';
}

// The names of "#{NAME}", with what follows the name.
void AddEntities(const Context& context, std::size_t begun, Json& items) {
    const Units after = context.After();
    const bool isClosed = !after.empty() && after.front() == u'}';
    const Range range = context.Around(begun, isClosed ? 1 : 0);
    for (const CharEntityReferencePair* entity = lexon_private::charEntityReference();
         entity->name != nullptr; ++entity) {
        const std::string name = Utf8({entity->name, entity->length});
        const bool isWord = entity->codePoint == 0;
        items.push_back(Item("#{" + name + "}", isWord ? kKeyword : kConstant,
                             isWord ? "" : Meaning(entity->codePoint), range, name + "}"));
        items.back()["filterText"] = name + "}";  // "#{" is before the range
    }
}

void AddEscapes(const Context& context, char sign, Json& items) {
    const EscapeTableEntry* const table = sign == '^' ? Escapes::Hat() : Escapes::Backslash();
    const Range range = context.Around(1, 0);
    for (const EscapeTableEntry* row = table; row->escape != 0; ++row) {
        const std::string written = sign + Utf8({&row->escape, 1});
        items.push_back(Item(written, kConstant, Meaning(row->replacement), range, written));
    }
    const std::string doubled(2, sign);
    items.push_back(Item(doubled, kConstant, "the character itself", range, doubled));
}

// Keys of the reference that the file lacks.
bool AddKeys(Workspace& workspace, const Context& context, Json& items) {
    const std::string& path = workspace.ProjectOf(context.file).project.reference;
    const TextFile* const reference = path.empty() ? nullptr : workspace.FileAt(path);
    if (reference == nullptr || reference->IsBinary()) return false;

    std::set<std::string_view> present;
    for (const TextFile::Line& line : context.file.text->Document().Lines())
        if (&line != context.entry) present.insert(line.key);
    // The replaced range: from after the opening mark, or without one from the start of the line,
    // to the end of the key.
    const auto mark = std::ranges::find(context.line, u'"');
    const bool isQuoted = mark != context.line.end() &&
                          mark < context.line.begin() + static_cast<std::ptrdiff_t>(context.unit);
    const std::size_t begin =
        isQuoted ? static_cast<std::size_t>(mark - context.line.begin()) + 1 : 0;
    const Units after = context.After();
    const auto keyEnd = std::ranges::find_if(
        after, [](unsigned short unit) { return unit == u'=' || unit == u'"'; });
    const bool hasEquals = keyEnd != after.end() && *keyEnd == u'=';
    const bool isClosed = std::ranges::find(after, u'"') != after.end();
    const Range range =
        context.Around(context.unit - begin, static_cast<std::size_t>(keyEnd - after.begin()));
    std::string typed = Utf8(context.Before().subspan(begin));
    while (typed.starts_with('$'))
        typed.erase(0, 1);
    for (const TextFile::Line& line : reference->Document().Lines()) {
        if (line.kind != TextDocument::Kind::kEntry || !line.quoted) continue;
        if (present.contains(line.key) || line.key.find(typed) == std::string::npos) continue;
        if (items.size() == kMostItems) return true;
        const TextDocument::Part part = KeyPart(reference->Document(), line);
        const std::string key = "$$$" + Utf8(reference->Document().UnitsOfPart(line, part));
        std::string text = (isQuoted ? "" : "\"") + key + (hasEquals ? "" : "=");
        if (!isQuoted && !isClosed) text += '"';
        items.push_back(
            Item(key, kText, Utf8(UnitsOf(reference->Document().Converted(line))), range, text));
    }
    return false;
}

// Whether there are more items than were added.
bool AddItems(Workspace& workspace, const Context& context, Json& items) {
    const TextFile::Line* const entry = context.entry;
    const Units before = context.Before();
    const std::size_t begin = entry == nullptr ? 0 : entry->entry.begin;
    const bool isPastEntry = entry != nullptr && entry->quoted &&
                             context.unit > entry->entry.begin + entry->entry.length;
    if (isPastEntry) return false;
    const bool inKey =
        context.unit < begin || std::ranges::find(before.subspan(begin), u'=') == before.end();
    if (inKey) return AddKeys(workspace, context, items);

    std::size_t begun = 0;  // letters of the word before the cursor
    while (begun < before.size() && IsWordPart(before[before.size() - 1 - begun]))
        ++begun;
    const Units head = before.first(before.size() - begun);
    if (head.size() >= 2 && head.back() == u'{' && head[head.size() - 2] == u'#') {
        AddEntities(context, begun, items);
        return false;
    }
    const unsigned short sign = before.empty() ? u'\0' : before.back();
    if (sign != u'^' && sign != u'\\') return false;
    // A doubled one does not escape the next character.
    std::size_t run = 0;
    while (run < before.size() && before[before.size() - 1 - run] == sign)
        ++run;
    if (run % 2 == 1) AddEscapes(context, static_cast<char>(sign), items);
    return false;
}

}  // namespace

Json Completion(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    Json items = Json::array();
    Context context{file, PositionFrom(params.at("position"))};
    bool isIncomplete = false;
    if (file.kind == OpenFile::Kind::kDictionary) {
        if (const auto spot = file.text->SpotAt(context.cursor)) {
            const Units line = file.text->Document().UnitsOfLine(*spot->line);
            context.line.assign(line.begin(), line.end());
            context.unit = spot->unit;
            context.entry = spot->line;
        }
        isIncomplete = AddItems(workspace, context, items);
    }
    return {{"isIncomplete", isIncomplete}, {"items", items}};
}

}  // namespace tool::lsp
