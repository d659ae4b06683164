#pragma once
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "tools/base/Json.h"

namespace tool::lsp {

// The protocol's base: JSON after a header with its length, over two descriptors.
// Threads: none.
class Connection {
public:
    // Does not close the descriptors.
    Connection(int inputDescriptor, int outputDescriptor)
        : input(inputDescriptor), output(outputDescriptor) {}

    // Waits for the next message. It is discarded (Json::is_discarded) where what came is not JSON
    // or has no length. Nothing at the end of the input and after a header that cannot be one.
    std::optional<Json> Next();
    // Whether a message has come that Next() did not return yet.
    bool HasNext();
    // Whether the client has sent a cancellation of the request since.
    bool IsCancelled(const Json& id);

    // Reads meanwhile what the client sends. Throws ReaderGone.
    void Send(const Json& message);

private:
    bool Read();
    void ReadWhatIsThere();
    void TakeMessages();
    bool TakeHeader();

    int input;
    int output;
    std::string bytes;                  // that belong to no message yet
    std::optional<std::size_t> length;  // of the message whose header was taken
    bool ended = false;
    std::deque<Json> messages;
};

}  // namespace tool::lsp
