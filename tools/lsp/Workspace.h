#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tools/base/ProjectFile.h"
#include "tools/check/Check.h"
#include "tools/extract/SourceTexts.h"
#include "tools/lsp/TextFile.h"

namespace tool::lsp {

// A request that failed.
class ResponseError : public std::runtime_error {
public:
    ResponseError(int errorCode, const std::string& why)
        : std::runtime_error(why), code(errorCode) {}
    int Code() const { return code; }

private:
    int code;
};
// Error codes of the protocol.
inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;
inline constexpr int kInvalidParams = -32602;
inline constexpr int kServerNotInitialized = -32002;
inline constexpr int kRequestFailed = -32803;
inline constexpr int kRequestCancelled = -32800;

// A file that is open in the editor.
struct OpenFile {
    enum class Kind : std::uint8_t { kDictionary, kSource, kSettings };

    std::string path;  // empty for a text that has no file
    Kind kind;
    std::int64_t version;
    std::unique_ptr<TextFile> text;
    bool isPublished = false;            // the findings of this version
    std::vector<Finding> findings = {};  // what was published
};

// One use of a key: as the key of an entry, or in a literal of a source.
struct KeyUse {
    const TextFile* file;
    std::string path;
    Range range;                           // of the key, without "$$$"
    const TextFile::Line* line = nullptr;  // of a dictionary
    bool isWhole = true;                   // false when several literals make up the key
};

// A project and the files read for it.
struct ProjectState {
    Project project;
    std::string bytes;  // of its file
    std::string error;  // why it cannot be used
    std::optional<Reference> reference;
    std::string referenceBytes;
    std::unique_ptr<SourceTexts> sources;
    bool knowsSources = false;
};

// The files open in the editor, and their projects. Files on disk are read again when they have
// changed, so changes by other programs count. Pointers to files are valid until the next Open,
// Change, Close or Refresh, or until the file is requested again after it has changed on disk.
class Workspace {
public:
    // `encoding` is that of 8-bit files unless the project names one.
    explicit Workspace(std::string encodingOfFiles) : encoding(std::move(encodingOfFiles)) {}

    OpenFile& Open(const std::string& uri, const std::string& language, std::int64_t version,
                   const std::string& text);
    // Throws a ResponseError for a file that is not open.
    OpenFile& Change(const std::string& uri, std::int64_t version, const std::string& text);
    void Close(const std::string& uri);
    OpenFile& Get(const std::string& uri);
    std::map<std::string, OpenFile>& OpenFiles() { return open; }
    // Forgets the content of files on disk, as files may have come or gone.
    void Refresh();

    // The project of an open file, or one without settings. Its encoding applies from here on.
    ProjectState& ProjectOf(const OpenFile& file);
    // Null when none is named or it cannot be used.
    const Reference* ReferenceOf(ProjectState& state);
    // Null when none are named or they cannot be read.
    const SourceTexts* SourcesOf(ProjectState& state);
    // Null when it cannot be read.
    const TextFile* FileAt(const std::string& path);
    // All text dictionaries of the project, the reference first, and the file itself.
    std::vector<std::pair<std::string, const TextFile*>> DictionariesOf(const OpenFile& file);
    // The path for messages to people.
    std::string ShortName(const OpenFile& file);
    static std::string ShortName(const ProjectState& state, const std::string& path);

    // The key at a position.
    struct Found {
        std::string key;
        Range range;   // of the key; in a source of the whole literal
        bool isAtKey;  // the position is in the key, not elsewhere on its line
        const TextFile::Line* line = nullptr;  // of a dictionary
    };
    std::optional<Found> KeyAt(const OpenFile& file, Position position);
    // All uses of a key in the project: those of the reference first, those of sources last.
    std::vector<KeyUse> UsesOf(const OpenFile& file, const std::string& key, bool inSources);

private:
    std::string encoding;
    std::string encodingInUse;
    std::map<std::string, OpenFile> open;  // by URI
    std::map<std::string, std::unique_ptr<TextFile>> onDisk;
    std::map<std::string, ProjectState> projects;  // by the file of settings
    ProjectState none;
};

std::string UriOfPath(const std::string& path);
// The path of a "file" URI, or "".
std::string PathOfUri(const std::string& uri);
// The part of a line that is its entry's key, without "$$$".
TextDocument::Part KeyPart(const TextDocument& document, const TextFile::Line& line);

}  // namespace tool::lsp
