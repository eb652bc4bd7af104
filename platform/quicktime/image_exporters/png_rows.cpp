#include "platform/quicktime/image_exporters/png_rows.h"

#include "platform/quicktime/image_exporters/opaque_rows.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <span>

namespace qt {
namespace {

struct Pass {
    std::int32_t left, top;
    std::int32_t across, down; ///< distances of its pixels
};

constexpr std::array<Pass, 1> kWhole = {{{0, 0, 1, 1}}};
constexpr std::array<Pass, 7> kInterlaced = {{
    {0, 0, 8, 8},
    {4, 0, 8, 8},
    {0, 4, 4, 8},
    {2, 0, 4, 4},
    {0, 2, 2, 4},
    {1, 0, 2, 2},
    {0, 1, 1, 2},
}};

std::int32_t CountOf(std::int32_t size, std::int32_t first, std::int32_t distance) {
    return size > first ? (size - first + distance - 1) / distance : 0;
}

/// Every `step`-th pixel in the file's order of bytes.
void PackRgb(const std::uint32_t* pixels, std::size_t count, std::size_t step, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i, pixels += step, out += 3) {
        out[0] = static_cast<std::uint8_t>(*pixels >> 16);
        out[1] = static_cast<std::uint8_t>(*pixels >> 8);
        out[2] = static_cast<std::uint8_t>(*pixels);
    }
}

void PackRgba(const std::uint32_t* pixels, std::size_t count, std::size_t step, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i, pixels += step, out += 4) {
        const std::uint32_t turned =
            (*pixels & 0xFF00'FF00U) | (*pixels >> 16 & 0xFF) | (*pixels & 0xFF) << 16;
        std::memcpy(out, &turned, sizeof turned);
    }
}

void PackGrey(const std::uint32_t* pixels, std::size_t count, std::size_t step, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i, pixels += step) out[i] = static_cast<std::uint8_t>(*pixels);
}

void PackIndices(const std::uint8_t* indices, std::size_t count, std::size_t step, unsigned bits,
                 std::uint8_t* out) {
    const std::size_t per_byte = 8 / bits;
    for (std::size_t i = 0; i < count;) {
        unsigned byte = 0;
        for (std::size_t k = 0; k < per_byte; ++k, ++i) {
            byte = byte << bits | (i < count ? indices[i * step] : 0U);
        }
        *out++ = static_cast<std::uint8_t>(byte);
    }
}

void Pack(const PngPixels& pixels, std::int32_t y, const Pass& pass, std::size_t count,
          std::vector<std::uint32_t>& scratch, std::uint8_t* out) {
    const auto left = static_cast<std::size_t>(pass.left);
    const auto step = static_cast<std::size_t>(pass.across);
    if (pixels.indexed != nullptr) {
        const auto row = static_cast<std::size_t>(y) * static_cast<std::size_t>(pixels.indexed->width);
        return PackIndices(pixels.indexed->indices.data() + row + left, count, step, pixels.bits, out);
    }
    if (pixels.bits == 32) return PackRgba(pixels.image->Row(y) + left, count, step, out);
    const std::uint32_t* row = OpaqueRow(*pixels.image, y, scratch.data()) + left;
    return pixels.bits == 24 ? PackRgb(row, count, step, out) : PackGrey(row, count, step, out);
}

/// Differences from neighbours: `row` and `above` have a pixel of zeros in front.
struct Filters {
    std::size_t size; ///< of a row
    std::size_t unit; ///< bytes a pixel

