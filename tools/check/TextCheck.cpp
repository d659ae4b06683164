#include "tools/check/TextCheck.h"

#include <algorithm>

#include "tools/base/Progress.h"
#include "tools/check/LineCheck.h"

namespace tool {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::size_t kUtf16MarkSize = 2;
constexpr std::size_t kLookedAt = 512;

// Whether 8-bit text is UTF-16 that lacks its mark: its first pair of bytes is an ASCII character,
// or in its first half kilobyte most of every other byte is zero, and hardly one of those between
// them.
bool LooksLikeUtf16(std::string_view bytes) {
    bytes = bytes.substr(0, std::min(kLookedAt, bytes.size() / 2 * 2));
    if (bytes.empty()) return false;
    const auto isAscii = [](unsigned char c) { return c != 0 && c < 0x80; };
    const auto first = static_cast<unsigned char>(bytes[0]);
    const auto second = static_cast<unsigned char>(bytes[1]);
    if ((first == 0 && isAscii(second)) || (isAscii(first) && second == 0)) return true;
    std::size_t zeros[2] = {};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0') ++zeros[i % 2];
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return 8 * few < many && 4 * many > bytes.size();
}

// Whether text after the mark of UTF-16 is 8-bit text: UTF-16 has a zero byte in each ASCII
// character, such as the quotation marks of the first entries.
bool IsEightBit(std::string_view bytes) {
    const std::string_view head = bytes.substr(0, kLookedAt);
    return head.find('"') != std::string_view::npos && head.find('\0') == std::string_view::npos;
}

void CheckEnd(const TextScanner& scanner, const std::string& name, Findings& findings) {
    const TextScanner::End end = scanner.AtEnd();
    const Place place{name, end.line, end.column, end.column};
    const std::string left = std::to_string(end.bytesLeft);
    if (end.byZero) {
        findings.Add(
            Rule::kZero, place,
            "a zero ends the file here; the loader does not read the " + left + " bytes after it");
    } else if (end.bytesLeft != 0) {
        findings.Add(Rule::kOddByte, place, "UTF-16 with an odd byte at its end, which is dropped");
    }
}

}  // namespace

bool CheckForm(const TextScanner& scanner, const std::string& name, const std::string& bytes,
               Findings& findings) {
    if (scanner.IsUtf16() && IsEightBit(std::string_view(bytes).substr(kUtf16MarkSize))) {
        findings.Add(Rule::kFalseUtf16Mark, {name, 1, 1},
                     "a UTF-16 mark before 8-bit text: the loader reads the file as UTF-16 and "
                     "finds none of its entries");
        return false;
    }
    if (!scanner.IsUtf16() && LooksLikeUtf16(bytes)) {
        findings.Add(Rule::kUtf16WithoutMark, {name, 1, 1},
                     "UTF-16 without its byte-order mark: the loader reads it as 8-bit text and "
                     "stops at its first zero byte");
        return false;
    }
    return true;
}

CheckedFile CheckText(const std::string& name, const std::string& bytes, Findings& findings) {
    CheckedFile file{.name = name};
    Progress progress("checking", name, bytes.size());
    TextScanner scanner(bytes);
    file.usable = CheckForm(scanner, name, bytes, findings);
    if (!file.usable) return file;
    if (bytes.starts_with(kUtf8Mark)) {
        findings.Add(Rule::kUtf8Mark, {name, 1, 1},
                     "a UTF-8 mark, which the loader takes for text of the first line");
    }
    LineCheck lines(scanner, file, findings);
    while (scanner.Next()) {
        lines.Check();
        progress.Reach(scanner.Offset());
    }
    CheckEnd(scanner, name, findings);
    file.endsEarly = scanner.AtEnd().byZero;
    return file;
}

}  // namespace tool
