// Binary dictionaries, from memory and from a stream, loaded into new and into filled dictionaries.
// Both readers must have the same result, and the dictionary must remain usable.

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "wordlex/functionality/Dictionary.h"

namespace {

using lexon_private::Dictionary;

constexpr unsigned short kKept[] = {u'k', u'e', u'p', u't'};
constexpr std::uint64_t kNoId = ~std::uint64_t{0};

std::string Written(const Dictionary& dictionary, lexon::SaveType type) {
    std::ostringstream out;
    dictionary.Serialize(out, type, nullptr, lexon::EndianT::kBig, 0);
    return out.str();
}

// Fills a dictionary with one key, as text, which both stores accept.
void Fill(Dictionary& dictionary) { dictionary.Read("\"kept=kept\"", 11, true); }

void CheckKept(Dictionary& dictionary) {
    const unsigned short* units;
    unsigned long length;
    REQUIRE(dictionary.LookupReturnUTF16Ptr("kept", units, length, nullptr));
    REQUIRE(std::equal(units, units + length, std::begin(kKept), std::end(kKept)));
}

void CheckUsable(Dictionary& dictionary) {
    const unsigned long count = dictionary.NumKeys();
    const bool isNew = !dictionary.HasKey("a new key", nullptr);
    const unsigned long id = dictionary.Add("a new key", kKept, 4, nullptr, kKept, 4);
    if (id == kNoId) return;  // a hash table
    REQUIRE(dictionary.ValidId(id) && dictionary.GetNumericId("a new key") == id);
    REQUIRE(dictionary.NumKeys() == count + (isNew ? 1 : 0));
    REQUIRE(dictionary.Remove(id) == id && !dictionary.HasKey("a new key", nullptr));
}

void Check(const std::string& image, bool filled, bool compact) {
    Dictionary fromMemory(compact);
    Dictionary fromStream(compact);
    if (filled) {
        Fill(fromMemory);
        Fill(fromStream);
    }
    fromMemory.Read(image.data(), static_cast<int>(image.size()), false);
    std::istringstream stream(image);
    fromStream.Read(&stream);
    REQUIRE(fromMemory.IsValid() == fromStream.IsValid());
    REQUIRE(fromMemory.NumKeys() == fromStream.NumKeys());
    // All entries with their ids, or for a hash table all entries in order. Entries that share
    // bytes are written apart, so a large image could take the square of its size.
    constexpr std::size_t kLargest = 8192;
    for (const lexon::SaveType type : {lexon::SaveType::kText, lexon::SaveType::kBinary})
        if (image.size() <= kLargest)
            REQUIRE(Written(fromMemory, type) == Written(fromStream, type));

    const bool stillThere = filled && fromMemory.HasKey("kept", nullptr);
    if (stillThere && image.find("kept") == std::string::npos) CheckKept(fromMemory);
    CheckUsable(fromMemory);
}

}  // namespace

// The input's first byte says how the dictionaries are filled before the load. The rest is the
// image without its magic.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::string image = "Wordlex Binary Format";
    image.append(reinterpret_cast<const char*>(data + 1), size - 1);
    Check(image, (data[0] & 1) != 0, (data[0] & 2) != 0);
    return 0;
}
