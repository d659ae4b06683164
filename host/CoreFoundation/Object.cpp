#include "host/CoreFoundation/Object.h"

#include <utility>

#include "host/CoreFoundation/LiveObjects.h"

namespace {

std::atomic<std::size_t> liveObjects{0};

const host::cf::ObjectHead& HeadOf(CFTypeRef object) {
    return *static_cast<const host::cf::ObjectHead*>(object);
}

}  // namespace

namespace host::cf {

std::size_t LiveObjectCount() noexcept { return liveObjects; }

ObjectHead::ObjectHead(Type kind, bool isImmortal) noexcept : type(kind), immortal(isImmortal) {
    if (!immortal) ++liveObjects;
}

ObjectHead::~ObjectHead() {
    if (!immortal) --liveObjects;
}

void ObjectHead::Retain() const noexcept {
    if (!immortal) references.fetch_add(1, std::memory_order_relaxed);
}

bool ObjectHead::Release() const noexcept {
    return !immortal && references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

}  // namespace host::cf

OpaqueCFString::OpaqueCFString(std::vector<UniChar> text, bool isImmortal) noexcept
    : head(host::cf::Type::kString, isImmortal),
      storage(std::move(text)),
      units(storage.data()),
      length(static_cast<CFIndex>(storage.size())) {}

OpaqueCFString::OpaqueCFString(const UniChar* text, CFIndex count) noexcept
    : head(host::cf::Type::kString), units(text), length(count) {}

OpaqueCFArray::OpaqueCFArray(std::vector<CFTypeRef> references) noexcept
    : values(std::move(references)) {}

OpaqueCFArray::~OpaqueCFArray() {
    for (const CFTypeRef value : values)
        CFRelease(value);
}

CFTypeRef CFRetain(CFTypeRef object) {
    HeadOf(object).Retain();
    return object;
}

void CFRelease(CFTypeRef object) {
    const host::cf::ObjectHead& head = HeadOf(object);
    if (!head.Release()) return;
    switch (head.type) {
        case host::cf::Type::kString:
            delete static_cast<CFStringRef>(object);
            break;
        case host::cf::Type::kArray:
            delete static_cast<CFArrayRef>(object);
            break;
    }
}

CFIndex CFArrayGetCount(CFArrayRef array) { return static_cast<CFIndex>(array->values.size()); }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return array->values[static_cast<std::size_t>(index)];
}
