// What stands in front of a Photoshop document's merged image.
#pragma once

#include "platform/quicktime/image_codecs/raster.h"

namespace qt {

struct PsdHeader {
    enum Mode : std::uint32_t {
        kBitmap = 0,
        kGrey = 1,
        kIndexed = 2,
        kRgb = 3,
        kCmyk = 4,
        kMultichannel = 7,
        kDuotone = 8,
        kLab = 9
    };

    bool is_large = false; ///< counts and sizes of layers and rows are wider
    std::uint32_t channels = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t depth = 0; ///< bits of a sample: 1, 8, 16, or 32 for floating point
    std::uint32_t mode = 0;
    Palette palette{};
    bool has_alpha = false; ///< the channel behind the colours is the merged image's transparency
    double horizontal_dpi = 0.0;
    double vertical_dpi = 0.0;
    std::uint64_t resources_at = 0;
    std::uint64_t resources_size = 0; ///< never beyond the end of the data
    std::uint64_t image_at = 0;       ///< the merged image: compression, then rows

    /// Channels that make colours: 1, 3, or 4 inks.
    [[nodiscard]] std::uint32_t ColourChannels() const;
    [[nodiscard]] std::uint32_t PaintedChannels() const { return ColourChannels() + (has_alpha ? 1 : 0); }
    [[nodiscard]] bool IsGrey() const;
};

inline constexpr std::uint32_t kPsdResolution = 1005; ///< image resource: dots per inch
inline constexpr std::uint32_t kPsdAlphaNames = 1006; ///< names of the channels behind the colours

/// False when the data is no document that can be read.
bool ReadPsdHeader(DataSource& source, PsdHeader& header);
ComponentResult DescribePsd(const PsdHeader& header, ImageDescription& description);

} // namespace qt
