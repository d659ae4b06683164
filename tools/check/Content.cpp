#include "tools/check/Content.h"

#include <sstream>

#include "tools/base/BinaryFile.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/base/TextScanner.h"
#include "tools/check/BinaryCheck.h"
#include "tools/check/TextCheck.h"
#include "wordlex/functionality/BinaryHeader.h"

namespace tool {

namespace {

using lexon_private::BinaryHeader;
using lexon_private::Dictionary;
using lexon_private::EntryView;

BinaryHeader HeaderOf(const std::string& bytes) {
    lexon_private::ImageReader image(bytes.data(), bytes.data() + bytes.size(),
                                     lexon::EndianT::kHost);
    PassMagic(image);
    return ReadBinaryHeader(image);
}

// Goes through all checks. Throws a Failure for what the application would refuse. Returns what a
// binary file would cut: "PLACE: TEXT" of the first entry, or "".
std::string CheckWhole(const std::string& name, const std::string& bytes) {
    Findings findings;
    const bool binary = lexon_private::HasBinaryMagic(bytes.data(), bytes.size());
    binary ? CheckBinary(name, bytes, findings) : CheckText(name, bytes, findings);
    findings.ThrowIfFatal();
    for (const Finding& finding : findings.Take()) {
        if (finding.rule == Rule::kKeyLength || finding.rule == Rule::kValueLength) {
            return Show(finding.place) + ": " + finding.text;
        }
    }
    return {};
}

// Throws a Failure for bytes that the loader would take for something else.
void RequireForm(const TextScanner& scanner, const std::string& name, const std::string& bytes) {
    Findings findings;
    CheckForm(scanner, name, bytes, findings);
    findings.ThrowIfFatal();
}

void RequireSound(const BinaryFile& file, const std::string& name) {
    Findings findings;
    CheckFault(file, name, findings);
    findings.ThrowIfFatal();
}

void AddEntry(Content& content, const EntryView& entry) {
    content.entries.push_back({entry.id, entry.keyed,
                               std::string(entry.key.begin(), entry.key.end()),
                               Text(entry.value.data(), entry.value.size()),
                               Text(entry.accelerator.data(), entry.accelerator.size())});
}

void AddEntries(Content& content, const BinaryFile& file) {
    content.locale = Utf8(UnitsOf(FromUtf8(file.Header().locale.value_or("").c_str())));
    content.idBase = file.IdBase();
    file.ForEachEntry([&](const BinaryEntry& entry) {
        if (entry.found) AddEntry(content, entry.view);
    });
}

}  // namespace

Kind KindOf(const std::string& bytes) {
    if (!lexon_private::HasBinaryMagic(bytes.data(), bytes.size())) return Kind::kText;
    return HeaderOf(bytes).body == BinaryHeader::Body::kVersion2 ? Kind::kVersion2
                                                                 : Kind::kVersion1;
}

std::string FormOf(const std::string& bytes) {
    if (KindOf(bytes) == Kind::kText) {
        const TextScanner text(bytes);
        if (!text.IsUtf16()) return "text, 8-bit";
        return text.IsBigEndian() ? "text, UTF-16, big-endian" : "text, UTF-16, little-endian";
    }
    const BinaryHeader header = HeaderOf(bytes);
    std::string form = std::string(lexon_private::kBinaryMagic) + ' ' +
                       std::to_string(header.major) + '.' + std::to_string(header.minor);
    if (header.order == lexon::EndianT::kBig) form += ", big-endian";
    if (header.order == lexon::EndianT::kLittle) form += ", little-endian";
    return form;
}

void Read(Dictionary& dictionary, const std::string& name, const std::string& bytes) {
    const Progress progress("loading", name);
    std::istringstream stream(bytes);
    dictionary.Read(&stream);
}

void ReadUsable(Dictionary& dictionary, const std::string& name, const std::string& bytes) {
    if (KindOf(bytes) == Kind::kText) {
        RequireForm(TextScanner(bytes), name, bytes);
    } else {
        RequireSound(BinaryFile(bytes), name);
    }
    Read(dictionary, name, bytes);
    if (!dictionary.IsValid()) CheckWhole(name, bytes);
}

CheckedFile CheckUsable(const std::string& name, const std::string& bytes) {
    Findings findings;
    CheckedFile file = KindOf(bytes) == Kind::kText ? CheckText(name, bytes, findings)
                                                    : CheckBinary(name, bytes, findings);
    findings.ThrowIfFatal();
    return file;
}

Content Load(const std::string& name) { return Load(name, ReadInput(name)); }

Content Load(const std::string& name, const std::string& bytes) {
    Content content{name, KindOf(bytes), FormOf(bytes), {}, bytes.size(), 0, {}};
    if (content.kind != Kind::kText) {
        const Progress progress("loading", name);
        const BinaryFile file(bytes);
        RequireSound(file, name);
        // Files of version 1 have room for more than those that are written.
        if (content.kind == Kind::kVersion1) content.tooLong = CheckWhole(name, bytes);
        AddEntries(content, file);
        return content;
    }
    const TextScanner scanner(bytes);
    RequireForm(scanner, name, bytes);
    if (scanner.LongestLine() > kMostBytes / 2) content.tooLong = CheckWhole(name, bytes);
    // A compact store keeps the order of the lines, but would cut long texts.
    Dictionary dictionary(content.tooLong.empty());
    Read(dictionary, name, bytes);
    if (!dictionary.IsValid()) CheckWhole(name, bytes);
    dictionary.ForEachEntry([&](const EntryView& entry) { AddEntry(content, entry); });
    return content;
}

Content LoadChecked(const std::string& name, const std::string& bytes) {
    const Progress progress("loading", name);
    Content content{name, KindOf(bytes), FormOf(bytes), {}, bytes.size(), 0, {}};
    AddEntries(content, BinaryFile(bytes));
    return content;
}

std::string ShowName(const Entry& entry) {
    return entry.keyed ? ShowKey(entry.key) : '#' + std::to_string(entry.id);
}

}  // namespace tool
