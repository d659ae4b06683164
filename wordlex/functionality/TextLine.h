#pragma once
#include <array>
#include <cstdint>
#include <iosfwd>
#include <span>

namespace lexon_private {

// Composes lines of a text dictionary, UTF-16 in host order, and writes them in pieces of a
// kilobyte.
// Failure: reported by the stream's state.
class TextLine {
public:
    explicit TextLine(std::ostream& destination) noexcept : out(destination) {}

    // U+0022, each byte as a unit, U+003D.
    void PutKey(std::span<const unsigned char> key);
    // The units, with LF, CR and the quotation mark escaped, then U+0022 and the line's end.
    // Returns the number of bytes of the escaped units.
    std::uint32_t PutValue(std::span<const unsigned short> value);
    void Write();  // writes the rest

private:
    static constexpr std::size_t kUnits = 512;

    void Put(unsigned short unit) {
        if (used == kUnits) Write();
        units[used++] = unit;
    }
    template <class Unit>
    void PutAll(std::span<const Unit> all);

    std::ostream& out;
    std::size_t used = 0;
    std::array<unsigned short, kUnits> units;
};

}  // namespace lexon_private
