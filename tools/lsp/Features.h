#pragma once
// The server's results, one function for each request of the protocol. Each takes the request's
// parameters and returns its result. Throws a ResponseError or, for invalid parameters, a Json
// exception.
#include "tools/lsp/Workspace.h"

namespace tool::lsp {

Json Hover(Workspace& workspace, const Json& params, bool markdown);
Json Completion(Workspace& workspace, const Json& params);
// To the reference's line; from the reference to the source that uses the key.
Json Definition(Workspace& workspace, const Json& params);
Json References(Workspace& workspace, const Json& params);
Json PrepareRename(Workspace& workspace, const Json& params);
Json Rename(Workspace& workspace, const Json& params);
Json CodeActions(Workspace& workspace, const Json& params);

// Checks an open file as `check` does, and returns the parameters of publishDiagnostics.
Json Publish(Workspace& workspace, OpenFile& file);
// One finding of an open file in the protocol's form.
Json DiagnosticOf(Workspace& workspace, OpenFile& file, const Finding& finding);

}  // namespace tool::lsp
