// Dictionaries of every kind, loaded into a catalog and into the engine. Both must return the same
// texts. So must a catalog that opens the engine's image with its index; with a damaged index it
// must not crash.

#include <algorithm>
#include <cstdint>
#include <span>
#include <sstream>
#include <string>

#include "fuzz/Require.h"
#include "tests/wordlex/catalog/SameAnswers.h"
#include "wordlex/catalog/IndexSection.h"

namespace {

using lexon_private::Dictionary;

void Report(const std::string& difference) {
    if (!difference.empty()) std::fprintf(stderr, "%s\n", difference.c_str());
    REQUIRE(difference.empty());
}

// Looks up everything; the results do not matter.
std::size_t AskAll(const lexon::Catalog& catalog) {
    std::size_t units = 0;
    for (const lexon::Entry& entry : catalog.All()) {
        units += entry.text.size() + entry.accelerator.size();
        units += catalog.Find("$$$" + std::string(entry.key)).value_or(u"").size();
    }
    return units;
}

// Changes bytes anywhere in a file; three bytes of `changes` say where and how.
void Damage(std::string& file, std::span<const std::uint8_t> changes) {
    for (; changes.size() >= 3; changes = changes.subspan(3)) {
        const std::size_t at = (changes[0] * 256U + changes[1]) * file.size() / 65536;
        file[at] ^= static_cast<char>(changes[2]);
    }
}

void CheckIndexed(const std::string& file, std::span<const std::uint8_t> changes) {
    Dictionary engine(true);
    engine.Read(file.data(), static_cast<int>(file.size()), true);
    std::ostringstream out;
    engine.Serialize(out, lexon::SaveType::kBinary, nullptr, lexon::EndianT::kHost, 0);
    const std::string image = out.str();
    if (lexon::Catalog::TryLoad(catalog_tests::BytesOf(image)).Ok()) {
        std::string indexed = image + lexon::detail::MakeIndexSection(image);
        Report(catalog_tests::DifferenceOf(indexed));
        Damage(indexed, changes);
        const auto damaged = lexon::Catalog::TryLoad(catalog_tests::BytesOf(indexed), nullptr);
        if (damaged.Ok()) AskAll(*damaged);
    }
}

}  // namespace

// The input's first byte says whether the magic is put before the rest. Its last bytes also say how
// the indexed file is damaged.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLargest = 8192;  // entries that share bytes are written apart
    constexpr std::size_t kChanges = 4;
    if (size == 0 || size > kLargest) return 0;
    std::string file = (data[0] & 1) != 0 ? "Wordlex Binary Format" : "";
    file.append(reinterpret_cast<const char*>(data + 1), size - 1);
    Report(catalog_tests::DifferenceOf(file));
    const std::span input(data, size);
    CheckIndexed(file, input.last(std::min(size, 3 * kChanges)));
    return 0;
}
