#include "tools/base/Json.h"

namespace tool {

namespace {

constexpr auto kReplace = Json::error_handler_t::replace;

bool IsUtf8(const std::string& text) { return text == Utf8(UnitsOf(FromUtf8(text))); }

}  // namespace

void PutText(Json& object, const std::string& name, Units text) {
    if (FindUnpairedSurrogate(text) == text.size()) {
        object[name] = Utf8(text);
        return;
    }
    std::vector<unsigned short> whole(text.begin(), text.end());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (IsUnpairedSurrogate(text, i)) whole[i] = 0xFFFD;
    }
    object[name] = Utf8(whole);
    object[name + "Units"] = std::vector<unsigned short>(text.begin(), text.end());
}

void PutKey(Json& object, const std::string& name, std::string_view key) {
    const std::vector<unsigned char> bytes(key.begin(), key.end());
    object[name] = Utf8(std::vector<unsigned short>(bytes.begin(), bytes.end()));
}

void PutFile(Json& object, const std::string& name, const std::string& file) {
    object[name] = file;
    if (!IsUtf8(file)) object[name + "Uri"] = UriOf(file);
}

std::string UriOf(const std::string& file) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string uri;
    for (const char c : file) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos) {
            uri += c;
        } else {
            uri += {'%', kHex[byte >> 4], kHex[byte & 0xF]};
        }
    }
    return uri;
}

std::string JsonLine(const Json& object) { return object.dump(-1, ' ', false, kReplace) + '\n'; }

}  // namespace tool
