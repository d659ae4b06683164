#pragma once
#include <functional>
#include <map>
#include <string>

#include "tools/lsp/Connection.h"
#include "tools/lsp/Workspace.h"

namespace tool::lsp {

// A server of the Language Server Protocol 3.17 for dictionaries and the sources that use their
// texts. docs/editors.md describes its features.
// Findings are published when no message waits: of several edits in a row only the last counts.
// Threads: none.
class Server {
public:
    // The connection outlives the server. `encoding` is that of 8-bit files unless a project names
    // one.
    Server(Connection& client, const std::string& encoding);

    // Serves until the client asks it to exit or is gone. Returns the exit code.
    int Run();

private:
    using Handler = std::function<Json(const Json& params)>;

    void Take(const Json& message);
    void Answer(const Json& id, const std::string& method, const Json& params);
    Json Call(const std::string& method, const Json& params);
    void Notice(const std::string& method, const Json& params);
    void Refuse(const Json& id, int code, const std::string& why);
    void Send(const std::string& method, Json params);
    Json Initialize(const Json& params);
    void Watch();
    void Close(const std::string& uri);
    void Outdate();
    void PublishAll();
    void ShowError(const OpenFile& file);

    Connection& connection;
    Workspace workspace;
    std::map<std::string, Handler> requests;
    std::map<std::string, Handler> notifications;  // their results are dropped
    bool initialized = false;
    bool shutDown = false;
    bool exited = false;
    bool markdown = false;   // the client can show it
    bool registers = false;  // the client watches files on request
    std::string lastError;
};

}  // namespace tool::lsp
