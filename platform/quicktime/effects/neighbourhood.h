// Walking over an image with the eight neighbours of each pixel at hand.
#pragma once

#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/rows.h"

#include <array>
#include <cstring>
#include <vector>

namespace qt {

/// Three rows of channel bytes. Each begins with the left neighbour of the row's first pixel and ends with
/// the right one of its last: those of channel byte i are at i and i + 8, its own value is at i + 4.
struct Neighbourhood {
    const std::uint8_t* above;
    const std::uint8_t* middle;
    const std::uint8_t* below;
};

/// Calls draw(neighbourhood, bytes, count) for each row; it writes `count` channel bytes (blue, green, red,
/// alpha). Alpha is then made that of the source. Beyond the edges the outermost pixels go on. With `grey`
/// the three colours are the pixel's brightness.
template <class Draw>
void EachNeighbourhood(const PixelImage& in, bool grey, PixelImage& out, Draw draw) {
    const auto width = static_cast<std::size_t>(in.width());
    DrawInBands(in.height(), PixelCount(in), [&](std::int32_t first, std::int32_t last) {
        std::array<std::vector<std::uint32_t>, 3> rows;
        const auto load = [&](std::int32_t y, std::vector<std::uint32_t>& padded) {
            const std::uint32_t* row = in.Row(std::clamp(y, 0, in.height() - 1));
            padded.resize(width + 2);
            for (std::size_t x = 0; x < width; ++x) padded[x + 1] = grey ? Luma(row[x]) * 0x01'0101 : row[x];
            padded.front() = padded[1];
            padded.back() = padded[width];
        };
        const auto bytes = [](const std::vector<std::uint32_t>& row) {
            return reinterpret_cast<const std::uint8_t*>(row.data());
        };
        load(first - 1, rows[0]);
        load(first, rows[1]);
        for (std::int32_t y = first; y < last; ++y) {
            load(y + 1, rows[2]);
            std::uint32_t* row = out.Row(y);
            draw(Neighbourhood{bytes(rows[0]), bytes(rows[1]), bytes(rows[2])},
                 reinterpret_cast<std::uint8_t*>(row), width * 4);
            const std::uint32_t* source = in.Row(y);
            for (std::size_t x = 0; x < width; ++x)
                row[x] = (row[x] & 0x00FF'FFFF) | (source[x] & 0xFF00'0000);
            std::swap(rows[0], rows[1]);
            std::swap(rows[1], rows[2]);
        }
    });
}

/// How steeply brightness rises to the right, and downwards, around channel byte i: -1020 to 1020.
inline std::int32_t SlopeRight(const Neighbourhood& near, std::size_t i) {
    return near.above[i + 8] - near.above[i] + 2 * (near.middle[i + 8] - near.middle[i]) + near.below[i + 8] -
           near.below[i];
}
inline std::int32_t SlopeDown(const Neighbourhood& near, std::size_t i) {
    return near.below[i] + 2 * near.below[i + 4] + near.below[i + 8] - near.above[i] - 2 * near.above[i + 4] -
           near.above[i + 8];
}

} // namespace qt
