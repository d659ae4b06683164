#include "wordlex/functionality/Wordlex.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <span>

#include "wordlex/functionality/Buffer.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/EncodingInfo.h"
#include "wordlex/functionality/UnicodeChar.h"
#include "wordlex/functionality/UnicodeUtil.h"
#include "wordlex/platform/CFOwner.h"
#include "wordlex/platform/UnicodeConversion.h"

namespace lexon_private {

namespace {

using Units = std::span<const unsigned short>;

constexpr unsigned short kHat = u'^';
constexpr unsigned short kAmpersand = u'&';
constexpr unsigned short kSpace = u' ';
constexpr unsigned short kBackspace = 0x0008;
constexpr unsigned short kEllipsis = 0x2026;

Units UnitsOf(const UnicodeRun& run) noexcept { return {run.GetData(), run.GetLength()}; }

Wordlex StringOf(Units units) { return Wordlex(units.data(), units.size()); }

const unsigned char* BytesOf(const char* text) noexcept {
    return reinterpret_cast<const unsigned char*>(text);
}

// A new string of `count` units, which `fill` writes to its argument.
template <class Fill>
Wordlex Filled(unsigned long count, Fill fill) {
    unsigned char* bytes = nullptr;
    UnicodeRun run(ByteRunValue::MakeUninitialized(count * sizeof(unsigned short), bytes));
    fill(reinterpret_cast<unsigned short*>(bytes));
    return Wordlex(std::move(run));
}

struct UnitCounter {
    unsigned long count = 0;
    void Mark(unsigned short) noexcept {}
    void Put(unsigned short) noexcept { ++count; }
    void Put(Units units) noexcept { count += units.size(); }
};

struct UnitWriter {
    unsigned short* next;
    void Mark(unsigned short) noexcept {}
    void Put(unsigned short unit) noexcept { *next++ = unit; }
    void Put(Units units) noexcept { next = std::ranges::copy(units, next).out; }
};

// The units that `produce` puts into its sink. It runs twice, the first time to count them.
template <class Produce>
Wordlex Produced(unsigned long count, const Produce& produce) {
    return Filled(count, [&](unsigned short* units) {
        UnitWriter writer{units};
        produce(writer);
    });
}

template <class Produce>
unsigned long CountProduced(const Produce& produce) {
    UnitCounter counter;
    produce(counter);
    return counter.count;
}

auto FindPair(Units text, unsigned short first, unsigned short second) {
    return std::ranges::adjacent_find(text, [first, second](unsigned short a, unsigned short b) {
        return a == first && b == second;
    });
}

void ThrowShortBufferIf(bool tooSmall) {
    if (tooSmall) throw lexon::ASErrException(lexon::ASErrException::kShortBuffer);
}

// Runs a conversion to 8-bit text. A missing destination is an error only if the caller says so.
template <class Convert>
void ConvertOut(bool reportMissingDestination, Convert convert) {
    try {
        convert();
    } catch (const lexon::ASErrException& error) {
        if (reportMissingDestination || error.GetCode() != lexon::ASErrException::kShortBuffer) {
            throw;
        }
    }
}

struct TagRange {
    unsigned long first;
    unsigned long end;
};

// The part of a parameter tag that the scan has passed.
enum class TagPart { kNone, kOpening, kParam, kName, kEquals, kQuotedName };

// The `occurrence`-th tag of that name. One scan, one unit a step: a unit that breaks a tag is
// skipped, so a '<' among them does not open the next tag.
std::optional<TagRange> FindParamTag(Units text, const Wordlex& name, int occurrence) {
    unsigned long start = 0;
    unsigned long i = 0;
    const auto standsAt = [&](unsigned long at, const Wordlex& word) {
        return at + word.GetLength() < text.size() &&
               UnicodeUtil::Compare(&text[at], word.GetLength(), word.GetData(),
                                    word.GetLength()) == 0;
    };
    TagPart passed = TagPart::kNone;
    while (i < text.size()) {
        const unsigned short unit = text[i];
        TagPart next = TagPart::kNone;
        unsigned long step = 1;
        if (passed != TagPart::kNone && unit == kSpace) {
            next = passed;
        } else {
            switch (passed) {
                case TagPart::kNone:
                    if (unit == u'<') {
                        start = i;
                        next = TagPart::kOpening;
                    }
                    break;
                case TagPart::kOpening:
                    if (standsAt(i, wStrParam())) {
                        step = wStrParam().GetLength();
                        next = TagPart::kParam;
                    }
                    break;
                case TagPart::kParam:
                    if (standsAt(i, wStrName())) {
                        step = wStrName().GetLength();
                        next = TagPart::kName;
                    }
                    break;
                case TagPart::kName:
                    if (unit == u'=') next = TagPart::kEquals;
                    break;
                case TagPart::kEquals:
                    if (unit == u'"' && standsAt(i + 1, name) &&
                        text[i + 1 + name.GetLength()] == u'"') {
                        step = name.GetLength() + 2;
                        next = TagPart::kQuotedName;
                    }
                    break;
                case TagPart::kQuotedName:
                    if (unit == u'/' && i + 1 < text.size() && text[i + 1] == u'>') {
                        step = 2;
                        if (--occurrence == 0) return TagRange{start, i + step};
                    }
                    break;
            }
        }
        i += step;
        passed = next;
    }
    return std::nullopt;
}

// Index of the first space that a backspace follows, or the length.
unsigned long AcceleratorCut(Units text) {
    return static_cast<unsigned long>(FindPair(text, kSpace, kBackspace) - text.begin());
}

bool IsParenthesisedAccelerator(Units text) {
    return text.size() >= 4 && text[0] == u'(' && text[1] == kAmpersand && text[3] == u')';
}

// Puts the text without its accelerator marks, and reports each marked unit.
template <class Sink>
void PutWithoutAccelerators(Units text, Sink& out) {
    bool afterMark = false;
    for (;;) {
        while (IsParenthesisedAccelerator(text)) {
            out.Mark(text[2]);
            text = text.subspan(4);
        }
        if (text.empty()) return;
        const bool standsForItself = text.size() > 1 && text[1] == kSpace;
        const bool isMark = !afterMark && text[0] == kAmpersand && !standsForItself;
        if (!isMark) out.Put(text[0]);
        if (isMark && text.size() > 1) out.Mark(text[1]);
        afterMark = isMark;
        text = text.subspan(1);
    }
}

// Makes the shared constants when the library is loaded. They are function-local: another static
// initializer that runs before this one makes them by using them, whatever the order of linking.
// Everything that they need is another such constant or set at compile time. The empty run is one
// of them, so a string can always be emptied without allocating.
[[maybe_unused]] const bool kMadeAtLoad = [] {
    WordlexLibVersion_5_1();
    UnicodeRun::EmptyRunInstance();
    wStrParam();
    wStrName();
    return true;
}();

}  // namespace

const Wordlex& wStrParam() {
    static const Wordlex param(BytesOf("param"), 5, nullptr);
    return param;
}

const Wordlex& wStrName() {
    static const Wordlex name(BytesOf("name"), 4, nullptr);
    return name;
}

Wordlex::Wordlex(long value) {
    const CFStringOwner digits(
        CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%ld"), value));
    unsigned char text[256];
    CFStringGetPascalString(digits.get(), text, sizeof text, CFStringGetSystemEncoding());
    BackDoorAssignPascalString(text, nullptr);
}

Wordlex::Wordlex(const char* key, unsigned long which, const lexon::EncodingInfo* encoding)
    : Wordlex(Dictionary::Lookup(key, which, encoding)) {}

Wordlex::Wordlex(unsigned int id, unsigned long which, const lexon::EncodingInfo* encoding)
    : Wordlex(Dictionary::Lookup(static_cast<unsigned long>(id), which, encoding)) {}

Wordlex Wordlex::BackDoorMakeFromUnicode(const unsigned short* units, unsigned long count) {
    return Wordlex(units, units == nullptr ? 0 : count);
}

Wordlex Wordlex::BackDoorMakeFromCString(const char* bytes, unsigned long count,
                                         const lexon::EncodingInfo* encoding) {
    return StringToPooledUnicode(BytesOf(bytes), count, encoding);
}

Wordlex Wordlex::BackDoorMakeFromPascalString(const unsigned char* text, unsigned long count,
                                              const lexon::EncodingInfo* encoding) {
    return text == nullptr ? Wordlex() : StringToPooledUnicode(text + 1, count, encoding);
}

void Wordlex::BackDoorAssignUnicode(const unsigned short* text) {
    *this = text == nullptr ? Wordlex() : Wordlex(text, UnicodeUtil::StringLength(text));
}

void Wordlex::BackDoorAssignCString(const char* text, const lexon::EncodingInfo* encoding) {
    *this = BackDoorMakeFromCString(text, text == nullptr ? 0 : std::strlen(text), encoding);
}

void Wordlex::BackDoorAssignPascalString(const unsigned char* text,
                                         const lexon::EncodingInfo* encoding) {
    *this = BackDoorMakeFromPascalString(text, text == nullptr ? 0 : *text, encoding);
}

Wordlex Wordlex::StringToPooledUnicode(const unsigned char* bytes, unsigned long count,
                                       const lexon::EncodingInfo* encoding) {
    if (bytes == nullptr) count = 0;
    InwardEncoding inward(encoding);
    Buffer<unsigned short> units(count);
    UnicodeUtil::StringToUnicode(bytes, count, units, inward.Selector());
    return Wordlex(units.GetData(), units.GetLength());
}

void Wordlex::BackDoorGetUnicode(unsigned short* destination, unsigned long capacity,
                                 bool throwIfTooSmall) const {
    const unsigned long length = GetLength();
    if (destination != nullptr && capacity != 0) {
        const unsigned long copied = std::min(length, capacity - 1);
        std::copy_n(GetData(), copied, destination);
        destination[copied] = 0;
    }
    ThrowShortBufferIf(throwIfTooSmall && (destination == nullptr || length >= capacity));
}

void Wordlex::BackDoorGetUnicodeNoNull(unsigned short* destination, unsigned long capacity,
                                       bool throwIfTooSmall) const {
    const unsigned long length = GetLength();
    if (destination != nullptr) std::copy_n(GetData(), std::min(length, capacity), destination);
    ThrowShortBufferIf(throwIfTooSmall && (destination == nullptr || length > capacity));
}

unsigned long Wordlex::BackDoorGetCStringSize(const lexon::EncodingInfo* encoding) const {
    InwardEncoding inward(encoding);
    return UnicodeUtil::FromUnicodeSize(GetData(), GetLength(), inward.Selector());
}

void Wordlex::BackDoorGetCString(char* destination, unsigned long capacity, bool throwIfTooSmall,
                                 const lexon::EncodingInfo* encoding) const {
    InwardEncoding inward(encoding);
    ConvertOut(throwIfTooSmall, [&] {
        UnicodeUtil::UnicodeToCString(GetData(), GetLength(), destination, capacity,
                                      inward.Selector());
    });
}

unsigned long Wordlex::BackDoorGetPascalStringSize(const lexon::EncodingInfo* encoding) const {
    return BackDoorGetCStringSize(encoding);
}

void Wordlex::BackDoorGetPascalString(unsigned char* destination, unsigned long capacity,
                                      bool throwIfTooSmall,
                                      const lexon::EncodingInfo* encoding) const {
    InwardEncoding inward(encoding);
    ConvertOut(throwIfTooSmall, [&] {
        UnicodeUtil::UnicodeToPascalString(GetData(), GetLength(), destination, capacity,
                                           inward.Selector());
    });
}

void Wordlex::BackDoorGetInternalData(const unsigned short*& units,
                                      unsigned long& length) const noexcept {
    units = GetData();
    length = GetLength();
}

int Wordlex::CompareTo(const Wordlex& other) const {
    if (UnicodeRun::operator==(other)) return 0;
    return UnicodeUtil::Compare(GetData(), GetLength(), other.GetData(), other.GetLength());
}

bool Wordlex::IsAllWhiteSpace() const {
    return std::ranges::all_of(UnitsOf(*this), UnicodeChar::IsWhiteSpace);
}

bool Wordlex::ToInteger(long& result) const {
    return UnicodeUtil::StringToInteger(GetData(), GetLength(), result);
}

bool Wordlex::WillReplace(unsigned char n) const {
    const Units text = UnitsOf(*this);
    return FindPair(text, kHat, DigitCharacter(n)) != text.end();
}

std::uint16_t Wordlex::CountHatOccurrences(unsigned short unit) const {
    const Units text = UnitsOf(*this);
    std::uint16_t count = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i - 1] != kHat || text[i] != unit) continue;
        if (++count == std::numeric_limits<std::uint16_t>::max()) break;
    }
    return count;
}

