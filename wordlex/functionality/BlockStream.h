#pragma once
#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <ostream>
#include <streambuf>

namespace lexon_private {

// Collects written bytes and passes them to another stream in blocks: the one buffer for saving a
// dictionary.
// Owns:    its buffer; borrows the target, which outlives it.
// Failure: a target that fails makes this stream bad, and nothing more is passed on. Finish then
//          sets the target to this stream's state, and throws what the target threw. Without
//          Finish, bytes written after the last full block are lost.
class BlockStream final : public std::ostream {
public:
    explicit BlockStream(std::ostream& target) : std::ostream(nullptr), blocks(target) {
        rdbuf(&blocks);
    }

    // Like write(), but without a call when the buffer has room.
    void Append(const void* bytes, std::size_t byteCount) {
        const auto* const first = static_cast<const char*>(bytes);
        if (good() && blocks.TakeWhole(first, byteCount)) return;
        write(first, static_cast<std::streamsize>(byteCount));
    }
    // Passes on the rest.
    void Finish();

private:
    class Blocks final : public std::streambuf {
    public:
        explicit Blocks(std::ostream& to) : target(to) { Clear(); }

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
        // A file system takes a large block in large pages.
        static constexpr std::size_t kBlockBytes = 0x40000;

        void Clear() noexcept { setp(block.get(), block.get() + kBlockBytes); }
        // Passes on the collected bytes, then these. False when the target accepts no more.
        bool HandOn(const char* bytes, std::streamsize byteCount) noexcept;

        std::ostream& target;
        std::exception_ptr thrown;
        std::unique_ptr<char[]> block = std::make_unique_for_overwrite<char[]>(kBlockBytes);
    };

    Blocks blocks;
};

}  // namespace lexon_private
