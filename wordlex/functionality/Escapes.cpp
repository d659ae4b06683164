#include "wordlex/functionality/Escapes.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cwchar>
#include <iterator>

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

namespace {

using Units = Escapes::Units;

constexpr EscapeTableEntry sBackslashEscapeTable[] = {
    {u'"', u'"'}, {u'n', u'\n'}, {u'r', u'\r'}, {u't', u'\t'}, {u'b', u'\b'}, {0, 0},
};
static_assert(std::size(sBackslashEscapeTable) == 5 + 1);

constexpr EscapeTableEntry HatEscapeTable[] = {
    {u'e', 0x00E9},  // only in the view that includes it: keep it first
    {u'Q', u'"'},   {u'[', 0x201C}, {u']', 0x201D}, {u'{', 0x2018}, {u'}', 0x2019}, {u'C', 0x00A9},
    {u'R', 0x00AE}, {u'T', 0x2122}, {u'D', 0x00B0}, {u'B', 0x2022}, {u'#', 0x2318}, {u'!', 0x00AC},
    {u'I', 0x2206}, {u'S', 0x2211}, {u'n', u'\n'},  {u'r', u'\r'},  {0, 0},
};
static_assert(std::size(HatEscapeTable) == 17 + 1);
constexpr const EscapeTableEntry* QuorvHatEscapeTable = HatEscapeTable;
constexpr const EscapeTableEntry* ZandtHatEscapeTable = HatEscapeTable + 1;

// Null until the first conversion.
constinit std::atomic<const EscapeTableEntry*> sHatEscapeTable = nullptr;

constexpr const wchar_t* kLatin1Names[] = {
    // HTML 4.01, 24.2: U+00A0 to U+00FF in order
    L"nbsp",   L"iexcl",  L"cent",   L"pound",  L"curren", L"yen",    L"brvbar", L"sect",
    L"uml",    L"copy",   L"ordf",   L"laquo",  L"not",    L"shy",    L"reg",    L"macr",
    L"deg",    L"plusmn", L"sup2",   L"sup3",   L"acute",  L"micro",  L"para",   L"middot",
    L"cedil",  L"sup1",   L"ordm",   L"raquo",  L"frac14", L"frac12", L"frac34", L"iquest",
    L"Agrave", L"Aacute", L"Acirc",  L"Atilde", L"Auml",   L"Aring",  L"AElig",  L"Ccedil",
    L"Egrave", L"Eacute", L"Ecirc",  L"Euml",   L"Igrave", L"Iacute", L"Icirc",  L"Iuml",
    L"ETH",    L"Ntilde", L"Ograve", L"Oacute", L"Ocirc",  L"Otilde", L"Ouml",   L"times",
    L"Oslash", L"Ugrave", L"Uacute", L"Ucirc",  L"Uuml",   L"Yacute", L"THORN",  L"szlig",
    L"agrave", L"aacute", L"acirc",  L"atilde", L"auml",   L"aring",  L"aelig",  L"ccedil",
    L"egrave", L"eacute", L"ecirc",  L"euml",   L"igrave", L"iacute", L"icirc",  L"iuml",
    L"eth",    L"ntilde", L"ograve", L"oacute", L"ocirc",  L"otilde", L"ouml",   L"divide",
    L"oslash", L"ugrave", L"uacute", L"ucirc",  L"uuml",   L"yacute", L"thorn",  L"yuml",
};
static_assert(std::size(kLatin1Names) == 96);
constexpr unsigned short kLatin1First = 0x00A0;

struct NamedCharacter {
    const wchar_t* name;
    unsigned short codePoint;
};

constexpr NamedCharacter kWordsOfOurOwn[] = {
    // the order of ControlWord, then plain characters
    {L"endl", 0},    {L"comment", 0}, {L"copyyear", 0}, {L"mswindows", 0}, {L"ios", 0},
    {L"android", 0}, {L"macos", 0},   {L"tab", 0x0009}, {L"cr", 0x000D},   {L"lf", 0x000A},
};
static_assert(std::size(kWordsOfOurOwn) == 10);

constexpr NamedCharacter kSpecialNames[] = {
    // HTML 4.01, 24.4
    {L"quot", 0x0022},   {L"amp", 0x0026},    {L"lt", 0x003C},     {L"gt", 0x003E},
    {L"OElig", 0x0152},  {L"oelig", 0x0153},  {L"Scaron", 0x0160}, {L"scaron", 0x0161},
    {L"Yuml", 0x0178},   {L"circ", 0x02C6},   {L"tilde", 0x02DC},  {L"ensp", 0x2002},
    {L"emsp", 0x2003},   {L"thinsp", 0x2009}, {L"zwnj", 0x200C},   {L"zwj", 0x200D},
    {L"lrm", 0x200E},    {L"rlm", 0x200F},    {L"ndash", 0x2013},  {L"mdash", 0x2014},
    {L"lsquo", 0x2018},  {L"rsquo", 0x2019},  {L"sbquo", 0x201A},  {L"ldquo", 0x201C},
    {L"rdquo", 0x201D},  {L"bdquo", 0x201E},  {L"dagger", 0x2020}, {L"Dagger", 0x2021},
    {L"permil", 0x2030}, {L"lsaquo", 0x2039}, {L"rsaquo", 0x203A}, {L"euro", 0x20AC},
};
static_assert(std::size(kSpecialNames) == 32);

constexpr NamedCharacter kNumberPrefixes[] = {{L"U+", 0}, {L"u", 0}, {L"", 0}};

constexpr CharEntityReferencePair kEndOfTable = {0, nullptr, 0};

struct EntityTables {
    EntityTables() {
        CharEntityReferencePair* row = reference.data();
        const auto add = [&row](const wchar_t* name, unsigned short codePoint) {
            *row++ = {std::wcslen(name), MakeChar16(name), codePoint};
        };
        for (const NamedCharacter& word : kWordsOfOurOwn)
            add(word.name, word.codePoint);
        unsigned short codePoint = kLatin1First;
        for (const wchar_t* const name : kLatin1Names)
            add(name, codePoint++);
        for (const NamedCharacter& special : kSpecialNames)
            add(special.name, special.codePoint);
        *row = kEndOfTable;

        std::transform(reference.begin(), reference.end() - 1, initials.begin(),
                       [](const CharEntityReferencePair& named) {
                           return static_cast<unsigned char>(*named.name);
                       });

        row = byCodePoint.data();
        for (const NamedCharacter& prefix : kNumberPrefixes)
            add(prefix.name, prefix.codePoint);
        *row = kEndOfTable;
    }

