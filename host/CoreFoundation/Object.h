#pragma once

#include <atomic>
#include <vector>

#include "host/CoreFoundation/CoreFoundation.h"

namespace host::cf {

enum class Type { kString, kArray };

// The head of every object: CFRetain and CFRelease find it through any reference.
// Threads: the count is atomic. The last release sees everything that other holders did before
// theirs.
class ObjectHead {
public:
    // An immortal object is not counted as live, and retaining or releasing it does nothing.
    explicit ObjectHead(Type kind, bool isImmortal = false) noexcept;
    ~ObjectHead();
    ObjectHead(const ObjectHead&) = delete;
    ObjectHead& operator=(const ObjectHead&) = delete;

    void Retain() const noexcept;
    bool Release() const noexcept;  // true for the last reference: the caller deletes the object

    const Type type;

private:
    const bool immortal;
    mutable std::atomic<long> references{1};
};

}  // namespace host::cf

struct OpaqueCFString {
    // Takes the units over.
    explicit OpaqueCFString(std::vector<UniChar> text, bool isImmortal = false) noexcept;
    // Borrows the units.
    OpaqueCFString(const UniChar* text, CFIndex count) noexcept;

    host::cf::ObjectHead head;
    std::vector<UniChar> storage;  // empty when the units are borrowed
    const UniChar* units;
    CFIndex length;
};

// Holds one reference to each value.
struct OpaqueCFArray {
    explicit OpaqueCFArray(
        std::vector<CFTypeRef> references) noexcept;  // takes the references over
    ~OpaqueCFArray();

    host::cf::ObjectHead head{host::cf::Type::kArray};
    std::vector<CFTypeRef> values;
};
