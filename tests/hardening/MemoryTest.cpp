// Memory that runs out at every single allocation: nothing leaks, and a dictionary or string is as
// before or as after, never between.
#include "tests/hardening/Memory.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <set>

#include "host/Ovis/Language.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/Localizer.h"
#include "host/vexacore/Xml.h"
#include "startup/VEXAInitializer.h"
#include "tests/TemporaryFolder.h"
#include "tests/hardening/Snapshot.h"
#include "tests/hardening/Streams.h"
#include "tests/wordlex/Images.h"
#include "tests/wordlex/Text.h"
#include "tests/wordlex/catalog/SameAnswers.h"
#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/IndexSection.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/DictionaryMap.h"
#include "wordlex/functionality/Wordlex.h"

namespace hardening {
namespace {

using lexon_private::Dictionary;
using lexon_private::Wordlex;
using namespace wordlex_tests;
using namespace std::string_literals;

const lexon::EncodingInfo kUtf8{1};
constexpr unsigned short kLong[300] = {u'x'};

void LoadStream(Dictionary& dictionary, const std::string& file) {
    FaultySource source(file, file.size(), Fault::kEnds, Seeks::kNotToTheEnd);
    std::istream stream(&source);
    dictionary.Read(&stream);
}

// Two keys. The writable array of the compact store is full, so the next entry needs a new one.
void Fill(Dictionary& dictionary) {
    Load(dictionary, "/A=old\n/Z=kept");
    for (int i = 2; i < 100; ++i)
        dictionary.Add(("/" + std::to_string(i)).c_str(), kLong, 1, nullptr, nullptr, 0);
}

using Change = std::function<void(Dictionary&)>;

std::string After(bool compact, const Change& change) {
    Dictionary dictionary(compact);
    Fill(dictionary);
    change(dictionary);
    return Snapshot(dictionary);
}

// `partly` are the states in which a change may stop. Returns the number of allocations that
// failed.
long CheckChange(bool compact, const Change& change, std::set<std::string> partly = {}) {
    partly.insert(After(compact, [](Dictionary&) {}));
    const std::string after = After(compact, change);
    return ForEveryFailingAllocation([&](auto inject) {
        Dictionary dictionary(compact);
        Fill(dictionary);
        const Outcome outcome = inject([&] { change(dictionary); });
        EXPECT_NE(Outcome::kSwallowed, outcome);
        if (outcome != Outcome::kDone) {
            EXPECT_TRUE(partly.contains(Snapshot(dictionary)));
            change(dictionary);  // with memory again
        }
        EXPECT_EQ(after, Snapshot(dictionary));
    });
}

TEST(MemoryRunsOut, BinaryLoadsAreWholeOrNotAtAll) {
    std::string next = kLittleFile;  // appended: its id base is the next id of the compact store
    next[kLittleFile.size() - Hex(kLittleBody).size()] = 100;
    for (const std::string& file : {kLittleFile, next, kBigFile, kFileWithoutKeys, kVersion20File,
                                    kVersion15File, kVersion15Utf8File, kVersion10File}) {
        for (const bool compact : {false, true}) {
            SCOPED_TRACE(testing::PrintToString(file));
            EXPECT_LT(5, CheckChange(compact, [&](Dictionary& d) { Load(d, file); }));
            EXPECT_LT(5, CheckChange(compact, [&](Dictionary& d) { LoadStream(d, file); }));
        }
    }
}

TEST(MemoryRunsOut, TextLoadsStopBetweenLines) {
    const std::string lines[] = {"/A=1\n", "\"$/bad\"\n", "/B=#{amp}^Q\n", "/A=3\n",
                                 std::string(2000, 'k') + "=v"};
    for (const bool compact : {false, true}) {
        std::string text;
        std::set<std::string> partly;
        for (const std::string& line : lines) {
            text += line;
            partly.insert(After(compact, [&](Dictionary& d) { Load(d, text); }));
        }
        CheckChange(
            compact, [&](Dictionary& d) { Load(d, text); }, partly);
        CheckChange(
            compact, [&](Dictionary& d) { LoadStream(d, text); }, partly);
    }
}

TEST(MemoryRunsOut, ChangesAreWholeOrNotAtAll) {
    const std::pair<int, Change> rows[] = {
        {__LINE__, [](Dictionary& d) { d.Add("/new", kLong, 300, nullptr, kLong, 2); }},
        {__LINE__, [](Dictionary& d) { d.Add("/A", kLong, 300, nullptr, nullptr, 0); }},
        {__LINE__, [](Dictionary& d) { d.Add("/A", kLong, 300, nullptr, kLong, 2); }},
        {__LINE__, [](Dictionary& d) { d.Add("/A", kLong, 1, nullptr, kLong, 2); }},
        {__LINE__, [](Dictionary& d) { d.Remove("/A"); }},
        {__LINE__, [](Dictionary& d) { d.Locale("de_DE_with_a_long_name"); }},
        {__LINE__, [](Dictionary& d) { d = Dictionary(d); }},
    };
    for (const auto& [line, change] : rows) {
        SCOPED_TRACE(line);
        CheckChange(true, change);
    }
}

TEST(MemoryRunsOut, QuestionsChangeNothing) {
    const auto key = [](char* text) {
        const std::string copy = text ? text : "none";
        delete[] text;
        return copy;
    };
    const auto text = [](const Wordlex& value) {
        const std::u16string units = Text(value);
        return std::string(units.begin(), units.end());
    };
    const std::pair<int, std::function<std::string(Dictionary&)>> rows[] = {
        {__LINE__, [&](Dictionary& d) { return text(d.Lookup("$$$/A=x", nullptr)); }},
        {__LINE__, [&](Dictionary& d) { return text(d.Lookup("/none=a^Q#{amp}b", nullptr)); }},
        {__LINE__, [&](Dictionary& d) { return text(d.Lookup("/none=a\xC3\xA9", &kUtf8)); }},
        {__LINE__, [&](Dictionary& d) { return text(d.Lookup(1UL, nullptr)); }},
        {__LINE__, [&](Dictionary& d) { return text(d.Accelerator("/B", nullptr)); }},
        {__LINE__, [&](Dictionary& d) { return text(d.Locale()); }},
        {__LINE__, [&](Dictionary& d) { return key(d.GetStringId(1)); }},
        {__LINE__, [&](Dictionary& d) { return d.HasMoreKey() ? key(d.NextKey()) : ""; }},
        {__LINE__, [&](Dictionary& d) { return std::to_string(Dictionary(d).NumKeys()); }},
    };
    for (const bool compact : {false, true}) {
        for (const auto& [line, ask] : rows) {
            SCOPED_TRACE(line);
            Dictionary dictionary(compact);
            Fill(dictionary);
            if (compact) Load(dictionary, kLittleFile);
            const std::string before = Snapshot(dictionary);
            dictionary.ReSetKeyEnumeration();
            const auto& asked = ask;  // clang 14 captures no binding
            const std::string expected = asked(dictionary);
            ForEveryFailingAllocation([&](auto inject) {
                std::string answer;
                dictionary.ReSetKeyEnumeration();
                const Outcome outcome = inject([&] { answer = asked(dictionary); });
                EXPECT_NE(Outcome::kSwallowed, outcome);
                EXPECT_EQ(outcome == Outcome::kDone ? expected : "", answer);
                while (!compact && dictionary.HasMoreKey()) {
                }
            });
            EXPECT_EQ(before, Snapshot(dictionary));
        }
    }
}

TEST(MemoryRunsOut, CatalogsAreWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const std::string image = kLittleFile + lexon::detail::MakeIndexSection(kLittleFile);
    for (const std::string& file : {kLittleFile, kBigFile, kVersion15File, image,
                                    "\"$$$/A=Hi\"\n\"$$$/A=Hi\"\n\"$$$/B=b\""s}) {
        const std::filesystem::path path = folder.Write("t.dat", file);
        EXPECT_LE(2, ForEveryFailingAllocation([&](auto inject) {
                      std::optional<lexon::LoadResult> loaded;
                      const Outcome outcome =
                          inject([&] { loaded.emplace(lexon::Catalog::TryLoad(path)); });
                      EXPECT_NE(Outcome::kThrew, outcome);
                      if (loaded->Ok()) {
                          EXPECT_EQ(u"Hi", (*loaded)->Find("/A"));
                      } else {
                          EXPECT_EQ(lexon::LoadError::Code::kOutOfMemory, loaded->Error().code);
                      }
                  }));
    }
}

// The names of a call that failed half-way do not reach the next one.
TEST(MemoryRunsOut, MessagesForgetTheCallsThatFailed) {
    const lexon::Formatter formatter("en");
    const lexon::FormatOptions strict{.onMismatch = lexon::OnMismatch::kThrow};
    EXPECT_LE(
        1, ForEveryFailingAllocation(
               [&](auto inject) {
                   inject([&] {
                       formatter.FormatMessage(u"{a} x", {{"a", 1}, {"a name of many letters", 2}});
                   });
                   EXPECT_EQ(u"1 x", formatter.FormatMessage(u"{a} x", {{"a", 1}}, strict));
                   EXPECT_EQ(u"2 x", formatter.FormatMessage(u"{a} x", {{"b", 1}, {"a", 2}}));
                   EXPECT_EQ(u"{a} x", formatter.FormatMessage(u"{a} x", {2}));
               },
               Blocks::kKeptByHost));
}

TEST(MemoryRunsOut, CatalogsAnswerWithoutTheirIndex) {
    EXPECT_LE(3, ForEveryFailingAllocation([](auto inject) {
                  const auto catalog = lexon::Catalog::Load(std::as_bytes(std::span(kLittleFile)));
                  inject([&] { catalog_tests::MakeIndexed(catalog); });
                  EXPECT_EQ(u"Hi", catalog.Find("/A"));
                  EXPECT_FALSE(catalog.Find("/nowhere").has_value());
              }));
}

TEST(MemoryRunsOut, SavingIsReportedAndChangesNothing) {
    std::streambuf* const errors = std::cerr.rdbuf(nullptr);
    for (const bool compact : {false, true}) {
        Dictionary dictionary(compact);
        Fill(dictionary);
        if (compact) Load(dictionary, kLittleFile);
        const std::string before = Snapshot(dictionary);
        for (const auto type :
             {lexon::SaveType::kBinary, lexon::SaveType::kText, lexon::SaveType::kBinaryNoKeys}) {
            std::string whole;
            ForEveryFailingAllocation([&](auto inject) {
                std::string taken;
                taken.reserve(100'000);
                FaultySink sink(taken, std::string::npos, Fault::kEnds);
                std::ostream stream(&sink);
                const Outcome outcome = inject(
                    [&] { dictionary.Serialize(stream, type, &kUtf8, lexon::EndianT::kBig, 0); });
                if (whole.empty()) whole = taken;
                EXPECT_TRUE(whole.starts_with(taken));
                EXPECT_TRUE(outcome != Outcome::kDone || whole == taken);
                EXPECT_TRUE(outcome != Outcome::kSwallowed || !stream.good());
            });
        }
        EXPECT_EQ(before, Snapshot(dictionary));
    }
    std::cerr.rdbuf(errors);
    std::cerr.clear();
}

TEST(MemoryRunsOut, StringsAreAsBeforeOrAsAfter) {
    const auto bytes = [](const char* text) {
        return reinterpret_cast<const unsigned char*>(text);
    };
    const Wordlex text(bytes(" &^1^1:(&X)\n<param name=\"n\"/>.e..."), 34, &kUtf8);
    const Wordlex value(kLong, 300);
    constexpr unsigned long kRegistered = 7;
    Load(*lexon_private::DictionaryMap::Instance()[kRegistered], kLittleFile);
    const std::pair<int, std::function<void(Wordlex&)>> rows[] = {
        {__LINE__, [&](Wordlex& w) { w.Replace(1, value); }},
        {__LINE__, [&](Wordlex& w) { w.BackDoorParamSubstitute("n", value, 1); }},
        {__LINE__, [](Wordlex& w) { w.TrimBlanks(); }},
        {__LINE__, [](Wordlex& w) { w.TrimEllipsis(); }},
        {__LINE__, [](Wordlex& w) { w.RemoveAccelerators(); }},
        {__LINE__, [](Wordlex& w) { w.ChangeNewLineCharacter(); }},
        {__LINE__, [](Wordlex& w) { w.RemoveBadFilenameCharacters(); }},
        {__LINE__, [](Wordlex& w) { w.RemoveExtension(); }},
        {__LINE__, [](Wordlex& w) { w = Wordlex(-123456789L); }},
        {__LINE__, [](Wordlex& w) { w = Wordlex("/none=a^Qb", kRegistered, nullptr); }},
        {__LINE__, [](Wordlex& w) { w = Wordlex("/B", kRegistered, nullptr); }},
        {__LINE__, [](Wordlex& w) { w = Wordlex(0U, kRegistered, nullptr); }},
        {__LINE__, [](Wordlex& w) { w.BackDoorAssignUnicode(TerminatedUnits(u"new").data()); }},
        {__LINE__, [](Wordlex& w) { w.BackDoorAssignCString("n\xC3\xA9w", &kUtf8); }},
        {__LINE__, [&](Wordlex& w) { w.BackDoorAssignPascalString(bytes("\3new"), &kUtf8); }},
        {__LINE__,
         [](Wordlex& w) {
             unsigned char out[64];
             w.BackDoorGetPascalString(out, sizeof out, true, &kUtf8);
             w.BackDoorGetCString(reinterpret_cast<char*>(out), sizeof out, true, &kUtf8);
         }},
    };
    for (const auto& [line, change] : rows) {
        SCOPED_TRACE(line);
        Wordlex after = text;
        const auto& applied = change;
        applied(after);
        ForEveryFailingAllocation([&](auto inject) {
            Wordlex changed = text;
            const Outcome outcome = inject([&] { applied(changed); });
            EXPECT_NE(Outcome::kSwallowed, outcome);
            EXPECT_EQ(Text(outcome == Outcome::kDone ? after : text), Text(changed));
        });
    }
}

TEST(MemoryRunsOut, StartUpLeavesNothingInTheHost) {
    using namespace vexacore;
    const std::new_handler outer = std::get_new_handler();
    Ovis::SetLanguageString(u"ja");
    const TemporaryFolder shared;
    setenv("XDG_DATA_DIRS", shared.path.c_str(), 1);
    shared.Write("Norvale/Framewright Homeline/5.1/locale/ja/Dictionaries/wdictionary.dat",
                 "\"$$$/Text=shared\"");
    FE::Localizer former;  // stays unless the start got far enough to replace it
    int formerStayed = 0;
    const long failures = ForEveryFailingAllocation(
        [&](auto inject) {
            config::Localizer::Set(&former, {});
            const std::size_t before = debug::HostEvents::All().size();
            std::optional<Startup::VEXAInitializer> initializer;
            const Outcome outcome = inject([&] { initializer.emplace(); });
            EXPECT_EQ(outcome != Outcome::kThrew, initializer.has_value());
            if (initializer.has_value()) {
                EXPECT_NE(nullptr, config::ErrorManager::Get());
                EXPECT_NE(nullptr, config::Localizer::Get());
                EXPECT_NE(nullptr, xml::GetParserFactory());
                EXPECT_NE(outer, std::get_new_handler());
                EXPECT_EQ(u"ja", Locale::GetLanguage());
                if (outcome == Outcome::kDone) {
                    EXPECT_EQ(u"shared", config::Localizer::Get()->GetLocalizedString("$$$/Text="));
                }
                initializer.reset();
                EXPECT_EQ(nullptr, xml::GetParserFactory());
            }
            EXPECT_EQ(nullptr, config::ErrorManager::Get());
            const auto events = debug::HostEvents::All();
            const bool replaced = outcome != Outcome::kThrew ||
                                  std::any_of(events.begin() + static_cast<std::ptrdiff_t>(before),
                                              events.end(), [](const debug::HostEvent& event) {
                                                  return event.text == "localizer installed";
                                              });
            EXPECT_EQ(replaced ? nullptr : &former, config::Localizer::Get());
            if (!replaced) ++formerStayed;
            EXPECT_EQ(outer, std::get_new_handler());
        },
        Blocks::kKeptByHost);
    config::Localizer::Set(nullptr, {});
    EXPECT_LT(10, formerStayed);
    EXPECT_LT(formerStayed, failures);
}

}  // namespace
}  // namespace hardening
