#include <bit>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/frontend/AppMain.h"
#include "app/frontend/Project.h"
#include "app/frontend/Texts.h"
#include "app/trace/HostTrace.h"
#include "app/trace/Printable.h"

namespace frontend {
namespace {

constexpr const char* kTitle = "$$$/Framewright/Product/Title=Framewright Homeline";
constexpr const char* kSplit = R"($$$/Framewright/Menu/Clip/Split=&Split at Playhead \b^#K)";

struct MenuItem {
    const char* key;
    const char* argument = nullptr;  // the key of what ^1 stands for
};

struct Menu {
    const char* title;
    std::vector<MenuItem> items;
};

const Menu kMenus[] = {
    {"$$$/Framewright/Menu/File=&File",
     {{R"($$$/Framewright/Menu/File/New=&New Project#{U+2026} \b^#N)"},
      {R"($$$/Framewright/Menu/File/Open=&Open Project#{U+2026} \b^#O)"},
      {R"($$$/Framewright/Menu/File/Save=&Save \b^#S)"},
      {"$$$/Framewright/Menu/File/Export=&Export Movie#{U+2026}"},
      {R"($$$/Framewright/Menu/File/Quit=&Quit Framewright \b^#Q)"}}},
    {"$$$/Framewright/Menu/Edit=&Edit",
     {{R"($$$/Framewright/Menu/Edit/Undo=&Undo ^[^1^] \b^#Z)", kSplit},
      {R"($$$/Framewright/Menu/Edit/Cut=Cu&t \b^#X)"},
      {R"($$$/Framewright/Menu/Edit/Copy=&Copy \b^#C)"},
      {R"($$$/Framewright/Menu/Edit/Paste=&Paste \b^#V)"}}},
    {"$$$/Framewright/Menu/Clip=&Clip",
     {{kSplit},
      {"$$$/Framewright/Menu/Clip/Speed=Sp&eed && Duration#{U+2026}"},
      {"$$$/Framewright/Menu/Clip/Transition=Add &Transition"}}},
    {"$$$/Framewright/Menu/Window=&Window",
     {{"$$$/Framewright/Menu/Window/Timeline=&Timeline"},
      {"$$$/Framewright/Menu/Window/Viewer=&Viewer"}}},
    {"$$$/Framewright/Menu/Help=&Help", {{"$$$/Framewright/Menu/Help/About=&About ^1", kTitle}}},
};

// One request of each form.
constexpr const char* kRequests[] = {
    "($$$/Framewright/Status/Autosave=autosave on)",
    "$$$/Framewright/Status/Ready",
    // wordlex: ignore unextracted-key
    R"($$$/Framewright/Tip/InNoDictionary=^[Rest your eyes^] #{ndash} ^C #{copyyear}\tNorvale)",
    "Volume=11",
    "H.264",
};

void PrintProduct() {
    std::cout << Localized(kTitle) << '\n'
              << Localized("$$$/Framewright/Product/Tagline=Home movies, cut the easy way") << '\n'
              << Localized(
                     "$$$/Framewright/Product/Copyright="
                     "^C #{copyyear} Norvale. All rights reserved.")
              << '\n'
              << Localized("$$$/Framewright/Product/Language=English") << "\n\n";
}

void PrintMenus() {
    for (const auto& menu : kMenus) {
        std::u16string items;
        for (const auto& item : menu.items) {
            if (!items.empty()) items += u" | ";
            const auto title = MenuTitle(item.key);
            items += item.argument == nullptr
                         ? Units(title)
                         : Units(Filled(title, {Units(MenuTitle(item.argument))}));
        }
        std::cout << Filled(Localized("$$$/Framewright/Menu/Line=^1: ^2"),
                            {Units(MenuTitle(menu.title)), items})
                  << '\n';
    }
    std::cout << '\n';
}

std::string Time(long seconds) {
    std::ostringstream text;
    text << std::setfill('0') << seconds / 3600 << ':' << std::setw(2) << seconds / 60 % 60 << ':'
         << std::setw(2) << seconds % 60;
    return text.str();
}

lexon::Wordlex OutlineText(const OutlineLine& line) {
    using Kind = OutlineLine::Kind;
    const std::u16string_view text = line.text;
    switch (line.kind) {
        case Kind::kNamespace:
            if (line.prefix.empty()) {
                return Filled(Localized("$$$/Framewright/Outline/DefaultNamespace="
                                        "Default namespace: ^1"),
                              {text});
            }
            return Filled(Localized("$$$/Framewright/Outline/Namespace=Namespace ^1: ^2"),
                          {std::u16string_view(line.prefix), text});
        case Kind::kVerbatim:
            return Filled(Localized("$$$/Framewright/Outline/Verbatim=Verbatim text: ^1"), {text});
        case Kind::kComment:
            return Filled(Localized("$$$/Framewright/Outline/Comment=Note: ^1"), {text});
        case Kind::kElement:
        case Kind::kText:
            break;
    }
    return FromUTF16(line.text);
}

void PrintProject(const Project& project) {
    const auto contents =
        FilledMessage(Localized("$$$/Framewright/Project/Contents="
                                "{clips, plural, one {# clip} other {# clips}}, "
                                "{tracks, plural, one {# track} other {# tracks}}"),
                      {{"clips", project.clips}, {"tracks", project.tracks}});
    const auto name = project.name.empty() ? Localized("$$$/Framewright/Project/Untitled=Untitled")
                                           : FromUTF16(project.name);

    std::cout << Filled(Localized("$$$/Framewright/Project/Heading=Project: ^1"), {Units(name)})
              << '\n';
    if (!project.author.empty()) {
        std::cout << Filled(Localized("$$$/Framewright/Project/Author=Edited by ^1"),
                            {std::u16string_view(project.author)})
                  << '\n';
    }
    std::cout << contents << '\n'
              << Filled(Localized("$$$/Framewright/Project/Duration="
                                  "Running time ^1, longest clip ^2"),
                        {Time(project.runningTime), Time(project.longestClip)})
              << "\n\n"
              << Localized("$$$/Framewright/Outline/Heading=Outline") << '\n';
    for (const auto& line : project.outline) {
        std::cout << std::string(2 * (line.depth + 1), ' ') << OutlineText(line) << '\n';
    }
    std::cout << FilledMessage(Localized("$$$/Framewright/Outline/Totals="
                                         "{elements, plural, one {# element} other {# elements}}, "
                                         "{attributes, plural, one {# attribute} "
                                         "other {# attributes}}, "
                                         "{notes, plural, one {# note} other {# notes}}"),
                               {{"elements", project.elements},
                                {"attributes", project.attributes},
                                {"notes", project.comments}})
              << "\n\n"
              << Filled(Localized(R"($$$/Framewright/Message/SaveChanges=)"
                                  R"(Save the changes to ^[^1^] before closing?\n)"
                                  R"(Changes that you do not save will be lost.)"),
                        {Units(name)})
              << "\n\n";
}

// The result is also AppMain's.
std::int32_t PrintDocument(const std::string& path) {
    const auto [project, failure] = ReadProject(path);
    if (project) {
        PrintProject(*project);
        return 0;
    }
    const auto name = trace::Printable(path);
    std::cerr << "framewright: cannot use '" << name << "': " << trace::Printable(failure) << '\n';
    std::cout << Filled(Localized(R"($$$/Framewright/Message/CannotRead=)"
                                  R"(The document ^[^1^] could not be read as a project.\n)"
                                  R"(The application will continue without it.)"),
                        {name})
              << "\n\n";
    return kDocumentUnusable;
}

void PrintStatus() {
    std::cout << Localized(
                     "$$$/Framewright/Message/Tip=Tip: press Ctrl+K to split a clip."
                     "#{macos}Tip: press ^#K to split a clip.")
              << '\n'
              << Filled(Localized("$$$/Framewright/Status/Line=^1 (^2)"),
                        {Units(Localized("$$$/Framewright/Status/Ready=Ready")),
                         Units(Localized("($$$/Framewright/Status/Autosave=autosave on)"))})
              << "\n\n"
              << Localized("$$$/Framewright/Lookup/Heading=Text lookup") << '\n';
    for (const char* request : kRequests) {
        std::cout << "  " << request << "  ->  " << Localized(request) << '\n';
    }
}

}  // namespace
}  // namespace frontend

extern "C" [[gnu::visibility("default")]] std::int32_t AppMain(std::intptr_t request,
                                                               std::int32_t flags, std::int32_t) {
    const auto& launch = *std::bit_cast<const LaunchRequest*>(request);
    if ((flags & kLaunchTrace) != 0) trace::PrintHost("during the run");

    frontend::PrintProduct();
    frontend::PrintMenus();
    const auto result = frontend::PrintDocument(launch.documentPath);
    frontend::PrintStatus();
    if (std::cout.flush()) return result;
    std::cerr << "framewright: standard output cannot be written\n";
    return kOutputFailed;
}