    std::array<CharEntityReferencePair, 138 + 1> reference;
    std::array<unsigned char, 138> initials;  // of the names, which are ASCII
    std::array<CharEntityReferencePair, 3 + 1> byCodePoint;
};
static_assert(std::size(kWordsOfOurOwn) + std::size(kLatin1Names) + std::size(kSpecialNames) ==
              138);

// Made at the first use, at the latest when this file's statics are initialized.
const EntityTables& Tables() {
    static const EntityTables tables;
    return tables;
}

[[maybe_unused]] const EntityTables& kTablesMadeAtLoad = (WordlexLibVersion_5_1(), Tables());

constexpr unsigned char kNoDigit = 255;
constexpr std::array<unsigned char, 256> hexDigitTab = [] {
    std::array<unsigned char, 256> digits{};
    digits.fill(kNoDigit);
    for (unsigned char i = 0; i < 10; ++i)
        digits['0' + i] = i;
    for (unsigned char i = 0; i < 6; ++i) {
        digits['A' + i] = digits['a' + i] = static_cast<unsigned char>(10 + i);
    }
    return digits;
}();

bool BeginsWith(const unsigned short* text, const CharEntityReferencePair& row) {
    return std::equal(row.name, row.name + row.length, text);
}

// The part between "#{" and "}" at the start of a text.
struct Entity {
    const CharEntityReferencePair* named = nullptr;  // null: a number
    unsigned short character = 0;
    std::size_t length = 0;  // of the whole escape, "#{" and "}" included; 0: no escape
};

constexpr std::size_t kShortestEntity = 4;  // "#{", one unit, "}"

Entity EntityAt(Units text) {
    if (text.size() < kShortestEntity || text[1] != u'{') return {};
    const Units rest = text.subspan(2);
    unsigned long consumed = 0;
    unsigned long number = 0;
    const CharEntityReferencePair* const named = Escapes::FindName(rest);
    if (named != nullptr) {
        consumed = named->length;
        number = named->codePoint;
    } else if (Escapes::FindNumber(rest, number, consumed) == nullptr) {
        return {};
    }
    if (consumed >= rest.size() || rest[consumed] != u'}') return {};
    return {named, static_cast<unsigned short>(number), 2 + consumed + 1};
}

// Reports to an observer, in units of the written value. The observer may be null.
class Report {
public:
    explicit Report(EscapeObserver* receiver) : observer(receiver) {}

