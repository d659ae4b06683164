#include "tools/base/Content.h"

#include <algorithm>
#include <span>
#include <sstream>

#include "tools/base/BinaryFile.h"
#include "tools/base/Files.h"
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

// "PLACE: TEXT" of the first finding of these rules, or "".
std::string FirstOf(const std::vector<Finding>& findings, std::span<const Rule> rules) {
    for (const Finding& finding : findings) {
        if (std::ranges::find(rules, finding.rule) == rules.end()) continue;
        return Show(finding.place) + ": " + finding.text;
    }
    return {};
}

void AddEntry(Content& content, const EntryView& entry) {
    content.entries.push_back({entry.id, entry.keyed,
                               std::string(entry.key.begin(), entry.key.end()),
                               Text(entry.value.data(), entry.value.size()),
                               Text(entry.accelerator.data(), entry.accelerator.size())});
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

CheckedFile CheckUsable(const std::string& name, const std::string& bytes, Findings& findings,
                        std::string* tooLong) {
    constexpr Rule kCut[] = {Rule::kKeyLength, Rule::kValueLength};
    const bool binary = lexon_private::HasBinaryMagic(bytes.data(), bytes.size());
    // No rule about accelerators and messages prevents the use of a file.
    CheckedFile file =
        binary ? CheckBinary(name, bytes, findings) : CheckText(name, bytes, findings);
    findings.ThrowIfFatal();
    if (tooLong != nullptr) *tooLong = FirstOf(findings.Take(), kCut);
    return file;
}

Content Load(const std::string& name) { return Load(name, ReadInput(name)); }

Content Load(const std::string& name, const std::string& bytes) {
    Content content{name, KindOf(bytes), FormOf(bytes), {}, bytes.size(), 0, {}, {}};
    Findings unused;
    CheckUsable(name, bytes, unused, &content.tooLong);
    const Progress progress("loading", name);
    if (content.kind == Kind::kText) {
        // A compact store keeps the order of the lines, but would cut long texts.
        Dictionary dictionary(content.tooLong.empty());
        std::istringstream stream(bytes);
        dictionary.Read(&stream);
        dictionary.ForEachEntry([&](const EntryView& entry) { AddEntry(content, entry); });
        return content;
    }
    const BinaryFile file(bytes);
    content.locale = Utf8(UnitsOf(FromUtf8(file.Header().locale.value_or("").c_str())));
    content.idBase = file.IdBase();
    file.ForEachEntry([&](const BinaryEntry& entry) {
        if (entry.found) AddEntry(content, entry.view);
    });
    return content;
}

std::string ShowName(const Entry& entry) {
    return entry.keyed ? ShowKey(entry.key) : '#' + std::to_string(entry.id);
}

}  // namespace tool
