#pragma once

#include <atomic>
#include <vector>

#include "host/CoreFoundation/CoreFoundation.h"

namespace host::cf {

enum class Type { kString, kArray };

// What every object begins with, so that CFRetain and CFRelease find it behind any reference.
// Threads: the count is atomic; the last release sees all that other holders did before theirs.
class ObjectHead {
public:
    // An immortal object is not counted as live, and retaining or releasing it does nothing.
    explicit ObjectHead(Type kind, bool isImmortal = false) noexcept;
    ~ObjectHead();
    ObjectHead(const ObjectHead&) = delete;
    ObjectHead& operator=(const ObjectHead&) = delete;

    void Retain() const noexcept;
    bool Release() const noexcept;  // true for the last reference: the object is to be deleted

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