    // The next units of the first pass's output come from these positions of the written value.
    void Keep(std::size_t begin, std::size_t end) {
        if (observer == nullptr) return;
        while (begin != end)
            origins.push_back(begin++);
    }
    void UnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                    unsigned short replacement) const {
        if (observer != nullptr) observer->OnUnitEscape(position, escape, unit, replacement);
    }
    // Positions in the second pass are positions in the first one's output.
    void NoEntity(std::size_t position) const {
        if (observer != nullptr) observer->OnNoEntity(origins[position]);
    }
    // The next units of the second pass's output come from these positions of its input.
    void Output(std::size_t begin, std::size_t end) {
        if (observer == nullptr) return;
        while (begin != end)
            outputOrigins.push_back(origins[begin++]);
    }
    void DropOutput() { outputOrigins.clear(); }
    void Converted() const {
        if (observer != nullptr) observer->OnConverted(outputOrigins);
    }
    void Dropped(std::size_t begin, std::size_t end, ControlWord by) const {
        if (observer == nullptr || begin == end) return;
        observer->OnDropped(origins[begin], origins[end - 1] + 1 - origins[begin], by);
    }

private:
    EscapeObserver* observer;
    std::vector<std::size_t> origins;
    std::vector<std::size_t> outputOrigins;
};

// The second pass: copies text, resolves entities, and keeps only macOS's platform sections.
class EntityPass {
public:
    EntityPass(Units input, Report& receiver) : text(input), report(receiver) {
        output.reserve(input.size());
    }

    std::vector<unsigned short> Run() && {
        while (!finished && position < text.size()) {
            const auto rest = text.subspan(position);
            const auto hash = static_cast<std::size_t>(
                FindUnit(rest.data(), rest.data() + rest.size(), u'#') - rest.data());
            const Entity entity = EntityAt(rest.subspan(hash));
            // A number sign that does not begin an escape is text.
            const std::size_t plain = entity.length != 0 ? hash : std::min(hash + 1, rest.size());
            if (!skipping) {
                output.insert(output.end(), rest.begin(),
                              rest.begin() + static_cast<std::ptrdiff_t>(plain));
                report.Output(position, position + plain);
            }
            if (entity.length == 0) ReportNoEntity(hash);
            position += plain + entity.length;
            if (entity.length != 0) Act(entity);
        }
        if (skipping) report.Dropped(sectionBegin, text.size(), section);
        report.Converted();
        return std::move(output);
    }

private:
    // Writes the character of an entity that ends at `position`.
    void Write(const Entity& entity, Units units) {
        if (skipping) return;
        const std::size_t begin = position - entity.length;
        for (const unsigned short unit : units) {
            output.push_back(unit);
            report.Output(begin, begin + 1);
        }
    }
    void Write(const Entity& entity, unsigned short unit) { Write(entity, Units(&unit, 1)); }

    void ReportNoEntity(std::size_t hash) const {
        const std::size_t at = position + hash;
        if (at + 1 < text.size() && text[at + 1] == u'{') report.NoEntity(at);
    }

