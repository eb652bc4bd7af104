// Reference-counted base class.
#pragma once

#include <atomic>
#include <cstdint>

namespace corvane {

/// Starts with one reference; the object destroys itself when the last one is released, so a shared object
/// must have been made with new. An object that is never shared may be a plain value.
class VxObject {
public:
    VxObject() = default;
    VxObject(const VxObject&) {} // a copy is an object of its own, with one reference
    VxObject& operator=(const VxObject&) { return *this; }

    /// Answers the references that are left.
    virtual std::int32_t Release() {
        const std::int32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }
    virtual ~VxObject() = default;

    void AddRef() { ++references_; }

private:
    std::atomic<std::int32_t> references_ = 1;
};

} // namespace corvane
