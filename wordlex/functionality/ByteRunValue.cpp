#include "wordlex/functionality/ByteRunValue.h"

#include <cstring>
#include <limits>
#include <new>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

static_assert(sizeof(ByteRunValue) % alignof(unsigned short) == 0,
              "the bytes behind the object serve as UTF-16 units");

namespace {

// Bytes between a value's bytes and the next place that is aligned for pointers.
unsigned long PaddingAfter(unsigned long byteCount) noexcept {
    static_assert(sizeof(ByteRunValue) % alignof(void*) == 0);
    return -byteCount % alignof(void*);
}

}  // namespace

void* ByteRunValue::operator new(std::size_t objectSize, unsigned long byteCount) {
    if (byteCount > std::numeric_limits<std::size_t>::max() - objectSize) throw std::bad_alloc();
    return ::operator new(objectSize + byteCount);
}

ByteRunValue* ByteRunValue::MakeUninitialized(unsigned long byteCount, unsigned char*& bytes,
                                              unsigned long room) {
    auto* const value = new (byteCount + room) ByteRunValue(byteCount);
    bytes = reinterpret_cast<unsigned char*>(value + 1);
    return value;
}

ByteRunValue* ByteRunValue::MakeWithRoom(unsigned long byteCount, unsigned char*& bytes) {
    ByteRunValue* const value =
        MakeUninitialized(byteCount, bytes, PaddingAfter(byteCount) + kRoom);
    value->hasRoom = true;
    return value;
}

void* ByteRunValue::TakeRoom() noexcept {
    if (!hasRoom) return nullptr;
    hasRoom = false;
    return reinterpret_cast<unsigned char*>(this + 1) + length + PaddingAfter(length);
}

ByteRunValue* ByteRunValue::FindOrMake(const unsigned char* bytes, unsigned long byteCount,
                                       int /*flag*/) {
    unsigned char* copy = nullptr;
    ByteRunValue* const value = MakeUninitialized(byteCount, copy);
    if (byteCount != 0) std::memcpy(copy, bytes, byteCount);
    return value;
}

ByteRunValue* ByteRunValue::ValidatePointer(ByteRunValue* value) {
    if (value == nullptr || !value->Exists()) {
        throw lexon::ASErrException(lexon::ASErrException::kBadParameter);
    }
    return value;
}

}  // namespace lexon_private
