#include "app/frontend/Project.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

#include "app/frontend/Texts.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"
#include "host/vexacore/Xml.h"

namespace frontend {
namespace {

using vexacore::UTF16String;
using vexacore::xml::Attributes;
using Kind = OutlineLine::Kind;

constexpr const char16_t* kProjectNamespace = u"urn:norvale:framewright:project";
constexpr const char16_t* kMediaNamespace = u"urn:norvale:framewright:media";
constexpr std::size_t kMostSecondDigits = 9;  // so that sums fit any number of clips

UTF16String WithSingleSpaces(const UTF16String& text) {
    constexpr const char16_t* kSpaces = u" \t\r\n";
    UTF16String result;
    for (auto begin = text.find_first_not_of(kSpaces); begin != text.npos;) {
        const auto end = text.find_first_of(kSpaces, begin);
        if (!result.empty()) result += u' ';
        result.append(text, begin, end == text.npos ? end : end - begin);
        begin = text.find_first_not_of(kSpaces, end);
    }
    return result;
}

UTF16String ValueOf(const UTF16String& name, const Attributes& attributes) {
    for (const auto& attribute : attributes) {
        if (attribute.qualifiedName == name) return attribute.value;
    }
    return {};
}

long SecondsOf(const Attributes& attributes) {
    const auto digits = ValueOf(u"seconds", attributes);
    long seconds = 0;
    const bool valid = digits.size() <= kMostSecondDigits && FromUTF16(digits).ToInteger(seconds);
    return valid && seconds > 0 ? seconds : 0;
}

// Fills a project while its document is parsed.
// Owns:     nothing; the project outlives the parse.
class ProjectHandler final : public vexacore::xml::AbstractParseHandler {
public:
    explicit ProjectHandler(Project& target) : project(target) {}

    void StartElement(const UTF16String& qualifiedName, const UTF16String& namespaceUri,
                      const UTF16String& localName, const Attributes& attributes) override {
        FlushText();
        if (depth == 0) {
            project.name = ValueOf(u"name", attributes);
            project.author = ValueOf(u"author", attributes);
        }
        Count(namespaceUri, localName, attributes);
        UTF16String line = qualifiedName;
        for (const auto& attribute : attributes) {
            line += u' ' + attribute.qualifiedName + u"=\"" + attribute.value + u'"';
        }
        AddLine(Kind::kElement, std::move(line));
        ++depth;
    }
    void EndElement(const UTF16String&, const UTF16String&, const UTF16String&) override {
        FlushText();
        --depth;
    }
    void StartCDATA() override { FlushText(); }
    void EndCDATA() override { AddLine(Kind::kVerbatim, std::exchange(text, {})); }
    void Characters(const UTF16String& more) override { text += more; }
    void Comment(const UTF16String& comment) override {
        FlushText();
        ++project.comments;
        AddLine(Kind::kComment, WithSingleSpaces(comment));
    }
    void StartPrefixMapping(const UTF16String& prefix, const UTF16String& uri) override {
        FlushText();
        AddLine(Kind::kNamespace, uri, prefix);
    }
    void StartDocument() override {}
    void EndDocument() override {}
    void EndPrefixMapping(const UTF16String&) override {}
    // For parsers without namespaces, which the application does not install.
    void StartElement(const UTF16String& name, const Attributes& attributes) override {
        StartElement(name, {}, name, attributes);
    }
    void EndElement(const UTF16String& name) override { EndElement(name, {}, name); }

private:
    void Count(const UTF16String& namespaceUri, const UTF16String& localName,
               const Attributes& attributes) {
        ++project.elements;
        project.attributes += static_cast<long>(attributes.size());
        if (namespaceUri == kProjectNamespace && localName == u"track") ++project.tracks;
        if (namespaceUri == kMediaNamespace && localName == u"clip") {
            const long seconds = SecondsOf(attributes);
            ++project.clips;
            project.runningTime += seconds;
            project.longestClip = std::max(project.longestClip, seconds);
        }
    }
    // Text arrives in pieces. It is complete when something else follows.
    void FlushText() {
        auto whole = WithSingleSpaces(std::exchange(text, {}));
        if (!whole.empty()) AddLine(Kind::kText, std::move(whole));
    }
    void AddLine(Kind kind, UTF16String line, UTF16String prefix = {}) {
        project.outline.push_back({kind, depth, std::move(line), std::move(prefix)});
    }

    Project& project;
    std::size_t depth = 0;
    UTF16String text;
};

}  // namespace

ReadResult ReadProject(const std::string& path) {
    namespace utility = vexacore::utility;
    try {
        const auto name = utility::StdToUTF16String(path);
        if (utility::UTF16toStdString(name) != path) return {{}, "its name is not UTF-8"};
        if (auto cause = utility::FileUtils::WhyUnreadable(path); !cause.empty())
            return {{}, std::move(cause)};
        Project project;
        vexacore::Owner<vexacore::xml::AbstractParseHandler> handler(new ProjectHandler(project));
        const auto parser = vexacore::xml::GetParserFactory()->GetParser(handler);
        if (parser->ParseDocument(name) == vexacore::xml::kParseSucceeded)
            return {std::move(project), {}};
        const auto& cause = parser->LastFailure();
        return {{}, cause.empty() ? "no well-formed XML document" : cause};
    } catch (const std::system_error& error) {  // of the file layer
        return {{}, error.code().message()};
    } catch (const std::bad_alloc&) {
        return {{}, "out of memory"};
    }
}

}  // namespace frontend
