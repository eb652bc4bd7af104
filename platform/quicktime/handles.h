// Memory blocks of the media layer, and their owner.
#pragma once

#include "platform/quicktime/types.h"

#include <span>
#include <utility>
#include <vector>

/// A block that can be resized in place: `*handle` is the address of its bytes, good until the block is
/// resized or disposed of.
using Handle = char**;

/// A block of `size` bytes, not cleared; null without memory (see MemError), for more
/// than 8 GiB, or for a negative size.
Handle NewHandle(Size size);
void DisposeHandle(Handle handle); ///< null is allowed
Size GetHandleSize(Handle handle);
/// Keeps the bytes that fit; new ones are not cleared. Without memory the block stays as it was.
void SetHandleSize(Handle handle, Size size);
/// Makes a block with a copy of the bytes.
OSErr PtrToHand(const void* bytes, Handle* handle, Size size);
/// Outcome of the latest call above: 0, memFullErr or paramErr.
OSErr MemError();

namespace qt {

/// Sole owner of a block.
class MemoryHandle {
public:
    MemoryHandle() = default;
    explicit MemoryHandle(Handle handle) : handle_(handle) {}
    MemoryHandle(MemoryHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    MemoryHandle& operator=(MemoryHandle&& other) noexcept {
        if (this != &other) {
            DisposeHandle(handle_);
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    ~MemoryHandle() { DisposeHandle(handle_); }

    [[nodiscard]] Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    Handle handle_ = nullptr;
};

/// The bytes of a block; none of a null one.
std::span<std::byte> HandleBytes(Handle handle);

/// The bytes become those of the block, in place of what it held and without a copy.
OSErr MoveToHandle(std::vector<std::byte> bytes, Handle handle);

} // namespace qt
