// File descriptors: their owner, and what both it and bare ones need.
#pragma once

#include <cerrno>
#include <cstddef>
#include <span>
#include <unistd.h>
#include <utility>

namespace win32 {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            Close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Close(); }

    /// Closes it now; 0, or the errno of data that could not be written after all.
    int Close() {
        if (number_ < 0) return 0;
        return close(std::exchange(number_, -1)) == 0 ? 0 : errno;
    }

    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_ = -1;
};

/// Writes all of the bytes at the file's position; 0 or the errno.
inline int WriteAll(int file, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return errno;
        if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace win32
