// Effects that treat each colour channel by itself: a table of 256 values for each.
#pragma once

#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/rows.h"

#include <array>

namespace qt {

using ChannelTable = std::array<std::uint8_t, 256>;

/// The table of a function from 0…1 to 0…1; values outside are held at the ends.
template <class Function>
ChannelTable MakeChannelTable(Function function) {
    ChannelTable table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double value = function(static_cast<double>(i) / 255);
        table[i] = static_cast<std::uint8_t>(ToByte(static_cast<float>(value * 255)));
    }
    return table;
}

inline void ApplyTables(const PixelImage& in, const ChannelTable& red, const ChannelTable& green,
                        const ChannelTable& blue, PixelImage& out) {
    EachRow(in, [&](std::int32_t y) {
        const std::uint32_t* source = in.Row(y);
        std::uint32_t* row = out.Row(y);
        for (std::int32_t x = 0; x < in.width(); ++x) {
            const std::uint32_t pixel = source[x];
            row[x] = Pixel(red[Red(pixel)], green[Green(pixel)], blue[Blue(pixel)], Alpha(pixel));
        }
    });
}

inline void ApplyTable(const PixelImage& in, const ChannelTable& table, PixelImage& out) {
    ApplyTables(in, table, table, table, out);
}

} // namespace qt
