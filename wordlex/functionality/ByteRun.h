#pragma once
#include <utility>

#include "wordlex/functionality/ByteRunValue.h"

namespace lexon_private {

// Handle to one shared, immutable run of bytes. Lengths are bytes, never UTF-16 units.
// Owns:      one reference to a heap ByteRunValue; the last handle deletes it.
// Invariant: the bytes never change, so GetData() is stable while any handle lives.
// Equality:  identity. Runs made separately from equal bytes differ; all empty runs are equal.
// Threads:   none. Counts are plain integers: even copying needs the dictionary's lock.
class ByteRun {
public:
    // Always copies; `bytes` may be null when `byteCount` is 0. `flag` is unused.
    ByteRun(const unsigned char* bytes, unsigned long byteCount, bool flag)
        : ByteRun(ByteRunValue::FindOrMake(bytes, byteCount, flag)) {}
    // Adopts a new value as its first holder.
    explicit ByteRun(ByteRunValue* made) noexcept : value(made) { value->AddReference(); }
    ByteRun(const ByteRun& other) noexcept : value(other.value) {
        if (value != nullptr) value->AddReference();
    }
    // A run that was moved from has no value: it can be assigned to, validated and destroyed.
    ByteRun(ByteRun&& other) noexcept : value(std::exchange(other.value, nullptr)) {}
    ByteRun& operator=(const ByteRun& other) noexcept {
        ByteRun(other).Swap(*this);
        return *this;
    }
    ByteRun& operator=(ByteRun&& other) noexcept {
        ByteRun(std::move(other)).Swap(*this);
        return *this;
    }
    ~ByteRun() {
        if (value != nullptr) value->RemoveReference();
    }

    const unsigned char* GetData() const noexcept { return value->GetData(); }  // null when empty
    unsigned long GetLength() const noexcept { return value->GetLength(); }
    bool operator==(const ByteRun& other) const noexcept { return GetData() == other.GetData(); }

    void* TakeRoom() const noexcept { return value == nullptr ? nullptr : value->TakeRoom(); }

    void Validate() const { ByteRunValue::ValidatePointer(value); }  // throws 'PARM'

private:
    void Swap(ByteRun& other) noexcept { std::swap(value, other.value); }

    ByteRunValue* value;
};

}  // namespace lexon_private
