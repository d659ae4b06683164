#include "wordlex/functionality/ByteRunKey.h"

#include <cstring>
#include <ostream>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/KeyHash.h"
#include "wordlex/functionality/TextLine.h"

namespace lexon_private {

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
    TextLine line(out);
    line.PutKey({data, length});
    line.Write();
    return 0;
}

unsigned long ByteRunKey::Hash(unsigned long bucketCount) const {
    return HashBytes(data, length, bucketCount);
}

bool ByteRunKey::operator==(const HashItem& other) const {
    const auto& key = static_cast<const ByteRunKey&>(other);
    return HasBytes(key.data, key.length);
}

std::uint32_t ByteRunKey::KeyHash() const { return lexon_private::KeyHash(data, length); }

}  // namespace lexon_private
