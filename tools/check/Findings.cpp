#include "tools/check/Findings.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <tuple>

#include "tools/base/Files.h"
#include "tools/base/Json.h"

namespace tool {

namespace {

std::size_t Index(Rule rule) { return static_cast<std::size_t>(rule); }

// Findings of the whole file come last.
auto Order(const Finding& finding) {
    const Place& place = finding.place;
    return std::tuple(place.line == 0 && !place.offset.has_value(), place.line, place.column,
                      place.offset.value_or(0));
}

std::string Line(const Finding& finding, bool coloured) {
    const RuleInfo& rule = Info(finding.rule);
    static constexpr const char* kColours[] = {"\x1B[1;36m", "\x1B[1;35m", "\x1B[1;31m"};
    const std::string bold = coloured ? "\x1B[1m" : "";
    const std::string colour = coloured ? kColours[static_cast<std::size_t>(rule.severity)] : "";
    const std::string plain = coloured ? "\x1B[0m" : "";
    return bold + Show(finding.place) + ": " + colour + Name(rule.severity) + ": " + plain +
           finding.text + " [" + rule.name + "]\n";
}

std::string JsonFinding(const Finding& finding) {
    const RuleInfo& rule = Info(finding.rule);
    Json object;
    PutFile(object, "file", finding.place.file);
    if (finding.place.line != 0) {
        object["line"] = finding.place.line;
        object["column"] = finding.place.column;
        if (finding.place.endColumn != 0) object["endColumn"] = finding.place.endColumn;
    }
    if (finding.place.offset.has_value()) object["offset"] = *finding.place.offset;
    object["severity"] = Name(rule.severity);
    object["text"] = finding.text;
    object["rule"] = rule.name;
    if (finding.key.has_value()) PutKey(object, "key", *finding.key);
    if (!finding.missingFrom.empty()) PutFile(object, "missingFrom", finding.missingFrom);
    return JsonLine(object);
}

}  // namespace

std::string Show(const Place& place) {
    if (place.offset.has_value()) {
        char offset[32];
        std::snprintf(offset, sizeof offset, ":@0x%llX",
                      static_cast<unsigned long long>(*place.offset));
        return place.file + offset;
    }
    if (place.line == 0) return place.file;
    return place.file + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
}

void Findings::Add(Rule rule, Place place, std::string text, std::optional<std::string> key) {
    if (disabled[Index(rule)]) return;
    findings.push_back({rule, std::move(place), std::move(text), std::move(key)});
}

void Findings::AddMissing(Rule rule, Place place, std::string text, std::string key,
                          std::string missingFrom) {
    if (disabled[Index(rule)]) return;
    missing.push_back(
        {rule, std::move(place), std::move(text), std::move(key), std::move(missingFrom)});
}

void Findings::Remove(Rule rule, const Place& place) {
    std::erase_if(findings, [&](const Finding& finding) {
        return finding.rule == rule && finding.place.line == place.line &&
               finding.place.unit == place.unit;
    });
}

void Findings::ThrowIfFatal() const {
    for (const Finding& finding : findings) {
        if (IsFatal(finding.rule)) throw Failure(Show(finding.place) + ": " + finding.text);
    }
}

void Findings::Ignore(std::uint64_t line, const Rules& rules) { ignored.push_back({line, rules}); }

bool Findings::Ignores(std::uint64_t line, Rule rule) const {
    const auto at = std::ranges::lower_bound(ignored, line, {}, &Ignored::line);
    return at != ignored.end() && at->line == line && at->rules[Index(rule)];
}

std::vector<Finding> Findings::Take() {
    std::erase_if(findings, [this](const Finding& finding) {
        return Ignores(finding.place.line, finding.rule);
    });
    std::ranges::stable_sort(findings, {}, Order);
    std::ranges::move(missing, std::back_inserter(findings));
    return std::move(findings);
}

bool AnyAtOrAbove(const std::vector<Finding>& findings, Severity severity) {
    return std::ranges::any_of(findings, [severity](const Finding& finding) {
        return Info(finding.rule).severity >= severity;
    });
}

std::string Print(const std::vector<Finding>& findings, Format format) {
    std::string lines;
    for (const Finding& finding : findings) {
        lines += format == Format::kJson ? JsonFinding(finding)
                                         : Line(finding, format == Format::kColouredText);
    }
    return lines;
}

Findings::Rules RulesOf(const std::vector<std::string>& names) {
    Findings::Rules rules;
    for (const std::string& name : names)
        rules.set(Index(*FindRule(name)));
    return rules;
}

Format FormatOf(const std::string& name, int descriptor) {
    if (name == "json") return Format::kJson;

    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool mayColour = isatty(descriptor) != 0 && (noColour == nullptr || *noColour == '\0') &&
                           (terminal == nullptr || std::string_view(terminal) != "dumb");
    return mayColour ? Format::kColouredText : Format::kText;
}

}  // namespace tool
