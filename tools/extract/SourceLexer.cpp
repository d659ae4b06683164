#include "tools/extract/SourceLexer.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "tools/base/Annotations.h"
#include "tools/base/Files.h"
#include "tools/base/Text.h"

namespace tool {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool IsNamePart(char c) { return IsNameStart(c) || IsDigit(c); }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

// The value of a digit in bases up to 16, or 16.
unsigned DigitValue(char c) {
    if (IsDigit(c)) return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    return 16;
}

// Resolves the escapes of one literal. Numeric escapes are bytes, or units of a wide literal.
class LiteralDecoder {
public:
    explicit LiteralDecoder(bool isWide) : wide(isWide) {}

    // False for invalid text.
    bool Decode(std::string_view body, std::vector<unsigned short>& units) {
        into = &units;
        for (rest = body; !rest.empty();) {
            if (Take() != '\\') {
                bytes += taken;
            } else if (rest.empty() || !DecodeEscape()) {
                return false;
            }
        }
        return Flush();
    }
    bool DecodeRaw(std::string_view body, std::vector<unsigned short>& units) {
        into = &units;
        bytes = body;
        return Flush();
    }

private:
    char Take() {
        taken = rest.front();
        rest.remove_prefix(1);
        return taken;
    }

    bool DecodeEscape() {
        static constexpr std::string_view kLetters = "abfnrtve";
        static constexpr std::string_view kMeant = "\a\b\f\n\r\t\v\x1B";
        const char c = Take();
        if (const auto at = kLetters.find(c); at != kLetters.npos) {
            bytes += kMeant[at];
            return true;
        }
        constexpr std::size_t kAnyCount = 99;
        if (c == 'x') return AddUnit(Number(16, kAnyCount, false));
        if (c == 'o') return rest.starts_with('{') && AddUnit(Number(8, kAnyCount, true));
        if (c == 'u' || c == 'U') return AddCharacter(Number(16, c == 'u' ? 4 : 8, true));
        if (c == 'N') return false;  // names of characters are unknown here
        if (DigitValue(c) < 8) {
            rest = {rest.data() - 1, rest.size() + 1};
            return AddUnit(Number(8, 3, false));
        }
        bytes += c;  // itself; compilers accept an unknown one, too
        return true;
    }

    // A number in digits, or any number of digits in braces. Nothing without digits, or with fewer
    // than `count` when `all` are needed.
    std::optional<char32_t> Number(unsigned base, std::size_t count, bool all) {
        const bool braced = rest.starts_with('{');
        if (braced) rest.remove_prefix(1);
        char32_t number = 0;
        std::size_t digits = 0;
        while (!rest.empty() && (braced || digits < count) && DigitValue(rest.front()) < base) {
            number = number * base + DigitValue(Take());
            if (number > kLastCodePoint) return std::nullopt;
            ++digits;
        }
        if (digits == 0 || (all && !braced && digits < count)) return std::nullopt;
        if (braced && (rest.empty() || Take() != '}')) return std::nullopt;
        return number;
    }

    bool AddCharacter(std::optional<char32_t> code) {
        if (!code.has_value() || (*code >= 0xD800 && *code < 0xE000)) return false;
        AppendUtf8(bytes, *code);
        return true;
    }

    bool AddUnit(std::optional<char32_t> number) {
        if (!number.has_value()) return false;
        if (!wide) {
            bytes += static_cast<char>(static_cast<unsigned char>(*number));
            return *number < 0x100;
        }
        if (*number > 0xFFFF) return AddCharacter(number);
        if (!Flush()) return false;
        into->push_back(static_cast<unsigned short>(*number));
        return true;
    }

    bool Flush() {
        const Text text = FromUtf8(bytes);
        const Units units = UnitsOf(text);
        into->insert(into->end(), units.begin(), units.end());
        const bool isText = bytes.empty() || !units.empty();
        bytes.clear();
        return isText;
    }

    bool wide;
    std::string_view rest;
    char taken = '\0';
    std::string bytes;  // UTF-8 that is not converted yet
    std::vector<unsigned short>* into = nullptr;
};

// For bytes that are not converted.
bool BeginsLikeKey(std::string_view body) {
    return body.substr(body.starts_with('(') ? 1 : 0).starts_with("$$$/");
}

class Lexer {
public:
    Lexer(const std::string& fileName, std::string_view bytes) : name(fileName), source(bytes) {
        if (source.starts_with("\xFF\xFE") || source.starts_with("\xFE\xFF")) {
            throw Failure(name + ": a source in UTF-16; save it as UTF-8");
        }
        if (source.starts_with(kUtf8Mark)) at = kUtf8Mark.size();
    }

