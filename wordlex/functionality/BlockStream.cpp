#include "wordlex/functionality/BlockStream.h"

#include <utility>

namespace lexon_private {

void BlockStream::Finish() {
    if (!bad() && !blocks.HandOn()) setstate(badbit);
    blocks.Finish(rdstate());
}

void BlockStream::Blocks::Finish(std::ios_base::iostate state) {
    if (thrown != nullptr) std::rethrow_exception(std::exchange(thrown, nullptr));
    if (state != std::ios_base::goodbit) target.setstate(state);
}

std::streamsize BlockStream::Blocks::xsputn(const char* bytes, std::streamsize byteCount) {
    if (TakeWhole(bytes, static_cast<std::size_t>(byteCount))) return byteCount;
    if (byteCount >= static_cast<std::streamsize>(kBlockBytes)) {
        return HandOn(bytes, byteCount) ? byteCount : 0;
    }
    if (!HandOn()) return 0;
    TakeWhole(bytes, static_cast<std::size_t>(byteCount));
    return byteCount;
}

BlockStream::Blocks::int_type BlockStream::Blocks::overflow(int_type byte) {
    if (!HandOn()) return traits_type::eof();
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    return sputc(traits_type::to_char_type(byte));
}

bool BlockStream::Blocks::HandOn(const char* bytes, std::streamsize byteCount) noexcept {
    try {
        target.write(pbase(), pptr() - pbase());
        if (byteCount != 0) target.write(bytes, byteCount);
    } catch (...) {
        thrown = std::current_exception();
    }
    Clear();
    return thrown == nullptr && target.good();
}

}  // namespace lexon_private
