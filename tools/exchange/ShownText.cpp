#include "tools/exchange/ShownText.h"

#include <algorithm>

#include "tools/base/EntryLine.h"
#include "wordlex/functionality/Escapes.h"

namespace tool {

namespace {

using lexon_private::Escapes;
using Written = std::vector<unsigned short>;

bool IsDigit(unsigned short unit) { return unit >= u'0' && unit <= u'9'; }

struct Entity {
    std::size_t length = 0;  // 0: no entity
    bool isWord = false;     // is more than a character
    unsigned short character = 0;
};

Entity EntityAt(Units text) {
    constexpr std::size_t kOpening = 2;
    if (text.size() <= kOpening || text[0] != u'#' || text[1] != u'{') return {};
    const Units rest = text.subspan(kOpening);
    unsigned long number = 0;
    unsigned long consumed = 0;
    const auto* const named = Escapes::FindName(rest);
    if (named != nullptr) {
        number = named->codePoint;
        consumed = named->length;
    } else if (Escapes::FindNumber(rest, number, consumed) == nullptr) {
        return {};
    }
    if (consumed >= rest.size() || rest[consumed] != u'}') return {};
    return {kOpening + consumed + 1, named != nullptr && named->codePoint == 0,
            static_cast<unsigned short>(number)};
}

// The first pass of the conversion: '\' and '^'.
Written ResolveUnitEscapes(Units written) {
    Written text;
    text.reserve(written.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
        const unsigned short escape = written[i];
        text.push_back(escape);
        if ((escape != u'\\' && escape != u'^') || i + 1 == written.size()) continue;
        const unsigned short unit = written[++i];
        const unsigned short replacement =
            Escapes::Lookup(escape == u'\\' ? Escapes::Backslash() : Escapes::Hat(), unit);
        if (replacement != 0) {
            text.back() = replacement;
        } else if (unit != escape) {
            text.push_back(unit);
        }
    }
    return text;
}

// The length of the parameter tag at the start of the text, or 0. The form is that of
// Wordlex::BackDoorParamSubstitute.
std::size_t TagLength(Units text) {
    std::size_t at = 0;
    const auto skip = [&](std::string_view word) {
        if (text.size() - at < word.size()) return false;
        if (!std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at))) {
            return false;
        }
        at += word.size();
        return true;
    };
    const auto skipBlanks = [&] {
        while (at < text.size() && text[at] == u' ')
            ++at;
        return true;
    };
    if (!(skip("<") && skipBlanks() && skip("param") && skipBlanks() && skip("name") &&
          skipBlanks() && skip("=") && skipBlanks() && skip("\""))) {
        return 0;
    }
    while (at < text.size() && text[at] != u'"')
        ++at;
    return skip("\"") && skipBlanks() && skip("/>") ? at : 0;
}

// The length of the code at the start of the shown text, or 0.
std::size_t CodeLength(Units shown) {
    switch (shown[0]) {
        case u'\n':
        case u'\t':
            return 1;
        case u'^':
            return shown.size() > 1 && IsDigit(shown[1]) ? 2 : 0;
        case u'#':
            return EntityAt(shown).length;
        case u'<':
            return TagLength(shown);
        default:
            return 0;
    }
}

// Whether the unit begins no escape and is one that an editor shows. Not all that do are among
// them.
bool StandsForItself(unsigned short unit) {
    const bool isLetter = (unit >= 0x20 && unit < 0x7F) || (unit >= 0xA0 && unit < 0x2000);
    return isLetter && unit != u'\\' && unit != u'^' && unit != u'#';
}

}  // namespace

std::size_t EntityLength(Units text) { return EntityAt(text).length; }

std::string ShownText(Units written) {
    if (std::ranges::all_of(written, StandsForItself)) return Utf8(written);
    const Written once = ResolveUnitEscapes(written);
    Written text;
    std::vector<bool> isWord;  // of the units of `text`
    for (std::size_t i = 0; i < once.size();) {
        const Entity entity = EntityAt(Units(once).subspan(i));
        if (entity.isWord) {
            text.insert(text.end(), once.begin() + static_cast<std::ptrdiff_t>(i),
                        once.begin() + static_cast<std::ptrdiff_t>(i + entity.length));
        } else {
            text.push_back(entity.length != 0 ? entity.character : once[i]);
        }
        isWord.resize(text.size(), entity.isWord);
        i += std::max<std::size_t>(entity.length, 1);
    }
    Written shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned short unit = text[i];
        const bool opensEntity =
            unit == u'#' && !isWord[i] && i + 1 < text.size() && text[i + 1] == u'{';
        const bool isHidden = IsHidden(text, i) && unit != u'\n' && unit != u'\t';
        if (opensEntity || isHidden) {
            const std::string number = "#{" + CodePoint(unit) + "}";
            shown.insert(shown.end(), number.begin(), number.end());
        } else {
            shown.push_back(unit);
        }
    }
    return Utf8(shown);
}

Written WrittenText(std::string_view shown) {
    const Text text = FromUtf8(shown);
    const Units units = UnitsOf(text);
    Written written;
    std::size_t plain = 0;  // where the text since the last entity begins
    for (std::size_t i = 0; i < units.size();) {
        const std::size_t length = units[i] == u'#' ? EntityLength(units.subspan(i)) : 0;
        if (length == 0) {
            ++i;
            continue;
        }
        AppendValue(written, units.subspan(plain, i - plain));
        const Units code = units.subspan(i, length);
        const unsigned short character = EntityAt(code).character;
        if (character == u'\b' || character == u'\r') {
            AppendValue(written, Units(&character, 1));  // has an escape of its own
        } else {
            written.insert(written.end(), code.begin(), code.end());
        }
        plain = i += length;
    }
    AppendValue(written, units.subspan(plain));
    return written;
}

std::string ShownKey(std::string_view key) {
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
    if (std::ranges::all_of(key, isPlain)) return std::string(key);
    const std::string quoted = ShowKey(key);
    return quoted.substr(1, quoted.size() - 2);
}

std::vector<Piece> SplitCodes(std::string_view shown) {
    const Text text = FromUtf8(shown);
    const Units units = UnitsOf(text);
    std::vector<Piece> pieces;
    std::size_t plain = 0;
    const auto addText = [&](std::size_t end) {
        if (plain != end) pieces.push_back({false, Utf8(units.subspan(plain, end - plain))});
    };
    for (std::size_t i = 0; i < units.size();) {
        const std::size_t length = CodeLength(units.subspan(i));
        if (length == 0) {
            ++i;
            continue;
        }
        addText(i);
        pieces.push_back({true, Utf8(units.subspan(i, length))});
        plain = i += length;
    }
    addText(units.size());
    return pieces;
}

std::string NameOfCode(const std::string& code) {
    if (code == "\n") return "\\n";
    return code == "\t" ? "\\t" : code;
}

std::optional<std::string> CodeOfName(const std::string& name) {
    if (name == "\\n") return "\n";
    if (name == "\\t") return "\t";
    const std::vector<Piece> pieces = SplitCodes(name);
    if (pieces.size() != 1 || !pieces.front().isCode) return std::nullopt;
    return name;
}

}  // namespace tool
