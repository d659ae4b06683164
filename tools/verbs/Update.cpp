#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <vector>

#include "tools/base/Annotations.h"
#include "tools/base/Files.h"
#include "tools/base/OrderedMerge.h"
#include "tools/base/Progress.h"
#include "tools/base/TextDocument.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

namespace fs = std::filesystem;
using Line = TextDocument::Line;

constexpr std::string_view kStandardStream = "-";

// The new reference texts, with their digests.
class Reference {
public:
    explicit Reference(const std::string& name) : document(ReadTextDocument(name)) {
        const Progress progress("reading", name);
        for (const Line& line : document.Lines())
            digests.push_back(ReferenceDigest(document.Value(line)));
    }

    const TextDocument& Document() const { return document; }
    const std::string& Digest(std::size_t line) const { return digests[line]; }

private:
    TextDocument document;
    std::vector<std::string> digests;  // of the lines
};

class Updater {
public:
    Updater(const Reference& updateTo, std::string fileName)
        : reference(updateTo),
          name(std::move(fileName)),
          obsoleteName(ObsoleteName(name)),
          document(ReadTextDocument(name)),
          obsolete(name != kStandardStream && fs::exists(obsoleteName)
                       ? ReadTextDocument(obsoleteName)
                       : document.EmptyLikeThis()) {
        MoveGone();
        obsoleteWithGone = obsolete.Bytes();
        UpdatePresent();
    }

    bool Changes() const { return document.HasEdits() || obsolete.HasEdits(); }

    // Whatever interrupts it, an entry that moves is in one of the files or in both.
    void WriteFiles() const {
        if (document.HasEdits()) RequireWritable(name);
        if (counts[kGone] != 0) WriteOutput(obsoleteName, obsoleteWithGone);
        if (document.HasEdits()) WriteOutput(name, document.Bytes());
        if (counts[kRestored] == 0) return;
        const std::string left = obsolete.Bytes();
        if (TextDocument(left).Lines().empty()) {
            fs::remove(obsoleteName);
        } else {
            WriteOutput(obsoleteName, left);
        }
    }

    // The text for standard output. A filter has no place for removed entries.
    std::string Result() const {
        if (counts[kGone] != 0) {
            throw Failure(
                "standard input: " + tool::Counted(counts[kGone], "entry is", "entries are") +
                " obsolete; name a file, so that they can be kept beside it");
        }
        return document.Bytes();
    }

    // "FILE: 2 added, 1 stale"
    std::string Summary() const {
        static constexpr const char* kWhat[] = {"added", "restored", "refreshed",
                                                "stale", "obsolete", "noted"};
        static_assert(std::size(kWhat) == kCountedKinds);
        std::string text;
        for (std::size_t i = 0; i < kCountedKinds; ++i) {
            if (counts[i] == 0) continue;
            text += (text.empty() ? "" : ", ") + std::to_string(counts[i]) + ' ' + kWhat[i];
        }
        return name + ": " + (text.empty() ? "up to date" : text) + '\n';
    }

private:
    enum Counted { kAdded, kRestored, kRefreshed, kStale, kGone, kNoted, kCountedKinds };

    // A line without both quotation marks is probably not meant as an entry: it stays.
    void MoveGone() {
        for (const Line& line : document.Lines()) {
            if (!line.quoted || reference.Document().Find(line.key).has_value()) continue;
            if (const auto old = obsolete.Find(line.key)) {
                obsolete.Remove(obsolete.Lines()[*old]);  // this text is newer
            }
            document.Remove(line);
            obsolete.Append(MakeLine(document.UnitsOfPart(line, line.before),
                                     document.UnitsOfPart(line, line.entry),
                                     document.UnitsOfPart(line, line.after)));
            ++counts[kGone];
        }
    }

    void UpdatePresent() {
        MergeInOrder(
            document, reference.Document(),
            [this](const Line& present, std::size_t i) {
                if (present.quoted) UpdateLine(present, i);
            },
            [this](std::size_t i) { return LineFor(i); });
    }

