#pragma once
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace hardening {

enum class Fault { kEnds, kThrows };
enum class Seeks {
    kAnywhere,
    kNotToTheEnd,
    kNowhere
};  // the last cannot report its position, either

// Delivers bytes one at a time up to a fault, again after each seek back. Needs no memory.
class FaultySource : public std::streambuf {
public:
    // `content` is borrowed. A seek to the end reports the end of the whole content.
    FaultySource(std::string_view content, std::size_t newFaultAt, Fault newFault, Seeks newSeeks)
        : bytes(content), faultAt(newFaultAt), fault(newFault), seeks(newSeeks) {}

protected:
    int_type underflow() override {
        const std::size_t at = Position();
        if (at == bytes.size()) return traits_type::eof();
        if (at == faultAt) return Fail();
        SetPosition(at, 1);
        return traits_type::to_int_type(bytes[at]);
    }
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode) override {
        if (seeks == Seeks::kNowhere || (from == std::ios_base::end && seeks != Seeks::kAnywhere))
            return pos_type(off_type(-1));
        const std::size_t base = from == std::ios_base::beg   ? 0
                                 : from == std::ios_base::cur ? Position()
                                                              : bytes.size();
        SetPosition(base + static_cast<std::size_t>(offset), 0);
        return pos_type(static_cast<off_type>(Position()));
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override {
        return seekoff(position, std::ios_base::beg, mode);
    }

private:
    void SetPosition(std::size_t at, std::size_t ready) {
        char* const next = const_cast<char*>(bytes.data()) + at;  // is read only
        setg(next, next, next + ready);
    }
    std::size_t Position() const {
        return gptr() ? static_cast<std::size_t>(gptr() - bytes.data()) : 0;
    }
    int_type Fail() const {
        if (fault == Fault::kThrows) throw std::runtime_error("source");
        return traits_type::eof();
    }

    std::string_view bytes;
    std::size_t faultAt;
    Fault fault;
    Seeks seeks;
};

// Accepts bytes up to a fault. Needs no memory of its own once `taken` has room.
class FaultySink : public std::streambuf {
public:
    FaultySink(std::string& into, std::size_t newFaultAt, Fault newFault)
        : taken(into), faultAt(newFaultAt), fault(newFault) {}

protected:
    int_type overflow(int_type unit) override {
        if (taken.size() == faultAt) {
            if (fault == Fault::kThrows) throw std::runtime_error("sink");
            return traits_type::eof();
        }
        taken += traits_type::to_char_type(unit);
        return unit;
    }

private:
    std::string& taken;
    std::size_t faultAt;
    Fault fault;
};

}  // namespace hardening
