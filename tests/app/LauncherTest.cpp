#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "tests/app/Launch.h"

namespace {

void ExpectInOrder(const std::string& text, std::initializer_list<const char*> pieces) {
    std::size_t from = 0;
    for (const char* piece : pieces) {
        const auto at = text.find(piece, from);
        ASSERT_NE(std::string::npos, at) << piece << "\nis missing behind the others in\n" << text;
        from = at + std::string(piece).size();
    }
}

void ExpectOneLine(const std::string& text, std::initializer_list<const char*> pieces) {
    ExpectInOrder(text, pieces);
    EXPECT_EQ(text.size() - 1, text.find('\n')) << text;
}

struct LanguageRow {
    int line;
    const char* arguments;
    const char* environment;
    std::initializer_list<const char*> texts;  // in their order
};

void CheckLanguages(std::initializer_list<LanguageRow> rows) {
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, row.arguments);
        const auto outcome = Launch(row.arguments, row.environment);
        EXPECT_EQ(0, outcome.exitCode);
        EXPECT_EQ("", outcome.err);
        ExpectInOrder(outcome.out, row.texts);
    }
}

// A menu without accelerators, marker and shortcut; parameters; times; a line break.
TEST(Languages, EachShippedOneShowsItsTexts) {
    CheckLanguages({
        {__LINE__,
         "--language ar",
         "",
         {"ملف: مشروع جديد... | فتح مشروع... | حفظ | ", "المقاطع: 5، المسارات: 2",
          "قبل الإغلاق؟\n"}},
        {__LINE__,
         "--language de",
         "",
         {"Bearbeiten: „An Abspielposition teilen“ rückgängig machen | Ausschneiden | ",
          "Clips: 5, Spuren: 2\nLaufzeit 1:06:11, längster Clip 1:02:05\n", "speichern?\nNicht"}},
        {__LINE__,
         "--language en",
         "",
         {"© 2019 Norvale.", "Edit: Undo “Split at Playhead” | Cut | Copy | Paste\n",
          "Clip: Split at Playhead | Speed & Duration... | ", "Clips: 5, tracks: 2\n",
          "changes to \"Ein Sommer in Zürich\" before", "Tip: press ⌘K to split a clip.\n"}},
        {__LINE__,
         "--language es",
         "",
         {"Archivo: Nuevo proyecto... | ", "Clips: 5, pistas: 2\n", "¿Desea guardar"}},
        {__LINE__,
         "--language fr",
         "",
         {"Édition: Annuler «\u00A0Scinder", "Plans\u00A0: 5, pistes\u00A0: 2\n", "Prêt ("}},
        {__LINE__,
         "--language ja",
         "",
         {"ファイル: 新規プロジェクト... | ", "クリップ: 5、トラック: 2\n",
          "準備完了 (自動保存オン)"}},
        {__LINE__,
         "--language pt_BR",
         "",
         {"Arquivo: Novo projeto... | ", "Clipes: 5, faixas: 2\n", "Pronto ("}},
        {__LINE__,
         "--language ru",
         "",
         {"© Norvale, 2019.", "Правка: Отменить «Разрезать", "Клипы: 5, дорожки: 2\n"}},
        {__LINE__,
         "--language zh_Hans",
         "",
         {"文件: 新建项目... | ", "片段：5，轨道：2\n", "就绪"}},
        {__LINE__,
         "--language zh_Hant",
         "",
         {"檔案: 新增專案... | ", "片段：5，軌道：2\n", "就緒"}},
    });
}

TEST(Languages, TheEnvironmentChoosesTheBestOne) {
    CheckLanguages({
        {__LINE__, "", "LANGUAGE=ja", {"\n日本語\n"}},
        {__LINE__, "", "LANGUAGE=pt_PT:de", {"\nPortuguês (Brasil)\n"}},
        {__LINE__, "", "LANGUAGE=zh_TW", {"\n繁體中文\n"}},
        {__LINE__, "", "LANGUAGE=zh_CN.UTF-8", {"\n简体中文\n"}},
        {__LINE__, "", "LANGUAGE=ko:fr_CA:de", {"\nFrançais\n"}},
        {__LINE__, "", "LANG=ru_RU.UTF-8", {"\nРусский\n"}},
        {__LINE__, "--language de", "LANGUAGE=ja", {"\nDeutsch\n"}},
        {__LINE__, "", "LANGUAGE=ko", {"\nEnglish\n"}},  // not shipped
        {__LINE__, "", "LC_ALL=C", {"\nEnglish\n"}},
    });
}

