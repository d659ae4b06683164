#include <unistd.h>

#include "tools/lsp/Server.h"
#include "tools/verbs/Verbs.h"

namespace tool {

int Lsp(const Arguments& arguments) {
    lsp::Connection connection(STDIN_FILENO, STDOUT_FILENO);
    return lsp::Server(connection, arguments.Get("encoding")).Run();
}

}  // namespace tool
