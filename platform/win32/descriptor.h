// Sole owner of a file descriptor.
#pragma once

#include <cerrno>
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

} // namespace win32
