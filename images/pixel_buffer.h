// A drawing surface of 32-bit pixels: red, green, blue and a fourth byte that is always 0.
//
// Coordinates are pixel indices from (0, 0) at the top left, bounds are inclusive. Drawing never fails: what
// lies outside the surface isn't painted.
#pragma once

#include "plugin/host_data.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvane {

/// The operations stand in the order of their slots in the function table.
class IPixelBuffer {
public:
    /// Destroys the object.
    virtual void Release() = 0;

    /// First pixel, at a 4,096-byte boundary.
    [[nodiscard]] virtual std::byte* GetBaseAddress() = 0;
    /// Distance between rows in bytes, a multiple of 16.
    [[nodiscard]] virtual std::uint32_t GetRowBytes() const = 0;
    [[nodiscard]] virtual std::uint32_t GetWidth() const = 0;
    [[nodiscard]] virtual std::uint32_t GetHeight() const = 0;

    virtual void SetColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) = 0;
    virtual void GetColor(std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) const = 0;

    /// Corners in any order. A rectangle that is partly outside is not painted at all.
    virtual void FillRect(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) = 0;
    virtual void MoveTo(std::int32_t x, std::int32_t y) = 0;
    /// Draws from the pen to the point, both included. The pen stays where it is.
    virtual void LineTo(std::int32_t x, std::int32_t y) = 0;
    virtual void SetPixel(std::int32_t x, std::int32_t y) = 0;

    virtual ~IPixelBuffer() = default;

    /// Takes new memory for the pixels: white, with black as the colour. -108 without memory, and for more
    /// than 30,000 pixels in either direction or 1 GiB in all.
    virtual std::int32_t Allocate(std::uint32_t width, std::uint32_t height) = 0;

    IPixelBuffer(const IPixelBuffer&) = delete;
    IPixelBuffer& operator=(const IPixelBuffer&) = delete;

protected:
    IPixelBuffer() = default;
};

struct PixelBufferReleaser {
    void operator()(IPixelBuffer* buffer) const { buffer->Release(); }
};
using PixelBufferHandle = std::unique_ptr<IPixelBuffer, PixelBufferReleaser>;

/// -50 without a place for the result, -108 as for Allocate.
std::int32_t CreatePixelBuffer(std::uint32_t width, std::uint32_t height, PixelBufferHandle* result);

/// Makes a JPEG image of the surface the result: streams "JPEG", in the highest lossy quality, and "SIZE".
/// Answers a code without a message, and leaves the result alone, when that fails: -50 without a buffer or
/// for one without pixels, -108, or what the encoder or the host answers.
std::int32_t EncodePixelBufferAsJPEG(FM_Data& result, IPixelBuffer* buffer);

class CPixelBuffer final : public IPixelBuffer {
public:
    void Release() override;
    [[nodiscard]] std::byte* GetBaseAddress() override { return base_; }
    [[nodiscard]] std::uint32_t GetRowBytes() const override { return row_bytes_; }
    [[nodiscard]] std::uint32_t GetWidth() const override { return width_; }
    [[nodiscard]] std::uint32_t GetHeight() const override { return height_; }
    void SetColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) override;
    void GetColor(std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) const override;
    void FillRect(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) override;
    void MoveTo(std::int32_t x, std::int32_t y) override;
    void LineTo(std::int32_t x, std::int32_t y) override;
    void SetPixel(std::int32_t x, std::int32_t y) override;
    std::int32_t Allocate(std::uint32_t width, std::uint32_t height) override;

private:
    using Pixel = std::array<std::uint8_t, 4>;

    [[nodiscard]] bool Contains(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::byte* Address(std::int32_t x, std::int32_t y) const;

    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    std::int32_t pen_x_ = 0;
    std::int32_t pen_y_ = 0;
    std::byte* base_ = nullptr; ///< inside block_
    std::unique_ptr<std::byte[]> block_;
    std::uint32_t row_bytes_ = 0;
    Pixel color_{};
};

} // namespace corvane