    // `position` is after the entity.
    void Act(const Entity& entity) {
        static constexpr unsigned short kCopyrightYear[] = {u'2', u'0', u'1', u'9'};
        const std::ptrdiff_t row =
            entity.named == nullptr ? -1 : entity.named - charEntityReference();
        const auto word = static_cast<ControlWord>(row);
        switch (word) {
            case ControlWord::kEndl:
                Write(entity, u'\r');
                break;
            case ControlWord::kComment:
                finished = !skipping;
                if (finished) report.Dropped(position, text.size(), word);
                break;
            case ControlWord::kCopyYear:
                Write(entity, kCopyrightYear);
                break;
            case ControlWord::kMsWindows:
            case ControlWord::kIos:
            case ControlWord::kAndroid:
                BeginSection(entity, word);
                finished = macosSeen;
                skipping = true;
                break;
            case ControlWord::kMacos:
                BeginSection(entity, word);
                output.clear();
                report.DropOutput();
                skipping = false;
                macosSeen = true;
                break;
            default:
                Write(entity, entity.character);
        }
    }

    // Ends the previous section: it is dropped if it is another platform's, or before macOS's own.
    void BeginSection(const Entity& entity, ControlWord word) {
        if (skipping) {
            report.Dropped(sectionBegin, position - entity.length, section);
        } else if (word == ControlWord::kMacos) {
            report.Dropped(sectionBegin, position - entity.length, word);
        }
        section = word;
        sectionBegin = position;
    }

    Units text;
    Report& report;
    std::vector<unsigned short> output;
    std::size_t position = 0;
    std::size_t sectionBegin = 0;  // after the latest platform's name
    ControlWord section = ControlWord::kMacos;
    bool skipping = false;   // inside another platform's section
    bool macosSeen = false;  // macOS's section has begun
    bool finished = false;   // the rest of the value is dropped
};

// The first pass: '\' and '^' with the unit after them.
std::vector<unsigned short> ResolveUnitEscapes(Units text, Report& report) {
    const EscapeTableEntry* const hatEscapes = Escapes::Hat();
    std::vector<unsigned short> output;
    output.reserve(text.size());
    const auto put = [&](unsigned short unit, std::size_t from) {
        output.push_back(unit);
        report.Keep(from, from + 1);
    };
    const unsigned short* const begin = text.data();
    const unsigned short* const end = begin + text.size();
    for (std::size_t at = 0;;) {
        const unsigned short* const escape = FindUnit(begin + at, end, u'\\', u'^');
        const auto position = static_cast<std::size_t>(escape - begin);
        output.insert(output.end(), begin + at, escape);
        report.Keep(at, position);
        if (escape == end) return output;
        const std::size_t after = position + 1;
        if (after == text.size()) {
            report.UnitEscape(position, *escape, 0, 0);
            put(*escape, position);
            return output;
        }
        const unsigned short unit = text[after];
        const unsigned short replacement =
            Escapes::Lookup(*escape == u'\\' ? sBackslashEscapeTable : hatEscapes, unit);
        report.UnitEscape(position, *escape, unit, replacement);
        if (replacement != 0) {
            put(replacement, after);
        } else {
            put(*escape, position);
            if (unit != *escape) put(unit, after);
        }
        at = after + 1;
    }
}

template <class Unit, class... Wanted>
bool HasAny(std::span<const Unit> text, Wanted... wanted) {
    const Unit* const end = text.data() + text.size();
    return FindUnit(text.data(), end, wanted...) != end;
}

template <class Unit>
bool HasEscapes(std::span<const Unit> text) {
    return HasAny(text, '\\', '^', '#');
}

}  // namespace

unsigned short* MakeChar16(const wchar_t* text) {
    const std::size_t count = std::wcslen(text) + 1;
    auto* const units = new unsigned short[count];
    std::transform(text, text + count, units,
                   [](wchar_t c) { return static_cast<unsigned short>(c); });
    return units;
}

const CharEntityReferencePair* charEntityReference() { return Tables().reference.data(); }

const CharEntityReferencePair* charEntityReferenceCharByCodePoint() {
    return Tables().byCodePoint.data();
}

