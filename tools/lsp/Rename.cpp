#include <algorithm>

#include "tools/lsp/Features.h"

namespace tool::lsp {

namespace {

Workspace::Found FindKey(Workspace& workspace, const OpenFile& file, const Json& params) {
    auto found = workspace.KeyAt(file, PositionFrom(params.at("position")));
    if (!found.has_value() || !found->isAtKey) {
        throw ResponseError(kRequestFailed, "there is no key here");
    }
    return std::move(*found);
}

// The bytes of a key that the user wrote, with or without "$$$".
std::string NewKey(std::string written) {
    constexpr std::string_view kPrefix = "$$$";
    if (written.starts_with(kPrefix)) written.erase(0, kPrefix.size());
    if (written.empty()) throw ResponseError(kInvalidParams, "a key must not be empty");
    const bool isPlain = std::ranges::all_of(
        written, [](char c) { return c >= ' ' && c <= '~' && c != '=' && c != '"' && c != '\\'; });
    if (!isPlain) {
        throw ResponseError(kInvalidParams,
                            "a key has ASCII characters without \"=\", \"\\\" and quotation marks");
    }
    if (written.starts_with('$')) {
        throw ResponseError(kInvalidParams, "only \"$$$\" may come before a key");
    }
    if (written.starts_with(' ') || written.ends_with(' ')) {
        throw ResponseError(kInvalidParams, "a key with a blank at its end is never found");
    }
    return written;
}

std::string PlaceOf(const KeyUse& use) {
    return use.path + ':' + std::to_string(use.range.start.line + 1) + ':' +
           std::to_string(use.range.start.character + 1);
}

}  // namespace

Json PrepareRename(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const Workspace::Found found = FindKey(workspace, file, params);
    return {{"range", ToJson(found.range)}, {"placeholder", found.key}};
}

Json Rename(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const Workspace::Found found = FindKey(workspace, file, params);
    const std::string key = NewKey(params.at("newName").get<std::string>());
    Json changes = Json::object();
    if (key == found.key) return {{"changes", changes}};
    const std::vector<KeyUse> taken = workspace.UsesOf(file, key, true);
    if (!taken.empty()) {
        throw ResponseError(kRequestFailed,
                            "the key " + key + " already exists, at " + PlaceOf(taken.front()));
    }
    for (const KeyUse& use : workspace.UsesOf(file, found.key, true)) {
        if (!use.isWhole) {
            throw ResponseError(kRequestFailed, "the key is not written in one piece at " +
                                                    PlaceOf(use) +
                                                    "; write it in one literal first");
        }
        changes[use.file->Uri()].push_back({{"range", ToJson(use.range)}, {"newText", key}});
    }
    return {{"changes", changes}};
}

}  // namespace tool::lsp
