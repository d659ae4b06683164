#pragma once
#include <cstddef>

#include "wordlex/functionality/RefCountObj.h"

namespace lexon_private {

// The shared, immutable bytes behind ByteRun handles.
// Owns:  its bytes, which lie behind the object in the same allocation.
// Units: lengths are bytes.
class ByteRunValue final : public RefCountObj {
public:
    // Always a new value, with no reference yet, that holds a copy of the bytes; nothing is looked
    // up. `bytes` may be null when `byteCount` is 0; `flag` is unused.
    static ByteRunValue* FindOrMake(const unsigned char* bytes, unsigned long byteCount, int flag);
    // A new value of `byteCount` bytes, which the caller fills through `bytes` before sharing it.
    // Behind them lie `room` bytes that are the caller's as long as the value lives.
    static ByteRunValue* MakeUninitialized(unsigned long byteCount, unsigned char*& bytes,
                                           unsigned long room = 0);
    // Gives `value` back; throws 'PARM' when it is null or has no holder.
    static ByteRunValue* ValidatePointer(ByteRunValue* value);

    ByteRunValue(const ByteRunValue&) = delete;
    ByteRunValue& operator=(const ByteRunValue&) = delete;

    // Null when the value is empty.
    const unsigned char* GetData() const noexcept { return length == 0 ? nullptr : Bytes(); }
    unsigned long GetLength() const noexcept { return length; }

    static void operator delete(void* memory) noexcept { ::operator delete(memory); }

private:
    explicit ByteRunValue(unsigned long byteCount) noexcept : length(byteCount) {}
    ~ByteRunValue() override = default;

    // Needs no delete of its own form, for the constructor cannot throw. It would have that of a
    // sized delete, which must not match a placement new.
    static void* operator new(std::size_t objectSize, unsigned long byteCount);

    const unsigned char* Bytes() const noexcept {
        return reinterpret_cast<const unsigned char*>(this + 1);
    }

    unsigned long length;
};

}  // namespace lexon_private
