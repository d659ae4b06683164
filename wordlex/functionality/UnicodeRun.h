#pragma once
#include <cstdint>
#include <iosfwd>

#include "wordlex/functionality/ByteRun.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// Immutable, shared UTF-16 text: a ByteRun of code units in host byte order, not terminated.
// Owns:     one reference to the shared value; copies and assignments share it.
// Equality: identity of the shared value, as ByteRun; all empty runs are equal. Texts are compared
//           by UnicodeUtil::Compare.
// Threads:  none. The process-wide empty run is counted too, so runs in use by several threads need
//           one lock even when their texts have nothing to do with each other.
class UnicodeRun {
public:
    UnicodeRun() : run(EmptyRunInstance().run) {}
    UnicodeRun(const unsigned short* units, unsigned long count)
        : run(reinterpret_cast<const unsigned char*>(units), 2 * count, false) {}
    // A run over a value whose bytes are units, made elsewhere.
    explicit UnicodeRun(ByteRunValue* made) noexcept : run(made) {}

    // A copy of the units with room for the object that hands the run out; see TakeRoom.
    static UnicodeRun WithRoom(const unsigned short* units, unsigned long count);
    // The room in the run's allocation, for the first who asks; null for anyone else and where
    // there is none. Whoever uses it holds a copy of the run as long.
    void* TakeRoom() const noexcept { return run.TakeRoom(); }

    // Made on first use and shared by every default-constructed or cleared run.
    static const UnicodeRun& EmptyRunInstance();

    const unsigned short* GetData() const noexcept {  // null when empty
        return reinterpret_cast<const unsigned short*>(run.GetData());
    }
    unsigned long GetLength() const noexcept { return run.GetLength() / 2; }
    bool IsEmpty() const noexcept { return run.GetLength() == 0; }
    void Clear() { *this = EmptyRunInstance(); }
    bool operator==(const UnicodeRun& other) const noexcept = default;
    void Validate() const { run.Validate(); }  // throws 'PARM'

    // Text: the units with LF, CR and the quotation mark escaped, then U+0022 U+000A, in host
    // order; gives the bytes of the value alone. Binary with an encoding: the text in it; without:
    // the units in host order; gives the bytes written.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const;

private:
    ByteRun run;
};

}  // namespace lexon_private
