// What scripts set for all image results to come. It lives as long as the plug-in is started.
#pragma once

#include <cstdint>

namespace corvane {

/// How Media_ConvertImage encodes. -1 in any of them: the encoder's own choice.
struct ConversionSettings {
    std::int32_t depth = -1;    ///< bits per pixel
    double horizontal_dpi = -1; ///< when set, both resolutions are
    double vertical_dpi = -1;
    std::int32_t target_bytes = -1; ///< goes before quality
    std::int32_t quality = -1;      ///< 0 lowest, 512 normal, 1023 highest lossy, 1024 lossless
    std::int32_t image_index = -1;  ///< from 1
    std::int32_t transcode = -1;    ///< whether compressed data is passed on as it is
    std::int32_t pack_bits = -1;    ///< compression method 32773, or 1
    std::int32_t interlace = -1;    ///< compression method 1, or 0; goes before pack_bits
};
ConversionSettings& CurrentConversionSettings();

/// The JPEG preview beside an image that hosts can't show.
struct PreviewSettings {
    std::int32_t quality = 512; ///< -1: no previews
    bool mark = true;           ///< thin lines across the picture say that it is a preview
};
PreviewSettings& CurrentPreviewSettings();

/// Brings both to their values at start.
void ResetImageSettings();

} // namespace corvane