    void Sub(const std::uint8_t* row, std::uint8_t* out) const {
        const std::uint8_t* left = row - unit;
        for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>(row[i] - left[i]);
    }
    void Up(const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* out) const {
        for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>(row[i] - above[i]);
    }
    void Paeth(const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* out) const {
        const std::uint8_t* left = row - unit;
        const std::uint8_t* left_above = above - unit;
        for (std::size_t i = 0; i < size; ++i) {
            const int a = left[i];
            const int b = above[i];
            const int c = left_above[i];
            const int to_a = std::abs(b - c);
            const int to_b = std::abs(a - c);
            const int to_c = std::abs(a + b - 2 * c);
            const int other = to_b <= to_c ? b : c;
            out[i] = static_cast<std::uint8_t>(row[i] - (to_a <= to_b && to_a <= to_c ? a : other));
        }
    }
};

/// How much is left in filtered bytes, taken as signed.
std::uint32_t Cost(const std::uint8_t* bytes, std::size_t size) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        sum += static_cast<std::uint32_t>(std::abs(static_cast<int>(static_cast<std::int8_t>(bytes[i]))));
    }
    return sum;
}

/// Filters rows one after the other, each with its best filter.
class RowFilter {
public:
    RowFilter(std::size_t size, std::size_t unit)
        : filters_{size, unit}, row_(unit + size), above_(unit + size) {
        for (auto& candidate : candidates_) candidate.resize(size);
    }

    /// Where the next row is to be packed.
    std::uint8_t* Row() { return row_.data() + filters_.unit; }

    /// Writes that row filtered, behind its filter's number.
    void Write(std::uint8_t* out) {
        constexpr std::array<std::uint8_t, 3> kNumbers = {1, 2, 4};
        const std::uint8_t* row = Row();
        const std::uint8_t* above = above_.data() + filters_.unit;
        filters_.Sub(row, candidates_[0].data());
        filters_.Up(row, above, candidates_[1].data());
        filters_.Paeth(row, above, candidates_[2].data());
        std::size_t best = 0;
        std::uint32_t least = UINT32_MAX;
        for (std::size_t i = 0; i < candidates_.size(); ++i) {
            const std::uint32_t cost = Cost(candidates_[i].data(), filters_.size);
            if (cost < least) {
                least = cost;
                best = i;
            }
        }
        *out = kNumbers[best];
        std::copy_n(candidates_[best].data(), filters_.size, out + 1);
        row_.swap(above_);
    }

private:
    Filters filters_;
    std::vector<std::uint8_t> row_;
    std::vector<std::uint8_t> above_;
    std::array<std::vector<std::uint8_t>, 3> candidates_;
};

} // namespace

std::vector<std::uint8_t> PngRows(const PngPixels& pixels, bool interlaced) {
    const std::span<const Pass> passes =
        interlaced ? std::span<const Pass>(kInterlaced) : std::span<const Pass>(kWhole);
    const std::int32_t width = pixels.image->width();
    const std::int32_t height = pixels.image->height();
    const auto row_size = [&](const Pass& pass) {
        return (static_cast<std::size_t>(CountOf(width, pass.left, pass.across)) * pixels.bits + 7) / 8;
    };
    std::size_t size = 0;
    for (const Pass& pass : passes) {
        if (row_size(pass) > 0)
            size += (1 + row_size(pass)) * static_cast<std::size_t>(CountOf(height, pass.top, pass.down));
    }
    std::vector<std::uint8_t> rows(size);
    std::vector<std::uint32_t> scratch(pixels.image->has_alpha ? static_cast<std::size_t>(width) : 0);
    std::uint8_t* out = rows.data();
    for (const Pass& pass : passes) {
        const auto count = static_cast<std::size_t>(CountOf(width, pass.left, pass.across));
        if (count == 0) continue;
        RowFilter filter(row_size(pass), std::max(pixels.bits / 8, 1U));
        for (std::int32_t y = pass.top; y < height; y += pass.down) {
            if (pixels.indexed != nullptr) {
                *out = 0;
                Pack(pixels, y, pass, count, scratch, out + 1);
            } else {
                Pack(pixels, y, pass, count, scratch, filter.Row());
                filter.Write(out);
            }
            out += 1 + row_size(pass);
        }
    }
    return rows;
}

} // namespace qt
