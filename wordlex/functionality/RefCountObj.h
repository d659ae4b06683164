#pragma once
#include <cstdint>

namespace lexon_private {

// Base of all values shared by reference count.
// Owns:    itself: the holder that drops the last reference deletes it. The destructor is hidden so
//          that neither a stray delete nor a value on the stack compiles.
// Threads: none. Counts are plain integers; holders in several threads need one lock around them.
class RefCountObj {
public:
    RefCountObj() noexcept = default;
    RefCountObj(const RefCountObj&) noexcept {}  // the copy has no holder yet
    RefCountObj& operator=(const RefCountObj&) noexcept { return *this; }  // holders stay

    void AddReference() noexcept { ++count; }
    // Returns the new count; 0 means that the object is gone.
    std::int32_t RemoveReference() noexcept {
        const std::int32_t left = --count;
        if (left == 0) delete this;
        return left;
    }
    bool IsShared() const noexcept { return count > 1; }
    bool Exists() const noexcept { return count > 0; }

protected:
    virtual ~RefCountObj() = default;

private:
    std::int32_t count = 0;
};

}  // namespace lexon_private