    std::vector<SourceLiteral> Run() {
        while (!AtEnd())
            ReadToken();
        skipping = false;
        Finish();
        for (SourceLiteral& literal : literals)
            literal.ignored = std::ranges::binary_search(ignoredLines, literal.place.line);
        return std::move(literals);
    }

private:
    // Characters, without the continuations of lines.

    // The length of a line continuation at an offset: a backslash and the line end, possibly with
    // blanks between them.
    std::size_t SpliceAt(std::size_t from) const {
        if (from >= source.size() || source[from] != '\\') return 0;
        std::size_t end = from + 1;
        while (end < source.size() && IsBlank(source[end]))
            ++end;
        if (end < source.size() && source[end] == '\r') ++end;
        if (end < source.size() && source[end] == '\n') return end + 1 - from;
        return end != from + 1 && source[end - 1] == '\r' ? end - from : 0;
    }
    bool AtEnd() { return Peek() == '\0' && at >= source.size(); }
    char Peek() {
        while (const std::size_t splice = SpliceAt(at))
            at += splice;
        return at < source.size() ? source[at] : '\0';
    }
    char PeekSecond() {
        Peek();
        std::size_t next = at + 1;
        while (const std::size_t splice = SpliceAt(next))
            next += splice;
        return next < source.size() ? source[next] : '\0';
    }
    char Take() {
        const char c = Peek();
        if (at < source.size()) ++at;
        return c;
    }
    bool AtLineEnd() {
        const char c = Peek();
        return c == '\n' || c == '\r' || AtEnd();
    }

    // Tokens

    void ReadToken() {
        const char c = Peek();
        if (c == '\n' || c == '\r') {
            Take();
            if (inDirective) Finish();
            inDirective = false;
            atLineStart = true;
        } else if (IsBlank(c)) {
            Take();
        } else if (c == '/' && (PeekSecond() == '/' || PeekSecond() == '*')) {
            PassComment();
        } else if (c == '#' && atLineStart && !inDirective) {
            ReadDirective();
        } else {
            atLineStart = false;
            ReadPlainToken(c);
        }
    }

    void ReadPlainToken(char c) {
        if (c == '"') {
            ReadString(false);
        } else if (c == '\'') {
            PassCharacter();
        } else if (IsNameStart(c)) {
            ReadName();
        } else if (IsDigit(c) || (c == '.' && IsDigit(PeekSecond()))) {
            PassNumber();
        } else {
            Take();
            if (c != '@') Finish();  // which begins a string of Objective-C
        }
    }

    void PassComment() {
        const std::size_t begin = at;
        Take();
        if (Take() == '/') {
            while (!AtLineEnd())
                Take();
        } else {
            while (!AtEnd()) {
                if (Take() == '*' && Peek() == '/') break;
            }
            Take();
        }
        const std::string_view comment = source.substr(begin, at - begin);
        if (comment.find("wordlex:") == comment.npos) return;
        const auto ignored = ParseAnnotations(comment).ignored;
        const char* const rule = Info(Rule::kUnextractedKey).name;
        if (std::ranges::find(ignored, rule, &Annotations::Rule::name) != ignored.end()) {
            // A comment on a line of its own is about the next line.
            ignoredLines.push_back(atLineStart ? PlaceOf(at).line + 1 : PlaceOf(begin).line);
        }
    }

    std::string TakeName() {
        std::string taken;
        while (IsNamePart(Peek()))
            taken += Take();
        return taken;
    }

    void ReadName() {
        const std::string word = TakeName();
        const bool isWide = word == "L" || word == "u" || word == "U";
        const bool isPrefix = isWide || word == "u8";
        if (Peek() == '"') {
            if (isPrefix) return ReadString(isWide);
            if (word == "R" || word == "u8R") return ReadRawString(false);
            if (word == "LR" || word == "uR" || word == "UR") return ReadRawString(true);
        }
        if (Peek() == '\'' && isPrefix) return PassCharacter();
        if (skipping) return;
        if (!between.empty()) Finish();
        if (!pieces.text.empty()) between = word;
    }

    // A number with its digit separators, suffix and exponent.
    void PassNumber() {
        Finish();
        for (;;) {
            const char c = Take();
            const char next = Peek();
            const bool isExponent = c == 'e' || c == 'E' || c == 'p' || c == 'P';
            const bool goesOn = IsNamePart(next) || next == '.' ||
                                (next == '\'' && IsNamePart(PeekSecond())) ||
                                (isExponent && (next == '+' || next == '-'));
            if (!goesOn) return;
        }
    }

