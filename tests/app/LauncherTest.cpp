#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "tests/app/Launch.h"

namespace {

using Pieces = std::initializer_list<std::string>;

void ExpectInOrder(const std::string& text, Pieces pieces) {
    std::size_t from = 0;
    for (const auto& piece : pieces) {
        const auto at = text.find(piece, from);
        ASSERT_NE(std::string::npos, at) << piece << "\nis missing behind the others in\n" << text;
        from = at + piece.size();
    }
}

void ExpectOneLine(const std::string& text, Pieces pieces) {
    ExpectInOrder(text, pieces);
    EXPECT_EQ(text.size() - 1, text.find('\n')) << text;
}

// The application shows `texts` in their order.
void CheckShown(const std::string& arguments, const std::string& environment, Pieces texts) {
    const testing::ScopedTrace trace(__FILE__, __LINE__, arguments + environment);
    const auto outcome = Launch(arguments, environment);
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_EQ("", outcome.err);
    ExpectInOrder(outcome.out, texts);
}

// A menu without accelerators, marker and shortcut; parameters; times; a line break.
TEST(Languages, EachShippedOneShowsItsTexts) {
    const auto check = [](const std::string& language, Pieces texts) {
        CheckShown("--language " + language, "", texts);
    };
    check("ar", {"ملف: مشروع جديد... | فتح مشروع... | حفظ | ", "المقاطع: 5، المسارات: 2",
                 "قبل الإغلاق؟\n"});
    check("de",
          {"Bearbeiten: „An Abspielposition teilen“ rückgängig machen | Ausschneiden | ",
           "Clips: 5, Spuren: 2\nLaufzeit 1:06:11, längster Clip 1:02:05\n", "speichern?\nNicht"});
    check("en", {"© 2019 Norvale.", "Edit: Undo “Split at Playhead” | Cut | Copy | Paste\n",
                 "Clip: Split at Playhead | Speed & Duration... | ", "Clips: 5, tracks: 2\n",
                 "changes to \"Ein Sommer in Zürich\" before", "Tip: press ⌘K to split a clip.\n"});
    check("es", {"Archivo: Nuevo proyecto... | ", "Clips: 5, pistas: 2\n", "¿Desea guardar"});
    check("fr", {"Édition: Annuler «\u00A0Scinder", "Plans\u00A0: 5, pistes\u00A0: 2\n", "Prêt (",
                 "=autosave on)  ->  enregistrement automatique activé\n",
                 "  $$$/Framewright/Status/Ready  ->  $$$/Framewright/Status/Ready\n",
                 "  ->  “Rest your eyes” – © 2019\tNorvale\n", "  Volume=11  ->  Volume=11\n",
                 "  H.264  ->  H.264\n"});
    check("ja", {"ファイル: 新規プロジェクト... | ", "クリップ: 5、トラック: 2\n",
                 "準備完了 (自動保存オン)"});
    check("pt_BR", {"Arquivo: Novo projeto... | ", "Clipes: 5, faixas: 2\n", "Pronto ("});
    check("ru", {"© Norvale, 2019.", "Правка: Отменить «Разрезать", "Клипы: 5, дорожки: 2\n"});
    check("zh_Hans", {"文件: 新建项目... | ", "片段：5，轨道：2\n", "就绪"});
    check("zh_Hant", {"檔案: 新增專案... | ", "片段：5，軌道：2\n", "就緒"});
}

TEST(Languages, TheEnvironmentChoosesTheBestOne) {
    CheckShown("", "LANGUAGE=ja", {"\n日本語\n"});
    CheckShown("", "LANGUAGE=pt_PT:de", {"\nPortuguês (Brasil)\n"});
    CheckShown("", "LANGUAGE=zh_TW", {"\n繁體中文\n"});
    CheckShown("", "LANGUAGE=zh_CN.UTF-8", {"\n简体中文\n"});
    CheckShown("", "LANGUAGE=ko:fr_CA:de", {"\nFrançais\n"});
    CheckShown("", "LANG=ru_RU.UTF-8", {"\nРусский\n"});
    CheckShown("--language de", "LANGUAGE=ja", {"\nDeutsch\n"});
    CheckShown("", "LANGUAGE=ko", {"\nEnglish\n"});  // not shipped
    CheckShown("", "LC_ALL=C", {"\nEnglish\n"});
}

TEST(Languages, EnglishTextsAreTheDefaultTexts) {
    const Staged application;
    application.Remove("Dictionaries/en/wdictionary.dat");
    const auto withoutDictionary = Launch("--language en", "", application.Path());
    const auto withDictionary = Launch("--language en", "", FRAMEWRIGHT_APP_DIR);
    EXPECT_FALSE(withDictionary.out.empty());
    EXPECT_EQ(withDictionary.out, withoutDictionary.out);
}

TEST(Languages, ATextDictionaryDoesInPlaceOfTheBinaryOne) {
    const Staged application;
    application.Replace("Dictionaries/ja/wdictionary.dat", JAPANESE_TEXTS);
    const auto fromText = Launch("--language ja", "", application.Path());
    EXPECT_EQ("", fromText.err);
    EXPECT_EQ(Launch("--language ja").out, fromText.out);
}

TEST(Languages, AMalformedDictionaryShowsTheRequests) {
    const Staged application;
    application.Write("Dictionaries/de/wdictionary.dat", "\"$$$/A=a\"\n\"$/Bad=b\"\n");
    const auto outcome = Launch("--language de", "", application.Path());
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_EQ(0U, outcome.out.find("$$$/Framewright/Product/Title=Framewright Homeline\n"))
        << outcome.out;
}

TEST(Documents, TheSampleIsOutlined) {
    CheckShown("--language en", "",
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

TEST(Documents, OnesOwnIsFoundFromTheWorkingFolderAndABadOneIsNamed) {
    const Staged application;
    const auto check = [&](const char* content, Pieces texts) {
        application.Write("my cut.xml", content);
        const auto path = std::filesystem::relative(application.Path("my cut.xml")).string();
        CheckShown("--language en '" + path + "'", "", texts);
    };
    check("<a/>", {"Project: Untitled\nClips: 0, tracks: 0\n", "  a\nElements: 1, "});
    for (const char* content : {"", "<a><b></a>", "no xml", "<a b='&none;'/>"})
        check(content, {"The document \"", "my cut.xml\" could not be read as a project.\n",
                        "Ready (autosave on)\n"});
}

TEST(CommandLine, WhatIsWrongIsNamedWithWhatIsAccepted) {
    const auto check = [](const char* arguments, Pieces pieces) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, arguments);
        const auto outcome = Launch(arguments);
        EXPECT_EQ(2, outcome.exitCode);
        EXPECT_EQ("", outcome.out);
        ExpectOneLine(outcome.err, pieces);
    };
    check("--language xx", {"unknown language 'xx'", "en, ar, de, es,", "zh_Hant"});
    check("--language ''", {"unknown language ''", "accepted: en"});
    check("--language", {"--language", "accepted: --language X, --trace"});
    check("--loud", {"unknown option '--loud'", "--help, --version"});
    check("/a.xml", {"cannot read '/a.xml'", "accepted: the path of a readable"});
    check("/", {"cannot read '/'", "accepted"});
    check("''", {"cannot read ''", "accepted"});
    check("/dev/null b.xml", {"unexpected argument 'b.xml'", "accepted"});
}

TEST(CommandLine, HelpAndVersionNameWhatThereIs) {
    for (const char* piece : {"--language X", "--trace", "--version", "PATH"})
        CheckShown("--help", "", {piece});
    ExpectOneLine(Launch("--version").out, {"Framewright Homeline "});
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
    EXPECT_EQ(7, Launch("", "", application.Path()).exitCode);
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
    const auto check = [](const char* replaced, const char* by, const char* told) {
        const Staged application;
        application.Remove(replaced);
        if (by != nullptr) application.Replace(replaced, by);
        const auto outcome = Launch("", "", application.Path());
        EXPECT_EQ(1, outcome.exitCode) << told;
        EXPECT_EQ("", outcome.out);
        ExpectOneLine(outcome.err, {"framewright: ", told});
    };
    check(kFrontend, nullptr, "Frontend.framework");
    check(kFrontend, FRAMEWRIGHT_APP_DIR "/sample.project.xml", "Frontend");
    check(kFrontend, ENTRYLESS_FRONTEND, "AppMain");
    check(STARTUP_LIBRARY, REFUSING_STARTUP, "the launch cookie was refused");
    check(STARTUP_LIBRARY, ENTRYLESS_FRONTEND, "Run");
    check(STARTUP_LIBRARY, nullptr, STARTUP_LIBRARY);
}

}  // namespace
