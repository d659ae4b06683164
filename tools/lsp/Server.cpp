#include "tools/lsp/Server.h"

#include <algorithm>

#include "tools/lsp/Features.h"
#include "tools/verbs/Verbs.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace tool::lsp {

namespace {

constexpr int kInternalError = -32603;

// The value at a path of names, or null.
Json At(const Json& object, std::initializer_list<const char*> path) {
    const Json* at = &object;
    for (const char* const name : path) {
        if (!at->is_object() || !at->contains(name)) return nullptr;
        at = &at->at(name);
    }
    return *at;
}

bool IsId(const Json& id) { return id.is_string() || id.is_number_integer(); }

std::string UriIn(const Json& params) {
    return params.at("textDocument").at("uri").get<std::string>();
}

}  // namespace

Server::Server(Connection& client, const std::string& encoding)
    : connection(client), workspace(encoding) {
    requests = {
        {"shutdown",
         [this](const Json&) {
             shutDown = true;
             return Json();
         }},
        {"textDocument/hover",
         [this](const Json& params) { return Hover(workspace, params, markdown); }},
        {"textDocument/completion",
         [this](const Json& params) { return Completion(workspace, params); }},
        {"textDocument/definition",
         [this](const Json& params) { return Definition(workspace, params); }},
        {"textDocument/references",
         [this](const Json& params) { return References(workspace, params); }},
        {"textDocument/prepareRename",
         [this](const Json& params) { return PrepareRename(workspace, params); }},
        {"textDocument/rename", [this](const Json& params) { return Rename(workspace, params); }},
        {"textDocument/codeAction",
         [this](const Json& params) {
             PublishAll();  // actions are about the findings of this version
             return CodeActions(workspace, params);
         }},
    };
    const auto refresh = [this](const Json&) {
        workspace.Refresh();
        Outdate();
        return Json();
    };
    notifications = {
        {"initialized",
         [this](const Json&) {
             if (registers) Watch();
             return Json();
         }},
        {"textDocument/didOpen",
         [this](const Json& params) {
             const Json& document = params.at("textDocument");
             workspace.Open(document.at("uri").get<std::string>(),
                            document.at("languageId").get<std::string>(),
                            document.at("version").get<std::int64_t>(),
                            document.at("text").get<std::string>());
             workspace.Refresh();
             Outdate();
             return Json();
         }},
        {"textDocument/didChange",
         [this](const Json& params) {
             const Json& changes = params.at("contentChanges");
             if (changes.empty()) return Json();
             const OpenFile& file = workspace.Change(
                 UriIn(params), params.at("textDocument").at("version").get<std::int64_t>(),
                 changes.back().at("text").get<std::string>());
             // Other files are compared only with the reference.
             if (file.path == workspace.ProjectOf(file).project.reference) Outdate();
             return Json();
         }},
        {"textDocument/didClose",
         [this](const Json& params) {
             Close(UriIn(params));
             return Json();
         }},
        {"textDocument/didSave", refresh},
        {"workspace/didChangeWatchedFiles", refresh},
    };
}

int Server::Run() {
    while (!exited) {
        if (!connection.HasNext()) PublishAll();
        const std::optional<Json> message = connection.Next();
        if (!message.has_value()) break;
        Take(*message);
    }
    return shutDown ? kSuccess : kDifference;
}

void Server::Take(const Json& message) {
    if (message.is_discarded()) return Refuse(nullptr, kParseError, "not JSON");
    const Json id = At(message, {"id"});
    const Json method = At(message, {"method"});
    if (!method.is_string()) {
        const bool isResponse = message.is_object() && IsId(id) &&
                                (message.contains("result") || message.contains("error"));
        if (!isResponse) Refuse(nullptr, kInvalidRequest, "not a message of the protocol");
        return;
    }
    const Json params = At(message, {"params"});
    if (!message.contains("id")) return Notice(method.get<std::string>(), params);
    if (!IsId(id)) return Refuse(nullptr, kInvalidRequest, "an id must be a number or a string");
    Answer(id, method.get<std::string>(), params);
}

