#include "wordlex/functionality/ByteRunValue.h"

#include <cstring>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

static_assert(sizeof(ByteRunValue) % alignof(void*) == 0,
              "the bytes after the object serve as UTF-16 units");

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
