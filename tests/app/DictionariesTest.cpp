#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "wordlex/staticlib/Wordlexlib.h"

namespace {

namespace fs = std::filesystem;

// What a translation must keep: its markers, its parameters, whether it has an accelerator.
std::string Placeholders(const lexon::Wordlex& text) {
    std::string result;
    for (unsigned char n = 0; n <= 9; ++n) {
        if (text.WillReplace(n)) result += '^' + std::to_string(n) + ' ';
    }
    for (const char* name : {"clips", "tracks"}) {
        auto copy = text;
        if (copy.ParamSubstitute(name, {})) result += std::string(name) + ' ';
    }
    auto plain = text;
    plain.RemoveAccelerators();
    return plain == text ? result : result + '&';
}

std::map<std::string, std::string> Load(const fs::path& file) {
    lexon::Dictionary dictionary;
    std::ifstream stream(file, std::ios::binary);
    dictionary.Read(&stream);
    EXPECT_TRUE(dictionary.IsValid()) << file;
    char locale[16] = {};  // which only a binary dictionary names
    dictionary.Locale().GetCString(locale, sizeof locale, true, nullptr);
    EXPECT_EQ(file.parent_path().filename(), locale);
    std::map<std::string, std::string> entries;
    char key[256];
    while (dictionary.HasMoreKey() && dictionary.NextKey(key, sizeof key, true)) {
        const auto text = dictionary.Lookup(key, nullptr);
        EXPECT_FALSE(text.IsEmpty()) << file << ": " << key;
        entries.emplace(key, Placeholders(text));
    }
    return entries;
}

TEST(Dictionaries, AllSayTheSameWithTheSamePlaceholders) {
    const fs::path folder = fs::path(FRAMEWRIGHT_APP_DIR) / "Dictionaries";
    const auto english = Load(folder / "en/wdictionary.dat");
    EXPECT_EQ(41u, english.size());
    EXPECT_EQ("^1 ^2 ^3 ", english.at("/Framewright/Outline/Totals"));
    EXPECT_EQ("clips tracks ", english.at("/Framewright/Project/Contents"));
    std::set<std::string> languages;
    for (const auto& language : fs::directory_iterator(folder)) {
        languages.insert(language.path().filename());
        EXPECT_EQ(english, Load(language.path() / "wdictionary.dat")) << language;
    }
    EXPECT_EQ((std::set<std::string>{"ar", "de", "en", "es", "fr", "ja", "pt_BR", "ru", "zh_Hans",
                                     "zh_Hant"}),
              languages);
}

}  // namespace