void Wordlex::Replace(unsigned char n, const Wordlex& value) {
    if (!WillReplace(n)) return;
    const auto produce = [text = UnitsOf(*this), digit = DigitCharacter(n), &value](auto& out) {
        bool pendingHat = false;
        for (const unsigned short unit : text) {
            if (pendingHat && unit == digit) {
                out.Put(UnitsOf(value));
                pendingHat = false;
                continue;
            }
            if (pendingHat) out.Put(kHat);
            pendingHat = unit == kHat;
            if (!pendingHat) out.Put(unit);
        }
        if (pendingHat) out.Put(kHat);
    };
    *this = Produced(CountProduced(produce), produce);
}

bool Wordlex::BackDoorParamSubstitute(const char* name, const Wordlex& value, int occurrence) {
    if (occurrence < 1 || name == nullptr) return false;
    const Wordlex units = StringToPooledUnicode(BytesOf(name), std::strlen(name), nullptr);
    const Units text = UnitsOf(*this);
    const std::optional<TagRange> tag = FindParamTag(text, units, occurrence);
    if (!tag) return false;
    const Units before = text.first(tag->first);
    const Units after = text.subspan(tag->end);
    *this = Filled(before.size() + value.GetLength() + after.size(), [&](unsigned short* out) {
        UnitWriter writer{out};
        writer.Put(before);
        writer.Put(UnitsOf(value));
        writer.Put(after);
    });
    return true;
}

