// Decoded images: rows of 32-bit pixels.
#pragma once

#include "platform/quicktime/types.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace qt {

/// What all pixels of one image may take together, in bytes.
inline constexpr std::uint64_t kMaximumPixelBytes = std::uint64_t{1} << 30;

/// Pixels of 8 bits a channel in the order blue, green, red, alpha in memory, that is 0xAARRGGBB as a native
/// word. Alpha is straight (not multiplied into the colours); an image without alpha holds 255 throughout.
/// Rows are aligned to 16 bytes and follow each other at `stride` bytes.
class PixelImage {
public:
    PixelImage() = default;

    /// Room for the image; the pixels are not cleared. codecSizeErr for no or too many pixels, memFullErr.
    ComponentResult Allocate(std::int32_t width, std::int32_t height);

    [[nodiscard]] std::int32_t width() const { return width_; }
    [[nodiscard]] std::int32_t height() const { return height_; }
    [[nodiscard]] std::size_t stride() const { return stride_; }
    [[nodiscard]] std::uint32_t* Row(std::int32_t y) {
        return reinterpret_cast<std::uint32_t*>(pixels_.get() + static_cast<std::size_t>(y) * stride_);
    }
    [[nodiscard]] const std::uint32_t* Row(std::int32_t y) const {
        return reinterpret_cast<const std::uint32_t*>(pixels_.get() + static_cast<std::size_t>(y) * stride_);
    }
    [[nodiscard]] std::byte* Bytes() { return pixels_.get(); }
    [[nodiscard]] const std::byte* Bytes() const { return pixels_.get(); }

    void Fill(std::uint32_t pixel);

    bool has_alpha = false; ///< some pixel may be other than opaque
    bool is_grey = false;   ///< red, green and blue are equal throughout

private:
    struct Free {
        void operator()(std::byte* pixels) const;
    };

    std::unique_ptr<std::byte, Free> pixels_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::size_t stride_ = 0;
};

/// 0xAARRGGBB.
constexpr std::uint32_t Pixel(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                              std::uint32_t alpha = 255) {
    return alpha << 24 | red << 16 | green << 8 | blue;
}
constexpr std::uint32_t Alpha(std::uint32_t pixel) {
    return pixel >> 24;
}
constexpr std::uint32_t Red(std::uint32_t pixel) {
    return pixel >> 16 & 0xFF;
}
constexpr std::uint32_t Green(std::uint32_t pixel) {
    return pixel >> 8 & 0xFF;
}
constexpr std::uint32_t Blue(std::uint32_t pixel) {
    return pixel & 0xFF;
}

} // namespace qt
