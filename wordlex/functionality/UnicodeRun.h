#pragma once
#include <cstdint>
#include <iosfwd>

#include "wordlex/functionality/ByteRun.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// Immutable, shared UTF-16 text: a ByteRun of code units in host byte order, not terminated.
// Owns:     one reference to the shared value; copies and assignments share it.
// Equality: identity of the shared value, as ByteRun; all empty runs are equal.
//           UnicodeUtil::Compare compares texts.
// Threads:  none. The process-wide empty run is counted too, so runs in several threads need one
//           lock even when their texts are unrelated.
class UnicodeRun {
public:
    UnicodeRun() : run(EmptyRunInstance().run) {}
    UnicodeRun(const unsigned short* units, unsigned long count)
        : run(reinterpret_cast<const unsigned char*>(units), 2 * count, false) {}
    // A run over an existing value whose bytes are units.
    explicit UnicodeRun(ByteRunValue* made) noexcept : run(made) {}

    // A copy of the units, with room for the object that the caller returns; see TakeRoom.
    static UnicodeRun WithRoom(const unsigned short* units, unsigned long count);
    // The room in the run's allocation, for the first caller; null for all others and when there is
    // none. Its user must hold a copy of the run as long.
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
    // order; returns the number of bytes of the value. Binary with an encoding: the text in it;
    // without: the units in host order. Returns the number of bytes written.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const;

private:
    ByteRun run;
};

}  // namespace lexon_private