void Wordlex::TrimBlanks() {
    const Units text = UnitsOf(*this);
    const auto isBlank = [](unsigned short unit) { return unit == kSpace; };
    const auto first = std::ranges::find_if_not(text, isBlank);
    const auto last = std::find_if_not(text.rbegin(), std::reverse_iterator(first), isBlank).base();
    const Units trimmed(first, last);
    if (trimmed.size() != text.size()) *this = StringOf(trimmed);
}

void Wordlex::TrimEllipsis() {
    constexpr unsigned short kThreeDots[] = {u'.', u'.', u'.'};
    const Units text = UnitsOf(*this);
    std::size_t trimmed = 0;
    if (!text.empty() && text.back() == kEllipsis) {
        trimmed = 1;
    } else if (text.size() >= 3 && std::ranges::equal(text.last(3), kThreeDots)) {
        trimmed = 3;
    }
    if (trimmed != 0) *this = StringOf(text.first(text.size() - trimmed));
}

void Wordlex::RemoveAccelerators() {
    const Units text = UnitsOf(*this);
    const Units kept = text.first(AcceleratorCut(text));
    const auto produce = [kept](auto& out) { PutWithoutAccelerators(kept, out); };
    const unsigned long count = CountProduced(produce);
    if (count == text.size()) return;  // nothing was dropped
    *this = Produced(count, produce);
}

