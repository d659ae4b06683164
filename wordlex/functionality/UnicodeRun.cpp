#include "wordlex/functionality/UnicodeRun.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "wordlex/functionality/EncodingInfo.h"
#include "wordlex/functionality/TextLine.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

const UnicodeRun& UnicodeRun::EmptyRunInstance() {
    static const UnicodeRun empty(nullptr, 0);
    return empty;
}

UnicodeRun UnicodeRun::WithRoom(const unsigned short* units, unsigned long count) {
    unsigned char* bytes = nullptr;
    UnicodeRun made(ByteRunValue::MakeWithRoom(2 * count, bytes));
    std::copy_n(units, count, reinterpret_cast<unsigned short*>(bytes));
    return made;
}

std::uint32_t UnicodeRun::Serialize(std::ostream& out, bool binary,
                                    const lexon::EncodingInfo* encoding) const {
    const unsigned short* const units = GetData();
    const unsigned long count = GetLength();
    if (binary && encoding == nullptr) {
        out.write(reinterpret_cast<const char*>(units), static_cast<std::streamsize>(2 * count));
        return static_cast<std::uint32_t>(2 * count);
    }
    if (binary) {
        InwardEncoding inward(encoding);
        std::vector<char> bytes(UnicodeUtil::FromUnicodeSize(units, count, inward.Selector()));
        UnicodeUtil::UnicodeToCString(units, count, bytes.data(), bytes.size(), inward.Selector());
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size() - 1));
        return static_cast<std::uint32_t>(bytes.size() - 1);
    }
    TextLine line(out);
    const std::uint32_t valueBytes = line.PutValue({units, count});
    line.Write();
    return valueBytes;
}

}  // namespace lexon_private
