#include "tools/lsp/Connection.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <iterator>
#include <string_view>

#include "tools/base/Files.h"

namespace tool::lsp {

namespace {

constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::size_t kLongestHeader = 4096;
constexpr std::size_t kLongestMessage = std::size_t{256} << 20;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The value of "Content-Length" in a header, or nothing.
std::optional<std::size_t> LengthIn(std::string_view header) {
    constexpr std::string_view kField = "content-length:";
    while (!header.empty()) {
        std::string_view line = header.substr(0, header.find("\r\n"));
        header.remove_prefix(std::min(line.size() + 2, header.size()));
        const bool isField =
            line.size() > kField.size() && std::equal(kField.begin(), kField.end(), line.begin(),
                                                      [](char a, char b) { return a == Lower(b); });
        if (!isField) continue;
        line.remove_prefix(kField.size());
        while (line.starts_with(' '))
            line.remove_prefix(1);
        std::size_t length = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), length);
        if (error == std::errc() && end == line.data() + line.size()) return length;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Json> Connection::Next() {
    ReadWhatIsThere();
    while (messages.empty()) {
        if (ended || !Read()) return std::nullopt;
        TakeMessages();
    }
    Json message = std::move(messages.front());
    messages.pop_front();
    return message;
}

bool Connection::HasNext() {
    ReadWhatIsThere();
    return !messages.empty();
}

bool Connection::IsCancelled(const Json& id) {
    ReadWhatIsThere();
    return std::ranges::any_of(messages, [&](const Json& message) {
        if (!message.is_object() || message.value("method", Json()) != "$/cancelRequest") {
            return false;
        }
        const auto params = message.find("params");
        return params != message.end() && params->is_object() && params->value("id", Json()) == id;
    });
}

void Connection::Send(const Json& message) {
    const std::string body = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    const std::string all =
        "Content-Length: " + std::to_string(body.size()) + std::string(kHeaderEnd) + body;
    // A client that sends without reading would wait for ever if nobody read from it. So each write
    // is at most what a ready pipe accepts.
    for (std::size_t at = 0; at < all.size();) {
        pollfd ready[] = {{output, POLLOUT, 0}, {ended ? -1 : input, POLLIN, 0}};
        if (poll(ready, std::size(ready), -1) < 0 && errno != EINTR) throw ReaderGone();
        if (ready[1].revents != 0 && Read()) TakeMessages();
        if (ready[0].revents == 0) continue;
        const std::size_t size = std::min<std::size_t>(all.size() - at, PIPE_BUF);
        const ssize_t count = write(output, all.data() + at, size);
        if (count >= 0) {
            at += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw ReaderGone();
        }
    }
}

// Waits for some bytes. False at the end of the input.
bool Connection::Read() {
    char block[1 << 16];
    for (;;) {
        const ssize_t count = read(input, block, sizeof block);
        if (count > 0) {
            bytes.append(block, static_cast<std::size_t>(count));
            return true;
        }
        if (count < 0 && errno == EINTR) continue;
        ended = true;
        return false;
    }
}

void Connection::ReadWhatIsThere() {
    for (;;) {
        pollfd waiting{input, POLLIN, 0};
        if (ended || poll(&waiting, 1, 0) <= 0 || waiting.revents == 0 || !Read()) break;
        TakeMessages();
    }
}

void Connection::TakeMessages() {
    while (!ended && (length.has_value() || TakeHeader())) {
        if (bytes.size() < *length) return;
        messages.push_back(Json::parse(
            bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*length), nullptr, false));
        bytes.erase(0, *length);
        length.reset();
    }
}

// False until the whole header is there.
bool Connection::TakeHeader() {
    const std::size_t end = bytes.find(kHeaderEnd);
    if (end == bytes.npos) {
        if (bytes.size() <= kLongestHeader) return false;
        messages.emplace_back(Json::value_t::discarded);
        ended = true;
        return false;
    }
    length = LengthIn(std::string_view(bytes).substr(0, end));
    bytes.erase(0, end + kHeaderEnd.size());
    if (!length.has_value()) {
        messages.emplace_back(Json::value_t::discarded);
        return TakeHeader();
    }
    ended = *length > kLongestMessage;
    return !ended;
}

}  // namespace tool::lsp