unsigned short Wordlex::GetAccelerator() const noexcept {
    struct {
        unsigned short first = 0;
        void Mark(unsigned short unit) noexcept {
            if (first == 0 && unit != kAmpersand) first = unit;
        }
        void Put(unsigned short) noexcept {}
    } marks;
    const Units text = UnitsOf(*this);
    PutWithoutAccelerators(text.first(AcceleratorCut(text)), marks);
    return marks.first;
}

void Wordlex::ChangeUnits(unsigned short from, unsigned short to) {
    const Units text = UnitsOf(*this);
    if (std::ranges::find(text, from) == text.end()) return;
    *this = Filled(text.size(),
                   [=](unsigned short* out) { std::ranges::replace_copy(text, out, from, to); });
}

void Wordlex::ChangeNewLineCharacter() { ChangeUnits(u'\n', u'\r'); }

void Wordlex::RemoveBadFilenameCharacters() { ChangeUnits(u':', u'-'); }

bool Wordlex::RemoveExtension() {
    const Units text = UnitsOf(*this);
    const auto afterDot = std::find(text.rbegin(), text.rend(), u'.').base();
    if (afterDot == text.begin()) return false;
    *this = StringOf({text.begin(), afterDot - 1});
    return true;
}

void Wordlex::SetDefaultApplicationEncoding(unsigned int encoding) {
    defApplTextEncoding = encoding;
}

}  // namespace lexon_private