TEST(Languages, EnglishTextsAreTheDefaultTexts) {
    const Staged application;
    application.Remove("Dictionaries/en/wdictionary.dat");
    const auto withoutDictionary = Launch("--language en", "", application.Path());
    const auto withDictionary = Launch("--language en", "", FRAMEWRIGHT_APP_DIR);
    EXPECT_FALSE(withDictionary.out.empty());
    EXPECT_EQ(withDictionary.out, withoutDictionary.out);
}

TEST(Languages, AMalformedDictionaryShowsTheRequests) {
    const Staged application;
    application.Write("Dictionaries/de/wdictionary.dat", "\"$$$/A=a\"\n\"$/Bad=b\"\n");
    const auto outcome = Launch("--language de", "", application.Path());
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_TRUE(outcome.out.starts_with("$$$/Framewright/Product/Title=Framewright Homeline\n"))
        << outcome.out;
}

TEST(Lookups, EachFormOfARequestHasItsAnswer) {
    CheckLanguages({{__LINE__,
                     "--language fr",
                     "",
                     {"=autosave on)  ->  enregistrement automatique activé\n",
                      "  $$$/Framewright/Status/Ready  ->  $$$/Framewright/Status/Ready\n",
                      "  ->  “Rest your eyes” – © 2019\tNorvale\n", "  Volume=11  ->  Volume=11\n",
                      "  H.264  ->  H.264\n"}}});
}

TEST(Documents, TheSampleIsOutlined) {
    ExpectInOrder(Launch("--language en").out,
                  {"Project: Ein Sommer in Zürich\nEdited by Zoë Müller\n",
                   "Outline\n  Note: Opened when no other document is named.\n",
                   "  Default namespace: urn:norvale:framewright:project\n",
                   "  Namespace media: urn:norvale:framewright:media\n",
                   "  project name=\"Ein Sommer in Zürich\" author=\"Zoë Müller\"\n",
                   "      Geschnitten für 家族 & Freunde im Studio Łódź 15.\n",
                   "      media:clip name=\"湖の夕暮れ\" seconds=\"137\"\n",
                   "      media:übergang kind=\"crossfade\" seconds=\"2\"\n",
                   "Verbatim text: if (level < 0.5 && !muted) { echo(\"mellow\"); }\n",
                   "Elements: 13, attributes: 16, notes: 2\n"});
}

TEST(Documents, AUsersOwnOneIsFoundFromTheWorkingFolder) {
    const Staged application;
    application.Write("my cut.xml", "<a/>");
    const auto outcome =
        Launch("--language en '" +
               std::filesystem::relative(application.Path("my cut.xml")).string() + "'");
    EXPECT_EQ(0, outcome.exitCode);
    ExpectInOrder(outcome.out, {"Project: Untitled\nClips: 0, tracks: 0\n", "  a\nElements: 1, "});
}

TEST(Documents, ABadOneIsNamedAndTheApplicationGoesOn) {
    const Staged application;
    for (const char* content : {"", "<a><b></a>", "no xml", "<a b='&none;'/>"}) {
        SCOPED_TRACE(content);
        application.Write("bad.xml", content);
        const auto path = application.Path("bad.xml").string();
        const auto outcome = Launch("--language en '" + path + "'");
        EXPECT_EQ(0, outcome.exitCode);
        const auto message = "The document \"" + path + "\" could not be read as a project.\n";
        ExpectInOrder(outcome.out, {message.c_str(), "Ready (autosave on)\n"});
    }
}

TEST(CommandLine, WhatIsWrongIsNamedWithWhatIsAccepted) {
    const struct {
        int line;
        const char* arguments;
        std::initializer_list<const char*> pieces;
    } rows[] = {
        {__LINE__, "--language xx", {"unknown language 'xx'", "en, ar, de, es,", "zh_Hant"}},
        {__LINE__, "--language ''", {"unknown language ''", "accepted: en"}},
        {__LINE__, "--language", {"--language", "accepted: --language X, --trace"}},
        {__LINE__, "--loud", {"unknown option '--loud'", "--help, --version"}},
        {__LINE__, "/a.xml", {"cannot read '/a.xml'", "accepted: the path of a readable"}},
        {__LINE__, "/", {"cannot read '/'", "accepted"}},
        {__LINE__, "''", {"cannot read ''", "accepted"}},
        {__LINE__, "/dev/null b.xml", {"unexpected argument 'b.xml'", "accepted"}},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, row.arguments);
        const auto outcome = Launch(row.arguments);
        EXPECT_EQ(2, outcome.exitCode);
        EXPECT_EQ("", outcome.out);
        ExpectOneLine(outcome.err, row.pieces);
    }
}

