#include "wordlex/functionality/HashItem.h"

#include "wordlex/functionality/BinUtil.h"

namespace lexon_private {

std::uint32_t HashItem::SerializeKey(std::ostream& out, bool binary,
                                     const lexon::EncodingInfo* encoding) const {
    return Serialize(out, binary, encoding);
}

std::uint32_t HashItem::SerializeValue(std::ostream& out, bool binary,
                                       const lexon::EncodingInfo* encoding,
                                       lexon::EndianT /*order*/) const {
    return Serialize(out, binary, encoding);
}

std::uint32_t HashItem::KeyHash() const {
    return static_cast<std::uint32_t>(Hash(kHashBucketCount));
}

}  // namespace lexon_private
