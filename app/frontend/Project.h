#pragma once
// Project documents: XML in the namespaces "urn:norvale:framewright:project" and "...:media".

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/vexacore/String.h"

namespace frontend {

struct OutlineLine {
    enum class Kind { kNamespace, kElement, kText, kVerbatim, kComment };

    Kind kind;
    std::size_t depth;             // 0 for the root and for what is outside it
    vexacore::UTF16String text;    // with single spaces, none at the ends, except verbatim text
    vexacore::UTF16String prefix;  // of a namespace; empty for the default one
};

// What the front end shows of a document. Times are in seconds.
struct Project {
    vexacore::UTF16String name;
    vexacore::UTF16String author;
    long clips = 0;
    long tracks = 0;
    long runningTime = 0;
    long longestClip = 0;
    long elements = 0;
    long attributes = 0;
    long comments = 0;
    std::vector<OutlineLine> outline;
};

struct ReadResult {
    std::optional<Project> project;
    std::string failure;  // why there is no project: one line for people, in UTF-8
};

// Parses the document with the host's installed parser factory. `path` is in the file system's
// encoding. Throws only when memory runs out a second time, for the failure's text.
ReadResult ReadProject(const std::string& path);

}  // namespace frontend