    void PassCharacter() {
        Finish();
        Take();
        while (!AtLineEnd()) {
            const char c = Take();
            if (c == '\'') return;
            if (c == '\\' && !AtLineEnd()) Take();
        }
    }

    void ReadString(bool wide) {
        Peek();
        const std::size_t opening = at;
        Take();
        std::string body;
        for (;;) {
            if (AtLineEnd()) return Finish();  // not closed; no compiler accepts it
            const char c = Take();
            if (c == '"') break;
            body += c;
            if (c == '\\' && !AtLineEnd()) body += Take();
        }
        Add(opening, body, wide, false);
    }

    void ReadRawString(bool wide) {
        constexpr std::size_t kLongestDelimiter = 16;
        Peek();
        const std::size_t opening = at;
        const std::size_t parenthesis = source.find_first_of("()\\ \t\v\f\r\n\"", opening + 1);
        if (parenthesis == source.npos || source[parenthesis] != '(' ||
            parenthesis - opening - 1 > kLongestDelimiter) {
            return ReadString(wide);
        }
        std::string end(1, ')');
        end.append(source, opening + 1, parenthesis - opening - 1);
        end += '"';
        const std::size_t close = source.find(end, parenthesis + 1);
        if (close == source.npos) {
            at = source.size();
            return;
        }
        std::string body(source.substr(parenthesis + 1, close - parenthesis - 1));
        // For the compiler, a line of the source ends with LF.
        for (std::size_t cr = 0; (cr = body.find("\r\n", cr)) != body.npos;)
            body.erase(cr, 1);
        at = close + end.size();
        Add(opening, body, wide, true);
    }

    // Joining

    void Add(std::size_t opening, std::string_view body, bool wide, bool raw) {
        const std::size_t end = at;
        PassSuffix();
        if (skipping) return;
        const bool joins = !pieces.text.empty();
        if (!joins) start = opening;
        if (joins && AsksForText()) {
            if (!between.empty()) {
                Fail(opening, "the text continues after the macro " + between +
                                  ", which is not expanded here; write the text in one literal");
            }
            if (acrossCondition) {
                Fail(opening, "a condition changes the text; write a whole literal for each case");
            }
        } else if (!between.empty()) {
            Finish();
            start = opening;
        }
        LiteralDecoder decoder(wide);
        std::vector<unsigned short> text;
        const bool isText = raw ? decoder.DecodeRaw(body, text) : decoder.Decode(body, text);
        pieces.text.insert(pieces.text.end(), text.begin(), text.end());
        if (!isText && (AsksForText() || BeginsLikeKey(body))) {
            Fail(opening, "the literal cannot be read as text; write it in UTF-8");
        }
        pieces.end = end;
        between = pendingSuffix;
        pendingSuffix.clear();
        acrossCondition = false;
    }

    // A literal operator's name right after the mark. Any other name is a macro.
    void PassSuffix() {
        if (!IsNameStart(Peek())) return;
        const std::size_t before = at;
        const std::string suffix = TakeName();
        const bool isOperator = suffix[0] == '_' || suffix == "s" || suffix == "sv";
        if (isOperator) return;
        if (Peek() == '"' || Peek() == '\'') {
            at = before;  // the prefix of the next literal, or a macro
        } else {
            pendingSuffix = suffix;
        }
    }

    bool AsksForText() const {
        constexpr std::u16string_view kBegin = u"$$$/";
        Units text = pieces.text;
        if (!text.empty() && text[0] == u'(') text = text.subspan(1);
        return text.size() >= kBegin.size() &&
               std::ranges::equal(text.first(kBegin.size()), kBegin);
    }

    // Ends a literal: what follows is not joined to it.
    void Finish() {
        if (skipping) return;
        if (AsksForText()) {
            const auto zero = std::ranges::find(pieces.text, u'\0');
            pieces.text.erase(zero, pieces.text.end());
            pieces.place = PlaceOf(start);
            pieces.begin = start;
            literals.push_back(std::move(pieces));
        }
        pieces = {};
        between.clear();
        acrossCondition = false;
    }

    // Directives

    enum class Truth { kFalse, kTrue, kUnknown };
    struct Condition {
        bool skippedAround;  // the group around the #if is skipped
        bool decided;        // an earlier branch is certainly taken
        bool unknown;        // whether a branch is taken depends on macros
    };

