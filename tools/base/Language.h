#pragma once
#include <filesystem>
#include <string>

namespace tool {

// The language of a dictionary: its own locale where that names one, else what its name
// ("pt_BR.txt", "texts.de.txt") or its folder ("de/wdictionary.dat") says. Empty where none does.
std::string LanguageOf(const std::filesystem::path& file, const std::string& locale = {});

}  // namespace tool