TEST(CommandLine, HelpAndVersionNameWhatThereIs) {
    const auto help = Launch("--help");
    EXPECT_EQ(0, help.exitCode);
    for (const char* piece : {"--language X", "--trace", "--version", "PATH"}) {
        ExpectInOrder(help.out, {piece});
    }
    const auto version = Launch("--version");
    EXPECT_EQ(0, version.exitCode);
    ExpectOneLine(version.out, {"Framewright Homeline "});
}

TEST(Resources, WithoutAnyTheMessageIsInTheBestLanguage) {
    const Staged application;
    application.Remove("Dictionaries");
    for (const auto& [arguments, environment] :
         {std::pair("", "LANGUAGE=fr"), std::pair("--language fr", "LANGUAGE=ja")}) {
        const auto outcome = Launch(arguments, environment, application.Path());
        EXPECT_EQ(3, outcome.exitCode);
        EXPECT_EQ("", outcome.out);
        ExpectOneLine(outcome.err, {"framewright: ", "réinstaller"});
    }
}

TEST(Trace, TellsWhatTheHostHoldsAndTheMarks) {
    const auto outcome = Launch("--language de --trace");
    EXPECT_EQ(0, outcome.exitCode);
    ExpectInOrder(
        outcome.err,
        {"before the run:\n  localizer: none\n  error manager: none\n",
         "  UI language: \"de\"\n  locale: \"\"\nduring the run:\n",
         "  localizer: installed\n  error manager: installed\n", "  parser factory: installed\n",
         "  locale: \"de\"\n", "  ClientName: \"Framewright Homeline\"\n", "after the run:\n",
         "  localizer: none\n  error manager: none\n  parser factory: none\n", "timing marks:\n",
         "StartupTime: Starting\n", "StartupTime: Framewright DLL load finished\n",
         "StartupTime: Application closing\n"});
}

constexpr const char* kFrontend = "Frontend.framework/Frontend";

TEST(FrontEnd, ItsResultIsTheExitCode) {
    const Staged application;
    application.Replace(kFrontend, RETURNING_FRONTEND);
    const auto outcome = Launch("", "", application.Path());
    EXPECT_EQ(7, outcome.exitCode);
    EXPECT_EQ("", outcome.err);
}

TEST(FrontEnd, ItsExceptionComesOutBehindTheTearDown) {
    const Staged application;
    application.Replace(kFrontend, THROWING_FRONTEND);
    const auto outcome = Launch("--trace", "", application.Path());
    EXPECT_EQ(1, outcome.exitCode);
    ExpectInOrder(
        outcome.err,
        {"module released", "localizer uninstalled", "timing marks:\n", "StartupTime: Starting\n",
         "StartupTime: Framewright DLL load finished\n", "framewright: the film has torn\n"});
    EXPECT_EQ(std::string::npos, outcome.err.find("Application closing"));
}

TEST(StartUp, AFailureIsToldAsFarAsTheHostKnows) {
    const struct {
        int line;
        const char* replaced;
        const char* by;  // null: by nothing
        const char* told;
    } rows[] = {
        {__LINE__, kFrontend, nullptr, "Frontend.framework"},
        {__LINE__, kFrontend, __FILE__, "Frontend"},
        {__LINE__, kFrontend, ENTRYLESS_FRONTEND, "AppMain"},
        {__LINE__, STARTUP_LIBRARY, REFUSING_STARTUP, "the launch cookie was refused"},
        {__LINE__, STARTUP_LIBRARY, ENTRYLESS_FRONTEND, "Run"},
        {__LINE__, STARTUP_LIBRARY, nullptr, STARTUP_LIBRARY},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, row.told);
        const Staged application;
        application.Remove(row.replaced);
        if (row.by != nullptr) application.Replace(row.replaced, row.by);
        const auto outcome = Launch("", "", application.Path());
        EXPECT_EQ(1, outcome.exitCode);
        EXPECT_EQ("", outcome.out);
        ExpectOneLine(outcome.err, {"framewright: ", row.told});
    }
}

}  // namespace