    void ReadDirective() {
        Take();
        PassBlanks();
        const std::string directive = TakeName();
        if (directive == "define") {
            Finish();
            inDirective = true;  // its body is read like other text
            atLineStart = false;
            return;
        }
        const std::string rest = TakeRestOfLine();
        if (directive == "if") {
            Open(TruthOf(rest));
        } else if (directive == "ifdef" || directive == "ifndef") {
            Open(Truth::kUnknown);
        } else if (conditions.empty()) {
            return;
        } else if (directive.starts_with("elif")) {
            Branch(directive == "elif" ? TruthOf(rest) : Truth::kUnknown);
        } else if (directive == "else") {
            Branch(Truth::kTrue);
        } else if (directive == "endif") {
            Mark();
            skipping = conditions.back().skippedAround;
            conditions.pop_back();
        }
    }

    // Marks that a condition begins or ends after what is joined so far.
    void Mark() {
        const Condition& condition = conditions.back();
        acrossCondition = acrossCondition || (condition.unknown && !condition.skippedAround);
    }

    void Open(Truth truth) {
        conditions.push_back({skipping, truth == Truth::kTrue, truth == Truth::kUnknown});
        Mark();
        skipping = skipping || truth == Truth::kFalse;
    }

    void Branch(Truth truth) {
        Condition& condition = conditions.back();
        skipping = condition.skippedAround || condition.decided || truth == Truth::kFalse;
        condition.unknown = condition.unknown || (!condition.decided && truth == Truth::kUnknown);
        condition.decided = condition.decided || truth == Truth::kTrue;
        Mark();
    }

    // Of a constant, including "!" and parentheses around it.
    static Truth TruthOf(std::string_view text) {
        if (text.starts_with('!')) {
            const Truth inner = TruthOf(text.substr(1));
            return inner == Truth::kTrue    ? Truth::kFalse
                   : inner == Truth::kFalse ? Truth::kTrue
                                            : Truth::kUnknown;
        }
        if (text.starts_with('(') && text.ends_with(')')) {
            return TruthOf(text.substr(1, text.size() - 2));
        }
        if (text == "true") return Truth::kTrue;
        if (text == "false") return Truth::kFalse;
        if (text.empty() || !std::ranges::all_of(text, IsDigit)) return Truth::kUnknown;
        const bool isZero = std::ranges::all_of(text, [](char c) { return c == '0'; });
        return isZero ? Truth::kFalse : Truth::kTrue;
    }

    void PassBlanks() {
        while (IsBlank(Peek()) || (Peek() == '/' && PeekSecond() == '*')) {
            if (Peek() == '/') {
                PassComment();
            } else {
                Take();
            }
        }
    }

    // Without blanks and comments.
    std::string TakeRestOfLine() {
        std::string rest;
        while (!AtLineEnd()) {
            const char c = Peek();
            if (c == '/' && (PeekSecond() == '/' || PeekSecond() == '*')) {
                PassComment();
            } else if (c == '"') {  // a comment mark inside does not count
                do {
                    rest += Take();
                } while (!AtLineEnd() && Peek() != '"');
                if (!AtLineEnd()) rest += Take();
            } else {
                if (!IsBlank(c)) rest += c;
                Take();
            }
        }
        return rest;
    }

    // Places

    // Offsets ascend, except for faults.
    Place PlaceOf(std::size_t offset) {
        if (offset < counted) {
            counted = 0;
            line = column = 1;
        }
        if (counted == 0 && source.starts_with(kUtf8Mark)) counted = kUtf8Mark.size();
        for (; counted < offset; ++counted) {
            const char c = source[counted];
            if (c == '\n' || (c == '\r' && source.substr(counted + 1, 1) != "\n")) {
                ++line;
                column = 1;
            } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
                ++column;
            }
        }
        return {name, line, column};
    }

    [[noreturn]] void Fail(std::size_t offset, const std::string& why) {
        throw Failure(Show(PlaceOf(offset)) + ": " + why);
    }

    const std::string& name;
    std::string_view source;
    std::size_t at = 0;
    bool atLineStart = true;
    bool inDirective = false;
    bool skipping = false;
    std::vector<Condition> conditions;

    SourceLiteral pieces;          // joined so far
    std::size_t start = 0;         // where they begin
    std::string between;           // a name after them, which joins them to more if it is a macro
    std::string pendingSuffix;     // of the literal that is being added
    bool acrossCondition = false;  // a condition begins, changes or ends after them
    std::vector<SourceLiteral> literals;
    std::vector<std::uint64_t> ignoredLines;  // ascending

    std::size_t counted = 0;  // the offset of `line` and `column`
    std::uint64_t line = 1;
    std::uint64_t column = 1;
};

}  // namespace

std::vector<SourceLiteral> FindLiterals(const std::string& name, const std::string& bytes) {
    return Lexer(name, bytes).Run();
}

}  // namespace tool