    // The translation's new line for a line of the reference: a returning entry, or the reference's
    // text.
    std::vector<unsigned short> LineFor(std::size_t i) {
        const Line& wanted = reference.Document().Lines()[i];
        const Units entry = reference.Document().UnitsOfPart(wanted, wanted.entry);
        const auto at = obsolete.Find(wanted.key);
        if (!at.has_value() || !obsolete.Lines()[*at].quoted) {
            ++counts[kAdded];
            return MakeLine(
                {}, entry,
                UnitsOf(FromUtf8(WithMarks("", {true, false, false, reference.Digest(i), {}}))));
        }
        const Line& old = obsolete.Lines()[*at];
        obsolete.Remove(old);
        ++counts[kRestored];
        const Commented now = Compare(obsolete, old, i);
        return MakeLine(UnitsOf(FromUtf8(now.before)),
                        now.refreshed ? entry : obsolete.UnitsOfPart(old, old.entry),
                        UnitsOf(FromUtf8(now.after)));
    }

    void UpdateLine(const Line& line, std::size_t i) {
        const Commented now = Compare(document, line, i);
        if (!now.changed) return;
        document.SetComment(line, line.before, now.before);
        document.SetComment(line, line.after, now.after);
        if (now.refreshed) {
            document.SetValue(line, reference.Document().Value(reference.Document().Lines()[i]));
        }
    }

    // An entry's comments, updated for the current reference.
    struct Commented {
        std::string before;
        std::string after;
        bool changed = false;
        bool refreshed = false;  // the value was the reference's text and becomes the new one
    };
    Commented Compare(const TextDocument& in, const Line& line, std::size_t i) {
        Commented now{in.Comment(line, line.before), in.Comment(line, line.after)};
        Annotations marks = ParseAnnotations(now.before, now.after);
        const std::string& digest = reference.Digest(i);
        if (marks.from == digest) return now;
        if (marks.from.empty()) {
            ++counts[kNoted];
        } else if (marks.untranslated && ReferenceDigest(in.Value(line)) == marks.from) {
            ++counts[kRefreshed];
            now.refreshed = true;
        } else {
            ++counts[kStale];
            marks.stale = true;
            marks.untranslated = false;
        }
        marks.from = digest;
        now.before = WithMarks(now.before, {});
        now.after = WithMarks(now.after, marks);
        now.changed = true;
        return now;
    }

    const Reference& reference;
    std::string name;
    std::string obsoleteName;
    TextDocument document;
    TextDocument obsolete;
    std::string obsoleteWithGone;  // with removed entries, and still with returning ones
    std::array<std::size_t, kCountedKinds> counts{};
};

// What standard output gets: a summary, or the text itself where it came from standard input.
std::string UpdateFile(const Reference& reference, const std::string& name, bool onlyCheck,
                       bool& changes) {
    const Progress progress("updating", name);
    const Updater updater(reference, name);
    changes = updater.Changes();
    if (onlyCheck) return updater.Summary();
    if (name == kStandardStream) return updater.Result();
    updater.WriteFiles();
    return updater.Summary();
}

}  // namespace

int Update(const Arguments& arguments) {
    const std::string& referenceName = arguments.Get("reference");
    if (referenceName.empty()) throw UsageFailure("--reference is required");
    const Reference reference(referenceName);
    const bool onlyCheck = arguments.Has("check");
    int exitCode = kSuccess;
    for (const std::string& name : arguments.operands) {
        std::error_code absent;
        if (IsObsoleteName(name) || fs::equivalent(name, referenceName, absent)) continue;
        try {
            bool changes = false;
            const std::string output = UpdateFile(reference, name, onlyCheck, changes);
            WriteStandardOutput(output);
            if (onlyCheck && changes) exitCode = std::max(exitCode, kDifference);
        } catch (const Failure& failure) {  // the other files are not affected
            std::cerr << "wordlex: " << failure.what() << '\n';
            exitCode = kFailure;
        }
    }
    return exitCode;
}

}  // namespace tool
