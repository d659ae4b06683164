#include "tools/lsp/Workspace.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "tools/base/Encodings.h"

namespace tool::lsp {

namespace {

namespace fs = std::filesystem;

OpenFile::Kind KindOf(const std::string& path, const std::string& language) {
    if (fs::path(path).filename() == kProjectFileName) return OpenFile::Kind::kSettings;
    constexpr std::array kLanguages{"c", "cpp", "objective-c", "objective-cpp", "objc", "objcpp"};
    const bool isSource = std::ranges::find(kLanguages, language) != kLanguages.end();
    return isSource || IsSourceName(path) ? OpenFile::Kind::kSource : OpenFile::Kind::kDictionary;
}

// The first bytes of a file, enough for a mark.
std::string Head(const std::string& path) {
    std::string head(3, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(file.gcount()));
    return head;
}

std::unique_ptr<TextFile> MakeText(const OpenFile& file, const std::string& uri,
                                   const std::string& text, const std::string& encoding) {
    if (file.kind != OpenFile::Kind::kDictionary) {
        return std::make_unique<TextFile>(uri, text, "", false);
    }
    return std::make_unique<TextFile>(uri, text, Head(file.path), encoding != kDefaultEncoding);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The place of the key in a literal written in one piece.
std::optional<std::size_t> KeyInLiteral(const std::string& bytes, const SourceText& text) {
    constexpr std::string_view kPrefix = "$$$";
    std::size_t at = bytes.find(kPrefix, text.begin);
    if (at == bytes.npos) return std::nullopt;
    at += kPrefix.size();
    const std::size_t end = at + text.key.size();
    if (end >= text.end || bytes.compare(at, text.key.size(), text.key) != 0) return std::nullopt;
    constexpr std::string_view kAfter = "=\")";
    if (kAfter.find(bytes[end]) == kAfter.npos) return std::nullopt;
    // Another literal could continue the key.
    if (bytes[end] != '=' && end + 2 < text.end) return std::nullopt;
    return at;
}

std::vector<SourceText> TextsOf(const TextFile& file, const std::string& path) {
    try {
        return FindTexts(path, file.Bytes());
    } catch (const Failure&) {  // which `check` and `extract` report
        return {};
    }
}

}  // namespace

std::string UriOfPath(const std::string& path) { return "file://" + UriOf(path); }

std::string PathOfUri(const std::string& uri) {
    constexpr std::string_view kScheme = "file://";
    if (!uri.starts_with(kScheme)) return {};
    std::string path;
    for (std::size_t i = std::min(uri.find('/', kScheme.size()), uri.size()); i < uri.size(); ++i) {
        const int high = uri[i] == '%' && i + 2 < uri.size() ? HexDigit(uri[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(uri[i + 2]) : -1;
        if (low < 0) {
            path += uri[i];
        } else {
            path += static_cast<char>(high << 4 | low);
            i += 2;
        }
    }
    return fs::path(path).lexically_normal().string();
}

TextDocument::Part KeyPart(const TextDocument& document, const TextFile::Line& line) {
    const Units entry = document.UnitsOfPart(line, line.entry);
    constexpr std::u16string_view kPrefix = u"$$$";
    const bool hasPrefix =
        entry.size() >= kPrefix.size() && std::equal(kPrefix.begin(), kPrefix.end(), entry.begin());
    const std::size_t prefix = hasPrefix ? kPrefix.size() : 0;
    return {line.entry.begin + prefix, line.key.size()};
}

OpenFile& Workspace::Open(const std::string& uri, const std::string& language, std::int64_t version,
                          const std::string& text) {
    const std::string path = PathOfUri(uri);
    OpenFile file{path, KindOf(path, language), version, nullptr};
    ProjectOf(file);  // for its encoding
    file.text = MakeText(file, uri, text, encodingInUse);
    return open.insert_or_assign(uri, std::move(file)).first->second;
}

OpenFile& Workspace::Change(const std::string& uri, std::int64_t version, const std::string& text) {
    OpenFile& file = Get(uri);
    ProjectOf(file);
    file.version = version;
    file.text = MakeText(file, uri, text, encodingInUse);
    file.isPublished = false;
    return file;
}

void Workspace::Close(const std::string& uri) { open.erase(uri); }

OpenFile& Workspace::Get(const std::string& uri) {
    const auto found = open.find(uri);
    if (found == open.end()) throw ResponseError(kInvalidParams, uri + " is not open");
    return found->second;
}

void Workspace::Refresh() {
    projects.clear();
    onDisk.clear();
}

ProjectState& Workspace::ProjectOf(const OpenFile& file) {
    const std::string settings =
        file.path.empty() ? "" : FindProjectFile(fs::path(file.path).parent_path().string());
    ProjectState& state = settings.empty() ? none : projects[settings];
    if (!settings.empty()) {
        std::string bytes;
        try {
            bytes = ReadInput(settings);
            if (state.project.file.empty() || bytes != state.bytes) {
                state = {};
                state.project.file = settings;
                state.bytes = bytes;
                state.project = ParseProject(settings, bytes, RuleNames());
            }
        } catch (const Failure& failure) {
            state.error = failure.what();
        }
    }
    const std::string& wanted = state.project.encoding.empty() ? encoding : state.project.encoding;
    if (wanted != encodingInUse) {
        UseEncoding(wanted);
        encodingInUse = wanted;
        onDisk.clear();
    }
    return state;
}

const Reference* Workspace::ReferenceOf(ProjectState& state) {
    const std::string& path = state.project.reference;
    const TextFile* const file = path.empty() ? nullptr : FileAt(path);
    if (file == nullptr) return nullptr;
    if (!state.reference.has_value() || state.referenceBytes != file->Bytes()) {
        state.reference.reset();
        state.referenceBytes = file->Bytes();
        try {
            state.reference = ReadReference(ShortName(state, path), file->Bytes());
        } catch (const Failure&) {  // the findings of the reference itself say why
            return nullptr;
        }
    }
    return &*state.reference;
}

const SourceTexts* Workspace::SourcesOf(ProjectState& state) {
    if (!state.knowsSources && !state.project.sources.empty()) {
        state.knowsSources = true;
        try {
            state.sources = std::make_unique<SourceTexts>(state.project.sources);
        } catch (const std::exception& failure) {
            state.error = failure.what();
        }
    }
    return state.sources.get();
}

const TextFile* Workspace::FileAt(const std::string& path) {
    for (const auto& [uri, file] : open)
        if (file.path == path) return file.text.get();
    std::string bytes;
    try {
        bytes = ReadInput(path);
    } catch (const Failure&) {
        return nullptr;
    }
    std::unique_ptr<TextFile>& cached = onDisk[path];
    if (cached == nullptr || cached->Bytes() != bytes) {
        cached = std::make_unique<TextFile>(UriOfPath(path), std::move(bytes));
    }
    return cached.get();
}

std::vector<std::pair<std::string, const TextFile*>> Workspace::DictionariesOf(
    const OpenFile& file) {
    std::vector<std::pair<std::string, const TextFile*>> list;
    for (const std::string& path : ProjectOf(file).project.Dictionaries()) {
        const TextFile* const text = FileAt(path);
        if (text != nullptr && !text->IsBinary()) list.emplace_back(path, text);
    }
    const bool isListed =
        std::ranges::any_of(list, [&](const auto& item) { return item.second == file.text.get(); });
    if (!isListed && file.kind == OpenFile::Kind::kDictionary) {
        list.emplace_back(file.path, file.text.get());
    }
    return list;
}

std::string Workspace::ShortName(const ProjectState& state, const std::string& path) {
    const fs::path root = fs::path(state.project.file).parent_path();
    if (root.empty()) return path;
    const fs::path near = fs::path(path).lexically_proximate(root);
    return near.empty() || *near.begin() == ".." ? path : near.string();
}

std::string Workspace::ShortName(const OpenFile& file) {
    return file.path.empty() ? file.text->Uri() : ShortName(ProjectOf(file), file.path);
}

std::optional<Workspace::Found> Workspace::KeyAt(const OpenFile& file, Position position) {
    if (file.kind == OpenFile::Kind::kSource) {
        const std::size_t at = file.text->OffsetAt(position);
        for (SourceText& text : TextsOf(*file.text, file.path)) {
            if (at < text.begin || at > text.end) continue;
            const auto key = KeyInLiteral(file.text->Bytes(), text);
            const Range range = key.has_value()
                                    ? file.text->RangeOfBytes(*key, *key + text.key.size())
                                    : file.text->RangeOfBytes(text.begin, text.end);
            return Found{std::move(text.key), range, true};
        }
        return std::nullopt;
    }
    if (file.kind != OpenFile::Kind::kDictionary) return std::nullopt;
    const auto spot = file.text->SpotAt(position);
    if (!spot.has_value() || spot->line->kind != TextDocument::Kind::kEntry) return std::nullopt;
    const TextDocument::Part key = KeyPart(file.text->Document(), *spot->line);
    const bool isAtKey =
        spot->unit >= spot->line->entry.begin && spot->unit <= key.begin + key.length;
    return Found{spot->line->key, file.text->RangeOf(*spot->line, key), isAtKey, spot->line};
}

std::vector<KeyUse> Workspace::UsesOf(const OpenFile& file, const std::string& key,
                                      bool inSources) {
    std::vector<KeyUse> uses;
    for (const auto& [path, text] : DictionariesOf(file)) {
        for (const TextFile::Line& line : text->Document().Lines()) {
            if (line.kind != TextDocument::Kind::kEntry || line.key != key) continue;
            uses.push_back(
                {text, path, text->RangeOf(line, KeyPart(text->Document(), line)), &line});
        }
    }
    if (!inSources) return uses;
    std::vector<std::string> sources;
    try {
        sources = SourceFiles(ProjectOf(file).project.sources);
    } catch (const std::exception&) {  // a missing folder
        return uses;
    }
    for (const std::string& path : sources) {
        const TextFile* const text = FileAt(path);
        if (text == nullptr || text->Bytes().find("$$$") == std::string::npos) continue;
        for (const SourceText& literal : TextsOf(*text, path)) {
            if (literal.key != key) continue;
            const auto at = KeyInLiteral(text->Bytes(), literal);
            const Range range = at.has_value() ? text->RangeOfBytes(*at, *at + key.size())
                                               : text->RangeOfBytes(literal.begin, literal.end);
            uses.push_back({text, path, range, nullptr, at.has_value()});
        }
    }
    return uses;
}

}  // namespace tool::lsp
