// Makes the dictionary file of one language: MakeDictionary SOURCE DESTINATION
//
// The source is a text dictionary as people write it, in UTF-8; the application reads text
// dictionaries in UTF-16 behind a byte-order mark. Runs at build time only.

#include <bit>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/vexacore/String.h"
#include "host/vexacore/Utility.h"

namespace {

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (!file) throw std::runtime_error("cannot be read");
    return bytes;
}

vexacore::UTF16String Decode(std::string_view utf8) {
    auto text = vexacore::utility::UTF8to16(utf8);
    if (text.find(u'\uFFFD') != text.npos) throw std::runtime_error("is not UTF-8");
    return text;
}

// The image of a text dictionary: little-endian units behind their mark.
std::string TextImage(const vexacore::UTF16String& text) {
    std::string image;
    image.reserve(2 * (text.size() + 1));
    for (const char16_t unit : u'\uFEFF' + text) {
        image += std::bit_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        image += std::bit_cast<char>(static_cast<unsigned char>(unit >> 8));
    }
    return image;
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("its dictionary cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: MakeDictionary SOURCE DESTINATION\n";
        return EXIT_FAILURE;
    }
    try {
        WriteFile(argv[2], TextImage(Decode(ReadFile(argv[1]))));
    } catch (const std::exception& error) {
        std::cerr << argv[1] << ": " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
