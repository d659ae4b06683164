// Text dictionaries, from memory into a hash table and from a stream into a compact store. Both
// must have the same content.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "wordlex/functionality/Dictionary.h"

namespace {

using lexon_private::Dictionary;

constexpr std::size_t kLongestStored = std::numeric_limits<std::uint16_t>::max();

void CheckSame(Dictionary& table, Dictionary& compact) {
    REQUIRE(table.IsValid() == compact.IsValid());
    REQUIRE(table.NumKeys() == compact.NumKeys());
    std::vector<char> key(kLongestStored + 1);
    while (table.HasMoreKey()) {
        REQUIRE(table.NextKey(key.data(), key.size(), true));
        // A key with a NUL or "=" inside, or with a "$" before it, cannot be looked up as it is.
        if (std::strpbrk(key.data(), "=$") || !table.HasKey(key.data(), nullptr)) continue;
        const unsigned short* units[2];
        unsigned long lengths[2];
        REQUIRE(table.LookupReturnUTF16Ptr(key.data(), units[0], lengths[0], nullptr));
        REQUIRE(compact.LookupReturnUTF16Ptr(key.data(), units[1], lengths[1], nullptr));
        REQUIRE(std::equal(units[0], units[0] + lengths[0], units[1], units[1] + lengths[1]));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestStored) return 0;  // the compact store would cut what is longer
    std::string text(reinterpret_cast<const char*>(data), size);
    if (text.starts_with("Wordlex Binary Format")) return 0;
    // A stream reads its mark again, and skips it when it is alone on its line.
    if (text.starts_with("\xFF\xFE")) text.insert(2, {'\n', '\0'});
    if (text.starts_with("\xFE\xFF")) text.insert(2, {'\0', '\n'});
    if (text.size() < 2) return 0;  // no text for memory, an empty one for a stream

    Dictionary table;
    table.Read(text.data(), static_cast<int>(text.size()), true);
    if (table.HasKey("\xFF", nullptr)) return 0;  // another mark alone: an entry to memory only
    Dictionary compact(true);
    std::istringstream stream(text);
    compact.Read(&stream);
    CheckSame(table, compact);
    return 0;
}
