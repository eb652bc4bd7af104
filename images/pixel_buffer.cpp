#include "images/pixel_buffer.h"

#include "plugin/errors.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace corvane {

namespace {

constexpr std::size_t kPixelBytes = 4;
constexpr std::size_t kRowAlignment = 16;
constexpr std::size_t kBaseAlignment = 4096;
constexpr std::uint32_t kMaximumDimension = 30'000;
constexpr std::size_t kMaximumBytes = std::size_t{1} << 30;

} // namespace

std::int32_t CreatePixelBuffer(std::uint32_t width, std::uint32_t height, PixelBufferHandle* result) {
    if (result == nullptr) return kErrorWrongParameter;
    PixelBufferHandle buffer(new (std::nothrow) CPixelBuffer);
    if (buffer == nullptr) return kErrorOutOfMemory;
    const std::int32_t code = buffer->Allocate(width, height);
    if (code == 0) *result = std::move(buffer);
    return code;
}

void CPixelBuffer::Release() {
    delete this;
}

std::int32_t CPixelBuffer::Allocate(std::uint32_t width, std::uint32_t height) {
    if (width > kMaximumDimension || height > kMaximumDimension) return kErrorOutOfMemory;
    const std::size_t row_bytes = (width * kPixelBytes + kRowAlignment - 1) & ~(kRowAlignment - 1);
    const std::size_t bytes = row_bytes * height;
    if (bytes > kMaximumBytes) return kErrorOutOfMemory;

    std::size_t space = bytes + kBaseAlignment - 1;
    try {
        block_ = std::make_unique_for_overwrite<std::byte[]>(space);
    } catch (const std::bad_alloc&) {
        return kErrorOutOfMemory;
    }
    void* base = block_.get();
    base_ = static_cast<std::byte*>(std::align(kBaseAlignment, bytes, base, space));
    width_ = width;
    height_ = height;
    row_bytes_ = static_cast<std::uint32_t>(row_bytes);

    SetColor(255, 255, 255);
    FillRect(0, 0, static_cast<std::int32_t>(width) - 1, static_cast<std::int32_t>(height) - 1);
    SetColor(0, 0, 0);
    return 0;
}

void CPixelBuffer::SetColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    color_ = {red, green, blue, 0};
}

void CPixelBuffer::GetColor(std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) const {
    red = color_[0];
    green = color_[1];
    blue = color_[2];
}

void CPixelBuffer::FillRect(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) {
    if (!Contains(x1, y1) || !Contains(x2, y2)) return;
    const auto [left, right] = std::minmax(x1, x2);
    const auto [top, bottom] = std::minmax(y1, y2);
    const Pixel color = color_; // a copy that the pixels can't be taken to overwrite
    for (std::int32_t y = top; y <= bottom; ++y) {
        std::byte* pixel = Address(left, y);
        for (std::int32_t x = left; x <= right; ++x, pixel += kPixelBytes) {
            std::memcpy(pixel, color.data(), kPixelBytes);
        }
    }
}

void CPixelBuffer::MoveTo(std::int32_t x, std::int32_t y) {
    pen_x_ = x;
    pen_y_ = y;
}

void CPixelBuffer::LineTo(std::int32_t x, std::int32_t y) {
    const std::int64_t dx = std::abs(std::int64_t{pen_x_} - x);
    const std::int64_t dy = std::abs(std::int64_t{pen_y_} - y);
    const bool steep = dx < dy;
    const std::int64_t longer = steep ? dy : dx;
    const std::int64_t shorter = steep ? dx : dy;
    const std::int32_t right = pen_x_ > x ? -1 : 1;
    const std::int32_t down = pen_y_ > y ? -1 : 1;

    std::int32_t px = pen_x_;
    std::int32_t py = pen_y_;
    std::int64_t decision = 2 * shorter - longer;
    for (std::int64_t left = longer;; --left) {
        SetPixel(px, py);
        if (left == 0) break;
        const bool diagonal = decision >= 0;
        decision += 2 * (diagonal ? shorter - longer : shorter);
        if (diagonal || !steep) px += right;
        if (diagonal || steep) py += down;
    }
}

void CPixelBuffer::SetPixel(std::int32_t x, std::int32_t y) {
    if (Contains(x, y)) std::memcpy(Address(x, y), color_.data(), kPixelBytes);
}

/// Negative coordinates are large ones here.
bool CPixelBuffer::Contains(std::int32_t x, std::int32_t y) const {
    return static_cast<std::uint32_t>(x) < width_ && static_cast<std::uint32_t>(y) < height_;
}

std::byte* CPixelBuffer::Address(std::int32_t x, std::int32_t y) const {
    return base_ + static_cast<std::size_t>(y) * row_bytes_ + static_cast<std::size_t>(x) * kPixelBytes;
}

} // namespace corvane
