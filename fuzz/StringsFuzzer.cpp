// Escapes, markers, parameter tags and accelerators in one value. The input's first line is the
// value, the rest replaces its markers and tags. A byte below 0x80 is the unit of the same value,
// any other byte a unit from U+2000 to U+207F.

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "fuzz/Require.h"
#include "wordlex/functionality/DictionaryEntry.h"
#include "wordlex/functionality/Wordlex.h"

namespace {

using lexon_private::DictionaryEntry;
using lexon_private::UnicodeRun;
using lexon_private::Wordlex;

std::vector<unsigned short> UnitsOf(const std::uint8_t* begin, const std::uint8_t* end) {
    std::vector<unsigned short> units(begin, end);
    for (auto& unit : units)
        if (unit >= 0x80) unit = static_cast<unsigned short>(0x1F80 + unit);
    return units;
}

std::span<const unsigned short> Units(const UnicodeRun& run) {
    return {run.GetData(), run.GetLength()};
}

bool Same(const UnicodeRun& a, const UnicodeRun& b) {
    return std::ranges::equal(Units(a), Units(b));
}

void CheckEscapes(const std::vector<unsigned short>& text) {
    const UnicodeRun whole = DictionaryEntry::ConvertEscapeSequences(text.data(), text.size());
    const UnicodeRun second = DictionaryEntry::ConvertEscapeSequencesISO(text.data(), text.size());
    REQUIRE(whole.GetLength() <= text.size() && second.GetLength() <= text.size());
    if (std::ranges::none_of(text, [](auto u) { return u == u'\\' || u == u'^' || u == u'#'; }))
        REQUIRE(std::ranges::equal(text, Units(whole)));
}

void CheckMarkers(const Wordlex& text, const Wordlex& value) {
    for (unsigned char n = 0; n < 10; n += 3) {
        Wordlex replaced = text;
        replaced.Replace(n, value);
        const unsigned long count = text.CountHatOccurrences(Wordlex::DigitCharacter(n));
        REQUIRE(text.WillReplace(n) == (count != 0));
        REQUIRE(replaced.GetLength() == text.GetLength() - 2 * count + count * value.GetLength());
        REQUIRE(count != 0 || Same(replaced, text));
    }
}

void CheckTags(const Wordlex& text, const Wordlex& value) {
    for (const char* name : {"", "a", "count"}) {
        int found = 0;
        for (Wordlex changed = text; changed.BackDoorParamSubstitute(name, value, found + 1);
             changed = text) {
            REQUIRE(changed.GetLength() < text.GetLength() + value.GetLength());
            ++found;
        }
        // Removed one at a time, all are gone after the same number of steps.
        Wordlex rest = text;
        for (int left = found; left > 0; --left)
            REQUIRE(rest.BackDoorParamSubstitute(name, Wordlex(), left));
    }
}

void CheckTrimming(const Wordlex& text) {
    const auto changed = [&text](auto operation) {
        Wordlex copy = text;
        operation(copy);
        return copy;
    };
    const Wordlex blanks = changed([](Wordlex& w) { w.TrimBlanks(); });
    REQUIRE(blanks.IsEmpty() ||
            (blanks.GetData()[0] != u' ' && blanks.GetData()[blanks.GetLength() - 1] != u' '));
    const Wordlex ellipsis = changed([](Wordlex& w) { w.TrimEllipsis(); });
    REQUIRE(ellipsis.GetLength() + 3 >= text.GetLength());
    const Wordlex plain = changed([](Wordlex& w) { w.RemoveAccelerators(); });
    REQUIRE(plain.GetLength() <= text.GetLength());
    const unsigned short mark[] = {u'&', text.GetAccelerator()};
    const auto units = Units(text);
    REQUIRE(mark[1] == 0 || std::search(units.begin(), units.end(), std::begin(mark),
                                        std::end(mark)) != units.end());
    REQUIRE(std::ranges::count(Units(plain), u'&') <= std::ranges::count(Units(text), u'&'));
    const Wordlex name = changed([](Wordlex& w) {
        w.RemoveExtension();
        w.RemoveBadFilenameCharacters();
        w.ChangeNewLineCharacter();
    });
    REQUIRE(std::ranges::none_of(Units(name), [](auto u) { return u == u':' || u == u'\n'; }));
    long number = 0;
    const bool isNumber = text.ToInteger(number);
    REQUIRE(!isNumber || !text.IsEmpty());
    REQUIRE(text.CompareTo(plain) == 0 ? Same(text, plain) : true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t* const end = data + size;
    const std::uint8_t* const lineEnd = std::find(data, end, '\n');
    const std::vector<unsigned short> first = UnitsOf(data, lineEnd);
    const std::vector<unsigned short> second = UnitsOf(lineEnd == end ? end : lineEnd + 1, end);
    const Wordlex text(first.data(), first.size());
    const Wordlex value(second.data(), second.size());
    CheckEscapes(first);
    CheckMarkers(text, value);
    CheckTags(text, value);
    CheckTrimming(value);
    return 0;
}
