#include "wordlex/functionality/ByteRunKey.h"

#include <cstring>
#include <ostream>

#include "wordlex/functionality/BinUtil.h"

namespace lexon_private {

namespace {

void WriteUnit(std::ostream& out, unsigned short unit) {
    out.write(reinterpret_cast<const char*>(&unit), sizeof unit);
}

}  // namespace

const unsigned char* ByteRunKey::CopyBytes(const unsigned char* bytes, unsigned long byteCount) {
    auto* const copy = new unsigned char[byteCount];
    std::memcpy(copy, bytes, byteCount);
    return copy;
}

std::uint32_t ByteRunKey::Serialize(std::ostream& out, bool binary,
                                    const lexon::EncodingInfo* /*encoding*/) const {
    if (data == nullptr) return 0;
    if (binary) {
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(length));
        return static_cast<std::uint32_t>(length);
    }
    WriteUnit(out, u'"');
    for (unsigned long i = 0; i < length; ++i)
        WriteUnit(out, data[i]);
    WriteUnit(out, u'=');
    return 0;
}

unsigned long ByteRunKey::Hash(unsigned long bucketCount) const {
    return HashBytes(data, length, bucketCount);
}

bool ByteRunKey::operator==(const HashItem& other) const {
    const auto& key = static_cast<const ByteRunKey&>(other);
    return length == key.length && (length == 0 || std::memcmp(data, key.data, length) == 0);
}

std::uint16_t ByteRunKey::Tag() const { return KeyTag(data, length); }

}  // namespace lexon_private
