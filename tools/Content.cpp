#include "tools/Content.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "tools/Files.h"
#include "tools/TextScanner.h"
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

}  // namespace

Kind KindOf(const std::string& bytes) {
    if (!lexon_private::HasBinaryMagic(bytes.data(), bytes.size())) return Kind::kText;
    return HeaderOf(bytes).body == BinaryHeader::Body::kVersion2 ? Kind::kVersion2
                                                                 : Kind::kVersion1;
}

void Read(Dictionary& dictionary, const std::string& name, const std::string& bytes) {
    const Progress progress("loading", name);
    std::istringstream stream(bytes);
    dictionary.Read(&stream);
}

CheckedFile CheckUsable(const std::string& name, const std::string& bytes, Findings& findings) {
    constexpr Rule kFatal[] = {Rule::kMalformedBinary, Rule::kUtf16WithoutMark, Rule::kDollarKey,
                               Rule::kKeyLength, Rule::kValueLength};
    CheckedFile file = CheckFile(name, bytes, findings);
    for (const Finding& finding : findings.Take()) {
        if (std::ranges::find(kFatal, finding.rule) == std::end(kFatal)) continue;
        throw Failure(Show(finding.place) + ": " + finding.text);
    }
    return file;
}

Content Load(const std::string& name) { return Load(name, ReadInput(name)); }

Content Load(const std::string& name, const std::string& bytes) {
    Findings unused;
    CheckUsable(name, bytes, unused);
    const Kind kind = KindOf(bytes);
    // A compact store keeps the order of the lines.
    Dictionary dictionary(kind == Kind::kText);
    Read(dictionary, name, bytes);

    Content content{name,         kind, FormOf(bytes), Utf8(UnitsOf(dictionary.Locale())),
                    bytes.size(), {}};
    std::set<std::string> keys;
    dictionary.ForEachEntry([&](const EntryView& entry) {
        std::string key(entry.key.begin(), entry.key.end());
        if (entry.keyed && !keys.insert(key).second) return;
        content.entries.push_back({entry.id, entry.keyed, std::move(key),
                                   Text(entry.value.data(), entry.value.size()),
                                   Text(entry.accelerator.data(), entry.accelerator.size())});
    });
    return content;
}

std::string ShowName(const Entry& entry) {
    return entry.keyed ? ShowKey(entry.key) : '#' + std::to_string(entry.id);
}

}  // namespace tool
