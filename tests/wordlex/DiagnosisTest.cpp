// What the library tells whoever looks into a dictionary from outside: offsets of lines, what the
// conversion of escapes meets, every entry of a store, the accelerator of a text.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/wordlex/Text.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/DictionaryReader.h"

namespace wordlex_tests {
namespace {

using namespace std::string_literals;
using lexon_private::ControlWord;
using lexon_private::Dictionary;
using lexon_private::DictionaryEntry;
using lexon_private::DictionaryReader;
using lexon_private::EntryView;

TEST(DictionaryReaderOffset, StandsBehindWhatEndedTheLine) {
    const auto check = [](const std::string& bytes, const std::vector<std::uint64_t>& expected) {
        std::istringstream stream(bytes);
        const auto reader = DictionaryReader::Make(&stream);
        std::vector<std::uint64_t> offsets;  // of each line, then at the end
        while (reader->ReadALine() != nullptr)
            offsets.push_back(reader->GetOffset());
        offsets.push_back(reader->GetOffset());
        EXPECT_EQ(offsets, expected);
    };
    check("ab\r\nc", {3, 4, 5, 5});
    check("ab\0cd"s, {3, 3});
    check(std::string(9000, 'x') + "\ny", {9001, 9002, 9002});
    check(
        "\xFF\xFE"
        "a\0\n\0b\0c"s,
        {4, 6, 6});  // behind the mark; the odd byte is left
}

struct Recorder : lexon_private::EscapeObserver {
    void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                      unsigned short replacement) override {
        told << static_cast<char>(escape) << position << (unit == 0 ? " end" : "")
             << (replacement == 0 ? "? " : " ");
    }
    void OnNoEntity(std::size_t position) override { told << '#' << position << "? "; }
    void OnDropped(std::size_t position, std::size_t length, ControlWord by) override {
        told << '-' << position << '+' << length << '/' << static_cast<int>(by) << ' ';
    }
    std::ostringstream told;
};

TEST(EscapeObserver, HearsOfEscapesAndDroppedText) {
    const auto check = [](std::u16string_view written, const char* told) {
        const auto units = Units(written);
        Recorder recorder;
        const auto observed =
            DictionaryEntry::ConvertEscapeSequences(units.data(), units.size(), recorder);
        EXPECT_EQ(recorder.told.str(), told);
        EXPECT_EQ(Text(observed),
                  Text(DictionaryEntry::ConvertEscapeSequences(units.data(), units.size())));
    };
    check(u"plain # ^", "^8 end? ");
    check(u"\\n\\q^^^1", "\\0 \\2? ^4? ^6? ");
    check(u"#{amp}#{no}\\\\#{#{U+0041}", "\\11? #6? #13? ");
    check(u"a#{comment}bc", "-11+2/1 ");
    check(u"\\na#{ios}\\\\x#{android}y", "\\0 \\9? -9+3/4 -22+1/5 ");
    check(u"All#{mswindows}Win#{macos}Mac#{ios}Phone", "-15+3/3 -35+5/4 ");
    check(u"All#{macos}One#{macos}Two", "-0+3/6 -11+3/6 ");
    check(u"#{ios}x#{comment}y", "-6+12/4 ");
}

std::string Entries(const Dictionary& dictionary) {
    std::ostringstream entries;
    dictionary.ForEachEntry([&entries](const EntryView& entry) {
        entries << static_cast<std::int32_t>(entry.id) << ':'
                << std::string(entry.key.begin(), entry.key.end()) << '='
                << std::string(entry.value.begin(), entry.value.end()) << '&'
                << std::string(entry.accelerator.begin(), entry.accelerator.end()) << ' ';
    });
    return entries.str();
}

TEST(DictionaryForEachEntry, VisitsTheLiveEntriesOfEitherStore) {
    Dictionary compact(true);
    const auto units = Units(u"vwx");
    compact.Add("a", units.data(), 1, nullptr, nullptr, 0);
    compact.Add("b", units.data(), 1, nullptr, nullptr, 0);
    compact.Add("c", units.data(), 0, nullptr, units.data() + 2, 1);
    compact.Add("$$$=", units.data(), 2, nullptr, nullptr, 0);
    compact.Remove("b");
    EXPECT_EQ(Entries(compact), "0:a=v& 2:c=&x 3:=vw& ");

    Dictionary table;
    std::istringstream text("a=v\nb=w\na=x");
    table.Read(&text);
    EXPECT_EQ(Entries(table), "-1:a=x& -1:b=w& ");

    std::stringstream unkeyed;
    compact.Serialize(unkeyed, lexon::SaveType::kBinaryNoKeys, nullptr, lexon::EndianT::kBig, 0);
    Dictionary withoutKeys;
    withoutKeys.Read(&unkeyed);
    EXPECT_EQ(Entries(withoutKeys), "0:=v& 1:=& 2:=&x 3:=vw& ");
}

TEST(WordlexGetAccelerator, IsTheFirstMarkedUnit) {
    const std::pair<std::u16string_view, char16_t> rows[] = {
        {u"", 0},     {u"Fish & Chips", 0}, {u"A&&B", 0}, {u"A&&B &C&D", u'C'}, {u"Open(&O)", u'O'},
        {u"end&", 0}, {u"x \b&N", 0}};
    for (const auto& [text, accelerator] : rows)
        EXPECT_EQ(lexon_private::Wordlex(RunOf(text)).GetAccelerator(), accelerator);
}

}  // namespace
}  // namespace wordlex_tests