void Server::Answer(const Json& id, const std::string& method, const Json& params) {
    if (connection.IsCancelled(id)) return Refuse(id, kRequestCancelled, "cancelled");
    try {
        const Json result = Call(method, params);
        connection.Send({{"jsonrpc", "2.0"}, {"id", id}, {"result", result}});
    } catch (const ResponseError& error) {
        Refuse(id, error.Code(), error.what());
    } catch (const Json::exception& error) {
        Refuse(id, kInvalidParams, error.what());
    } catch (const ReaderGone&) {
        throw;
    } catch (const std::exception& error) {
        Refuse(id, kInternalError, error.what());
    }
}

Json Server::Call(const std::string& method, const Json& params) {
    if (method == "initialize") {
        if (initialized) throw ResponseError(kInvalidRequest, "already initialized");
        return Initialize(params);
    }
    if (!initialized) throw ResponseError(kServerNotInitialized, "not initialized yet");
    if (shutDown) throw ResponseError(kInvalidRequest, "already shut down");
    const auto handler = requests.find(method);
    if (handler == requests.end()) {
        throw ResponseError(kMethodNotFound, "there is no method " + method);
    }
    return handler->second(params);
}

void Server::Notice(const std::string& method, const Json& params) {
    if (method == "exit") {
        exited = true;
        return;
    }
    const auto handler = notifications.find(method);
    if (!initialized || shutDown || handler == notifications.end()) return;
    try {
        handler->second(params);
    } catch (const ReaderGone&) {
        throw;
    } catch (const std::exception& error) {
        Send("window/logMessage", {{"type", 1}, {"message", method + ": " + error.what()}});
    }
}

void Server::Refuse(const Json& id, int code, const std::string& why) {
    connection.Send(
        {{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", why}}}});
}

void Server::Send(const std::string& method, Json params) {
    connection.Send({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}});
}

Json Server::Initialize(const Json& params) {
    initialized = true;
    const Json formats = At(params, {"capabilities", "textDocument", "hover", "contentFormat"});
    markdown = std::ranges::find(formats, Json("markdown")) != formats.end();
    registers = At(params, {"capabilities", "workspace", "didChangeWatchedFiles",
                            "dynamicRegistration"}) == true;
    constexpr int kFullText = 1;
    return {{"capabilities",
             {{"positionEncoding", "utf-16"},
              {"textDocumentSync", {{"openClose", true}, {"change", kFullText}, {"save", true}}},
              {"hoverProvider", true},
              {"completionProvider", {{"triggerCharacters", {"$", "/", "{", "^", "\\"}}}},
              {"definitionProvider", true},
              {"referencesProvider", true},
              {"renameProvider", {{"prepareProvider", true}}},
              {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}}}},
            {"serverInfo", {{"name", "wordlex"}, {"version", WLLibraryVersion()}}}};
}

// Asks the client to report changes of files that are not open.
void Server::Watch() {
    Json watchers = Json::array();
    for (const char* const pattern :
         {"**/wordlex.toml", "**/*.txt", "**/*.{c,cc,cpp,cxx,h,hh,hpp,hxx,m,mm}"})
        watchers.push_back({{"globPattern", pattern}});
    const Json registration = {{"id", "wordlex-files"},
                               {"method", "workspace/didChangeWatchedFiles"},
                               {"registerOptions", {{"watchers", watchers}}}};
    connection.Send({{"jsonrpc", "2.0"},
                     {"id", "wordlex-files"},
                     {"method", "client/registerCapability"},
                     {"params", {{"registrations", Json::array({registration})}}}});
}

// Removes the findings of a file that is no longer open.
void Server::Close(const std::string& uri) {
    workspace.Get(uri);
    workspace.Close(uri);
    Send("textDocument/publishDiagnostics", {{"uri", uri}, {"diagnostics", Json::array()}});
    Outdate();
}

// A change in one file may change the findings of all.
void Server::Outdate() {
    for (auto& [uri, file] : workspace.OpenFiles())
        file.isPublished = false;
}

void Server::PublishAll() {
    for (auto& [uri, file] : workspace.OpenFiles()) {
        if (file.isPublished) continue;
        Send("textDocument/publishDiagnostics", Publish(workspace, file));
        ShowError(file);
    }
}

// Reports once why a project cannot be used. In its own file that is a finding.
void Server::ShowError(const OpenFile& file) {
    const std::string& error = workspace.ProjectOf(file).error;
    if (error.empty() || error == lastError || file.kind == OpenFile::Kind::kSettings) return;
    lastError = error;
    Send("window/showMessage", {{"type", 1}, {"message", error}});
}

}  // namespace tool::lsp
