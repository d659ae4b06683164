#pragma once
#include <cstring>

#include "wordlex/functionality/HashItem.h"

namespace lexon_private {

// A byte-string key: no case folding, no encoding, no terminator.
// Owns:     its bytes when made with `copy` or copied from another key. Otherwise it borrows them,
//           as a probe for HashTableGeneric::Find and Remove.
// Equality: equal bytes.
class ByteRunKey : public HashItem {
public:
    ByteRunKey(const unsigned char* bytes, unsigned long byteCount, bool copy)
        : data(byteCount == 0 ? nullptr
               : copy         ? CopyBytes(bytes, byteCount)
                              : bytes),
          length(byteCount),
          ownsData(copy) {}
    ByteRunKey(const ByteRunKey& other) : ByteRunKey(other.data, other.length, true) {}
    ByteRunKey& operator=(const ByteRunKey&) = delete;
    ~ByteRunKey() override {
        if (ownsData) delete[] data;
    }

    const unsigned char* GetData() const noexcept { return data; }  // null when empty
    unsigned long GetLength() const noexcept { return length; }
    bool HasBytes(const unsigned char* bytes, unsigned long byteCount) const noexcept {
        return length == byteCount && (length == 0 || std::memcmp(data, bytes, length) == 0);
    }

    // Binary: the raw bytes; returns their count. Text: U+0022, each byte as a unit, U+003D, in
    // host order; returns 0. The value's writer closes the quotation. An empty key writes nothing.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const override;
    unsigned long Hash(unsigned long bucketCount) const override;
    // `other` is a ByteRunKey.
    bool operator==(const HashItem& other) const final;
    std::uint32_t KeyHash() const final;

private:
    static const unsigned char* CopyBytes(const unsigned char* bytes, unsigned long byteCount);

    const unsigned char* data;
    unsigned long length;
    bool ownsData;
};

}  // namespace lexon_private
