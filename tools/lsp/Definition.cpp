#include "tools/lsp/Features.h"

namespace tool::lsp {

namespace {

Json LocationOf(const KeyUse& use) {
    return {{"uri", use.file->Uri()}, {"range", ToJson(use.range)}};
}

}  // namespace

Json Definition(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const auto found = workspace.KeyAt(file, PositionFrom(params.at("position")));
    if (!found.has_value()) return nullptr;
    const std::string& reference = workspace.ProjectOf(file).project.reference;
    const bool inReference = !reference.empty() && file.path == reference;
    Json locations = Json::array();
    for (const KeyUse& use : workspace.UsesOf(file, found->key, inReference)) {
        const bool isWanted =
            inReference ? use.line == nullptr : use.path == reference && use.line != nullptr;
        if (isWanted) locations.push_back(LocationOf(use));
    }
    return locations;
}

Json References(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const auto found = workspace.KeyAt(file, PositionFrom(params.at("position")));
    if (!found.has_value()) return nullptr;
    Json locations = Json::array();
    for (const KeyUse& use : workspace.UsesOf(file, found->key, true))
        locations.push_back(LocationOf(use));
    return locations;
}

}  // namespace tool::lsp
