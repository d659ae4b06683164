#pragma once
#include <array>
#include <cstddef>
#include <cstring>
#include <exception>
#include <ostream>
#include <streambuf>

namespace lexon_private {

// Collects what is written to it and hands it on to another stream in blocks: the one buffer of
// everything that saves a dictionary.
// Owns:    its buffer, which is part of the object; borrows the target, which outlives it.
// Failure: a target that fails makes this stream bad, and nothing more is handed on. Finish then
//          gives the target the state that this stream has, and throws what the target threw. What
//          was written after the last full block is lost without Finish.
class BlockStream final : public std::ostream {
public:
    explicit BlockStream(std::ostream& target) : std::ostream(nullptr), blocks(target) {
        rdbuf(&blocks);
    }

    // As write(), without a call where the buffer has room.
    void Append(const void* bytes, std::size_t byteCount) {
        const auto* const first = static_cast<const char*>(bytes);
        if (good() && blocks.TakeWhole(first, byteCount)) return;
        write(first, static_cast<std::streamsize>(byteCount));
    }
    // Hands on the rest.
    void Finish();

private:
    class Blocks final : public std::streambuf {
    public:
        explicit Blocks(std::ostream& to) noexcept : target(to) { Clear(); }

        bool TakeWhole(const char* bytes, std::size_t byteCount) noexcept {
            if (byteCount > static_cast<std::size_t>(epptr() - pptr())) return false;
            if (byteCount != 0) std::memcpy(pptr(), bytes, byteCount);
            pbump(static_cast<int>(byteCount));
            return true;
        }
        bool HandOn() noexcept { return HandOn(nullptr, 0); }
        void Finish(std::ios_base::iostate state);

    protected:
        std::streamsize xsputn(const char* bytes, std::streamsize byteCount) override;
        int_type overflow(int_type byte) override;

    private:
        // Few calls of the system, and the entries keep most of the first-level cache.
        static constexpr std::size_t kBlockBytes = 0x4000;

        void Clear() noexcept { setp(block.data(), block.data() + block.size()); }
        // What was collected, then these bytes. False when the target takes no more.
        bool HandOn(const char* bytes, std::streamsize byteCount) noexcept;

        std::ostream& target;
        std::exception_ptr thrown;
        std::array<char, kBlockBytes> block;
    };

    Blocks blocks;
};

}  // namespace lexon_private
