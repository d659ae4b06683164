#include "wordlex/functionality/UnicodeRun.h"

#include <ostream>
#include <string_view>
#include <vector>

#include "wordlex/functionality/EncodingInfo.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

namespace {

void WriteUnits(std::ostream& out, const unsigned short* units, std::size_t count) {
    out.write(reinterpret_cast<const char*>(units),
              static_cast<std::streamsize>(count * sizeof *units));
}

// The unit behind the backslash that stands for `unit` in a text dictionary; 0 when it needs none.
unsigned short EscapeOf(unsigned short unit) {
    switch (unit) {
        case u'\n':
            return u'n';
        case u'\r':
            return u'r';
        case u'"':
            return u'"';
        default:
            return 0;
    }
}

}  // namespace

const UnicodeRun& UnicodeRun::EmptyRunInstance() {
    static const UnicodeRun empty(nullptr, 0);
    return empty;
}

std::uint32_t UnicodeRun::Serialize(std::ostream& out, bool binary,
                                    const lexon::EncodingInfo* encoding) const {
    const unsigned short* const units = GetData();
    const unsigned long count = GetLength();
    if (binary && encoding == nullptr) {
        WriteUnits(out, units, count);
        return static_cast<std::uint32_t>(2 * count);
    }
    if (binary) {
        InwardEncoding inward(encoding);
        std::vector<char> bytes(UnicodeUtil::FromUnicodeSize(units, count, inward.Selector()));
        UnicodeUtil::UnicodeToCString(units, count, bytes.data(), bytes.size(), inward.Selector());
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size() - 1));
        return static_cast<std::uint32_t>(bytes.size() - 1);
    }
    std::vector<unsigned short> escaped;
    escaped.reserve(count + 2);
    for (unsigned long i = 0; i < count; ++i) {
        const unsigned short escape = EscapeOf(units[i]);
        if (escape != 0) escaped.push_back(u'\\');
        escaped.push_back(escape != 0 ? escape : units[i]);
    }
    const auto valueBytes = static_cast<std::uint32_t>(2 * escaped.size());
    escaped.push_back(u'"');
    escaped.push_back(u'\n');
    WriteUnits(out, escaped.data(), escaped.size());
    return valueBytes;
}

}  // namespace lexon_private