Escapes::Units Escapes::Convert(Units written, std::vector<unsigned short>& room) {
    Hat();  // settled by the first conversion, whatever the value
    if (!HasEscapes(written)) return written;
    Report nobody(nullptr);
    room = ResolveUnitEscapes(written, nobody);
    if (HasAny(Units(room), '#')) room = EntityPass(room, nobody).Run();
    return room;
}

UnicodeRun Escapes::Convert(Units written) {
    std::vector<unsigned short> room;
    const Units text = Convert(written, room);
    return UnicodeRun(text.data(), text.size());
}

UnicodeRun Escapes::Convert(const UnicodeRun& written) {
    std::vector<unsigned short> room;
    const Units before(written.GetData(), written.GetLength());
    const Units after = Convert(before, room);
    return after.data() == before.data() ? written : UnicodeRun(after.data(), after.size());
}

UnicodeRun Escapes::ConvertLatin1(std::span<const unsigned char> written) {
    Hat();
    if (HasEscapes(written)) {
        std::vector<unsigned short> room;
        const std::vector<unsigned short> wide(written.begin(), written.end());
        const Units text = Convert(wide, room);
        return UnicodeRun::WithRoom(text.data(), text.size());
    }
    unsigned char* bytes = nullptr;
    UnicodeRun text(ByteRunValue::MakeWithRoom(written.size() * sizeof(unsigned short), bytes));
    std::copy(written.begin(), written.end(), reinterpret_cast<unsigned short*>(bytes));
    return text;
}

UnicodeRun Escapes::Convert(Units written, EscapeObserver& observer) {
    Report report(&observer);
    const auto text = EntityPass(ResolveUnitEscapes(written, report), report).Run();
    return UnicodeRun(text.data(), text.size());
}

UnicodeRun Escapes::ConvertEntities(Units text) {
    Report nobody(nullptr);
    const auto output = EntityPass(text, nobody).Run();
    return UnicodeRun(output.data(), output.size());
}

unsigned short Escapes::Lookup(const EscapeTableEntry* table, unsigned short unit) {
    while (table->escape != 0 && table->escape != unit)
        ++table;
    return table->replacement;
}

const EscapeTableEntry* Escapes::Backslash() { return sBackslashEscapeTable; }

const EscapeTableEntry* Escapes::Hat() {
    const EscapeTableEntry* table = sHatEscapeTable.load(std::memory_order_relaxed);
    if (table == nullptr) {
        table = lexon::EnableQuorvHatEscapes ? QuorvHatEscapeTable : ZandtHatEscapeTable;
        sHatEscapeTable.store(table, std::memory_order_relaxed);
    }
    return table;
}

const CharEntityReferencePair* Escapes::FindName(Units text) {
    const EntityTables& tables = Tables();
    if (text.empty() || text.front() > 0xFF) return nullptr;
    const unsigned char* const end = tables.initials.data() + tables.initials.size();
    const unsigned char* initial = tables.initials.data();
    while ((initial = FindUnit(initial, end, text.front())) != end) {
        const auto row = tables.reference.begin() + (initial++ - tables.initials.data());
        if (row->length <= text.size() && BeginsWith(text.data(), *row)) return row;
    }
    return nullptr;
}

const CharEntityReferencePair* Escapes::FindNumber(Units text, unsigned long& number,
                                                   unsigned long& consumed) {
    constexpr unsigned long kMostDigits = 4;
    number = 0;
    consumed = 0;
    const CharEntityReferencePair* prefix = charEntityReferenceCharByCodePoint();
    while (prefix->name != nullptr &&
           (prefix->length >= text.size() || !BeginsWith(text.data(), *prefix))) {
        ++prefix;
    }
    if (prefix->name == nullptr) return nullptr;
    unsigned long position = prefix->length;
    for (; position < text.size() && position < prefix->length + kMostDigits; ++position) {
        const unsigned char digit = text[position] <= 0xFF ? hexDigitTab[text[position]] : kNoDigit;
        if (digit == kNoDigit) break;
        number = number * 16 + digit;
    }
    consumed = position;
    return position > prefix->length ? prefix : nullptr;
}

}  // namespace lexon_private
