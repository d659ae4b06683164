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
    // A new value of `byteCount` bytes for the caller to fill, through `bytes`, before it is
    // shared.
    static ByteRunValue* MakeUninitialized(unsigned long byteCount, unsigned char*& bytes);
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

    static void* operator new(std::size_t objectSize, unsigned long byteCount);
    static void operator delete(void* memory, unsigned long) noexcept { ::operator delete(memory); }

    const unsigned char* Bytes() const noexcept {
        return reinterpret_cast<const unsigned char*>(this + 1);
    }

    unsigned long length;
};

}  // namespace lexon_private
