#include "tools/check/Formats.h"

#include "tools/base/Json.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace tool {

namespace {

Json SarifRules() {
    Json rules = Json::array();
    for (const RuleInfo& rule : AllRules()) {
        rules.push_back({{"id", rule.name},
                         {"shortDescription", {{"text", rule.help}}},
                         {"help", {{"text", rule.help}}},
                         {"defaultConfiguration", {{"level", Name(rule.severity)}}}});
    }
    return rules;
}

std::string SarifUri(const std::string& file) {
    return (file.starts_with('/') ? "file://" : "") + UriOf(file);
}

// Null for a place that is a whole file.
Json SarifRegion(const Place& place) {
    if (place.offset.has_value()) return {{"byteOffset", *place.offset}};
    if (place.line == 0) return nullptr;
    // Places without units are those of sources and of the end of a file.
    const bool hasUnits = place.endUnit != 0;
    Json region{{"startLine", place.line}};
    if (place.column != 0) region["startColumn"] = hasUnits ? place.unit + 1 : place.column;
    if (place.endColumn != 0) region["endColumn"] = hasUnits ? place.endUnit + 1 : place.endColumn;
    return region;
}

Json SarifResult(const Finding& finding) {
    const RuleInfo& rule = Info(finding.rule);
    Json place{{"artifactLocation", {{"uri", SarifUri(finding.place.file)}}}};
    if (Json region = SarifRegion(finding.place); !region.is_null()) {
        place["region"] = std::move(region);
    }
    Json result{{"ruleId", rule.name},
                {"ruleIndex", static_cast<std::size_t>(finding.rule)},
                {"level", Name(rule.severity)},
                {"message", {{"text", finding.text}}}};
    result["locations"] = Json::array({Json{{"physicalLocation", std::move(place)}}});
    Json properties;
    if (finding.key.has_value()) PutKey(properties, "key", *finding.key);
    if (!finding.missingFrom.empty()) properties["missingFrom"] = SarifUri(finding.missingFrom);
    if (!properties.is_null()) result["properties"] = std::move(properties);
    return result;
}

// Escaped for workflow commands: "%" and line ends in the text; in properties also the separators.
std::string GithubEscaped(const std::string& text, bool isProperty) {
    std::string escaped;
    for (const char c : text) {
        if (c == '%') {
            escaped += "%25";
        } else if (c == '\r') {
            escaped += "%0D";
        } else if (c == '\n') {
            escaped += "%0A";
        } else if (c == ':' && isProperty) {
            escaped += "%3A";
        } else if (c == ',' && isProperty) {
            escaped += "%2C";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string GithubCommand(const Finding& finding) {
    static constexpr const char* kCommands[] = {"::notice", "::warning", "::error"};
    const RuleInfo& rule = Info(finding.rule);
    const Place& place = finding.place;
    std::string line = kCommands[static_cast<std::size_t>(rule.severity)];
    line += " file=" + GithubEscaped(place.file, true);
    if (place.line != 0) line += ",line=" + std::to_string(place.line);
    if (place.line != 0 && place.column != 0) line += ",col=" + std::to_string(place.column);
    line += std::string(",title=") + rule.name + "::";
    // Workflow commands have no property for a byte of a file.
    if (place.offset.has_value()) line += "byte " + std::to_string(*place.offset) + ": ";
    return line + GithubEscaped(finding.text, false) + '\n';
}

}  // namespace

std::string SarifLog(const std::vector<Finding>& findings, bool complete) {
    Json results = Json::array();
    for (const Finding& finding : findings)
        results.push_back(SarifResult(finding));
    Json driver{{"name", "wordlex"}, {"version", WLLibraryVersion()}, {"rules", SarifRules()}};
    Json run{{"tool", {{"driver", std::move(driver)}}}};
    run["invocations"] = Json::array({Json{{"executionSuccessful", complete}}});
    run["columnKind"] = "utf16CodeUnits";
    run["results"] = std::move(results);
    Json log{{"$schema",
              "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
              "sarif-schema-2.1.0.json"},
             {"version", "2.1.0"}};
    log["runs"] = Json::array({std::move(run)});
    return JsonLine(log);
}

std::string GithubCommands(const std::vector<Finding>& findings) {
    std::string lines;
    for (const Finding& finding : findings)
        lines += GithubCommand(finding);
    return lines;
}

}  // namespace tool
