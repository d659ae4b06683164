#pragma once
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "tools/base/Json.h"

namespace tool::lsp {

// The base of the protocol: JSON after a header with its length, over two descriptors.
// Threads: none.
class Connection {
public:
    // Does not close the descriptors.
    Connection(int inputDescriptor, int outputDescriptor)
        : input(inputDescriptor), output(outputDescriptor) {}

    // Waits for the next message. It is discarded (Json::is_discarded) when it is not JSON or has
    // no length. Returns nothing at the end of the input and after an invalid header.
    std::optional<Json> Next();
    // Whether a message has arrived that Next() has not returned yet.
    bool HasNext();
    // Whether the client has cancelled the request since.
    bool IsCancelled(const Json& id);

    // Meanwhile reads what the client sends. Throws ReaderGone.
    void Send(const Json& message);

private:
    bool Read();
    void ReadWhatIsThere();
    void TakeMessages();
    bool TakeHeader();

    int input;
    int output;
    std::string bytes;                  // not yet part of a message
    std::optional<std::size_t> length;  // of the message whose header was read
    bool ended = false;
    std::deque<Json> messages;
};

}  // namespace tool::lsp
