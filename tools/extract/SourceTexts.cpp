#include "tools/extract/SourceTexts.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>

#include "tools/base/Annotations.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/extract/SourceLexer.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtensions[] = {".c",   ".cc",  ".cpp", ".cxx",  ".c++", ".h",
                                            ".hh",  ".hpp", ".hxx", ".h++",  ".inl", ".inc",
                                            ".ipp", ".tpp", ".ixx", ".cppm", ".m",   ".mm"};

// Finds all sources below a folder, by name.
void Search(const fs::path& folder, std::vector<std::string>& files) {
    std::vector<fs::path> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        entries.push_back(entry.path());
    std::ranges::sort(entries);
    for (const fs::path& entry : entries) {
        if (fs::is_directory(fs::symlink_status(entry))) {
            if (!entry.filename().string().starts_with('.')) Search(entry, files);
        } else if (fs::is_regular_file(entry) && IsSourceName(entry.string())) {
            files.push_back(entry.string());
        }
    }
}

}  // namespace

bool IsSourceName(const std::string& name) {
    return std::ranges::find(kExtensions, fs::path(name).extension().string()) !=
           std::end(kExtensions);
}

std::vector<SourceText> FindTexts(const std::string& name, const std::string& bytes) {
    std::vector<SourceText> texts;
    for (SourceLiteral& literal : FindLiterals(name, bytes)) {
        Units text = literal.text;
        const bool wrapped = !text.empty() && text[0] == u'(';
        if (wrapped) text = text.subspan(1, text.size() - (text.back() == u')' ? 2 : 1));
        constexpr std::u16string_view kPrefix = u"$$$";
        text = text.subspan(kPrefix.size());
        const auto equals = std::ranges::find(text, u'=');
        const auto keyLength = static_cast<std::size_t>(equals - text.begin());
        // The library compares the bytes of the literal, which are UTF-8.
        SourceText found{std::move(literal.place),
                         Utf8(text.first(keyLength)),
                         equals != text.end(),
                         literal.ignored,
                         {},
                         literal.begin,
                         literal.end};
        if (found.hasText) found.text.assign(equals + 1, text.end());
        texts.push_back(std::move(found));
    }
    return texts;
}

std::string DescribeConflict(const SourceText& text, const SourceText& first) {
    return "the key " + ShowKey(text.key) + " has the default text " + ShowRaw(text.text) +
           " here and " + ShowRaw(first.text) + " at " + Show(first.place);
}

std::vector<std::string> SourceFiles(const std::vector<std::string>& filesAndFolders) {
    std::vector<std::string> files;
    for (const std::string& name : filesAndFolders) {
        if (fs::is_directory(name)) {
            Search(name, files);
        } else {
            files.push_back(name);
        }
    }
    return files;
}

SourceTexts::SourceTexts(const std::vector<std::string>& filesAndFolders) {
    const std::vector<std::string> files = SourceFiles(filesAndFolders);
    if (files.empty()) return;
    Progress progress("reading", filesAndFolders.front(), files.size());
    for (std::size_t done = 0; done < files.size(); ++done) {
        progress.Reach(done);
        for (SourceText& text : FindTexts(files[done], ReadInput(files[done])))
            Add(std::move(text));
    }
}

void SourceTexts::Add(SourceText text) {
    const bool isBare = !text.hasText || text.ignored;
    auto& list = isBare ? bare : texts;
    const auto [first, isNew] = (isBare ? bareByKey : byKey).try_emplace(text.key, list.size());
    if (isNew) {
        list.push_back(std::move(text));
    } else if (!isBare && !ShowTheSame(text.text, list[first->second].text)) {
        conflicts.push_back(std::move(text));
    }
}

const SourceText* SourceTexts::Find(const std::string& key) const {
    if (const auto found = byKey.find(key); found != byKey.end()) return &texts[found->second];
    const auto found = bareByKey.find(key);
    return found == bareByKey.end() ? nullptr : &bare[found->second];
}

}  // namespace tool
