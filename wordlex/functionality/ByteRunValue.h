#pragma once
#include <cstddef>
#include <limits>
#include <new>

#include "wordlex/functionality/RefCountObj.h"

namespace lexon_private {

// The shared, immutable bytes that ByteRun handles refer to.
// Owns:  its bytes, which follow the object in the same allocation.
// Units: lengths are bytes.
class ByteRunValue final : public RefCountObj {
public:
    // Always a new value without a reference, with a copy of the bytes; nothing is searched.
    // `bytes` may be null when `byteCount` is 0; `flag` is unused.
    static ByteRunValue* FindOrMake(const unsigned char* bytes, unsigned long byteCount, int flag);
    // A new value of `byteCount` bytes, which the caller fills through `bytes` before sharing it.
    // They are followed by `room` bytes that belong to the caller as long as the value lives.
    static ByteRunValue* MakeUninitialized(unsigned long byteCount, unsigned char*& bytes,
                                           unsigned long room = 0) {
        auto* const value = new (byteCount + room) ByteRunValue(byteCount);
        bytes = reinterpret_cast<unsigned char*>(value + 1);
        return value;
    }
    // The same, with room of kRoom bytes, aligned for pointers, after the bytes.
    static ByteRunValue* MakeWithRoom(unsigned long byteCount, unsigned char*& bytes) {
        ByteRunValue* const value =
            MakeUninitialized(byteCount, bytes, PaddingAfter(byteCount) + kRoom);
        value->hasRoom = true;
        return value;
    }
    // That room, for the first caller; null for all others. Its user holds a reference.
    void* TakeRoom() noexcept {
        if (!hasRoom) return nullptr;
        hasRoom = false;
        return reinterpret_cast<unsigned char*>(this + 1) + length + PaddingAfter(length);
    }

    // Returns `value`. Throws 'PARM' when it is null or has no holder.
    static ByteRunValue* ValidatePointer(ByteRunValue* value);

    static constexpr unsigned long kRoom = 3 * sizeof(void*);  // bytes

    ByteRunValue(const ByteRunValue&) = delete;
    ByteRunValue& operator=(const ByteRunValue&) = delete;

    // Null when the value is empty.
    const unsigned char* GetData() const noexcept { return length == 0 ? nullptr : Bytes(); }
    unsigned long GetLength() const noexcept { return length; }

    static void operator delete(void* memory) noexcept { ::operator delete(memory); }

private:
    explicit ByteRunValue(unsigned long byteCount) noexcept : length(byteCount) {}
    ~ByteRunValue() override = default;

    // No placement delete is needed, because the constructor cannot throw. It would look like a
    // sized delete, which must not match a placement new.
    static void* operator new(std::size_t objectSize, unsigned long byteCount) {
        if (byteCount > std::numeric_limits<std::size_t>::max() - objectSize) {
            throw std::bad_alloc();
        }
        return ::operator new(objectSize + byteCount);
    }
    // Bytes between a value's bytes and the next place that is aligned for pointers.
    static unsigned long PaddingAfter(unsigned long byteCount) noexcept {
        return -byteCount % alignof(void*);
    }

    const unsigned char* Bytes() const noexcept {
        return reinterpret_cast<const unsigned char*>(this + 1);
    }

    bool hasRoom = false;
    unsigned long length;
};

}  // namespace lexon_private
