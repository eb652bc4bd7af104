#include "platform/quicktime/pixel_image.h"

#include <algorithm>
#include <cstdlib>

namespace qt {
namespace {

constexpr std::size_t kRowAlignment = 16;
constexpr std::size_t kBaseAlignment = 64;

} // namespace

void PixelImage::Free::operator()(std::byte* pixels) const {
    std::free(pixels);
}

ComponentResult PixelImage::Allocate(std::int32_t width, std::int32_t height) {
    if (width <= 0 || height <= 0) return codecSizeErr;
    const std::uint64_t stride =
        (static_cast<std::uint64_t>(width) * 4 + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    const std::uint64_t size = stride * static_cast<std::uint64_t>(height);
    if (size > kMaximumPixelBytes) return codecSizeErr;
    const std::uint64_t rounded = (size + kBaseAlignment - 1) / kBaseAlignment * kBaseAlignment;
    pixels_.reset(static_cast<std::byte*>(std::aligned_alloc(kBaseAlignment, rounded)));
    if (pixels_ == nullptr) return memFullErr;
    width_ = width;
    height_ = height;
    stride_ = stride;
    return noErr;
}

void PixelImage::Fill(std::uint32_t pixel) {
    for (std::int32_t y = 0; y < height_; ++y) std::fill_n(Row(y), width_, pixel);
}

} // namespace qt
