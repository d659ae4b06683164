#include "wordlex/functionality/HashItem.h"

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

std::uint16_t HashItem::Tag() const { return 0; }

}  // namespace lexon_private
