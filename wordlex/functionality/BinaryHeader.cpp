#include "wordlex/functionality/BinaryHeader.h"

#include <cstring>

namespace lexon_private {

namespace {

void ReadLocale(ImageReader& reader, BinaryHeader& header) {
    const auto length = reader.Get<std::uint32_t>();
    if (!reader.Ok() || reader.AtEnd()) return;
    const ImageBytes name = reader.GetBytes(length);
    header.locale.emplace(reinterpret_cast<const char*>(name.data()), name.size());
}

}  // namespace

bool HasBinaryMagic(const char* bytes, std::size_t count) noexcept {
    return std::string_view(bytes, count).starts_with(kBinaryMagic);
}

bool PassMagic(ImageReader& reader) {
    char bytes[kBinaryMagic.size()] = {};
    for (char& byte : bytes)
        byte = static_cast<char>(reader.Get<std::uint8_t>());
    return HasBinaryMagic(bytes, sizeof bytes);
}

BinaryHeader ReadBinaryHeader(ImageReader& reader) {
    BinaryHeader header;
    const std::uint64_t versionAt = reader.Offset();
    header.major = static_cast<std::int8_t>(reader.Get<std::uint8_t>());
    header.minor = static_cast<std::int8_t>(reader.Get<std::uint8_t>());
    header.encoding = static_cast<char>(reader.Get<std::uint8_t>());
    if (header.major == 1 && header.minor == 0) {
        header.body = BinaryHeader::Body::kVersion10;
    } else if (header.major == 1 && header.minor == 5) {
        header.body = BinaryHeader::Body::kVersion15;
    } else if (header.major == 2 && header.minor >= 0) {
        header.body = BinaryHeader::Body::kVersion2;
        if (header.minor >= 1) {
            header.order = reader.Get<std::uint8_t>() % 2 == kBigEndianFile
                               ? lexon::EndianT::kBig
                               : lexon::EndianT::kLittle;
        }
        reader.SetOrder(header.order);
        ReadLocale(reader, header);
    } else {
        reader.Reject(ImageFault::kUnknownVersion, versionAt);
    }
    return header;
}

std::uint32_t WriteBinaryHeader(std::ostream& out, bool encoded, lexon::EndianT order,
                                const char* locale) {
    const std::uint32_t written = wbfwrite_wbfid(out, encoded ? wbfid_utf8 : wbfid, order);
    if (locale == nullptr) return written + wbfwrite_deflocale(out, order);
    const auto length = static_cast<std::uint32_t>(std::strlen(locale));
    return written + wbfwrite_locale(out, locale, length, order);
}

}  // namespace lexon_private
