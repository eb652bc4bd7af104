// What an image format's encoder supplies: one file here and one row in table.cpp.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/image_description.h"
#include "platform/quicktime/pixel_image.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace qt {

/// How an image is to be encoded; what is not set is the encoder's own choice.
struct ExportSettings {
    std::optional<std::int32_t>
        depth; ///< 1, 2, 4, 8 palette; 16, 24, 32; 33, 34, 36, 40 for 1 to 8 bits of grey
    std::optional<Fixed> horizontal_resolution; ///< dots per inch
    std::optional<Fixed> vertical_resolution;
    std::optional<std::int32_t> quality; ///< 0 lowest, 512 normal, 1023 highest lossy, 1024 lossless
    std::optional<std::uint32_t>
        target_size; ///< bytes that the result should not exceed; goes before quality
    /// 1 none, 5 LZW, 8 Deflate, 32773 PackBits where the format has such methods; for formats that can be
    /// interlaced (or progressive) 1 says so and 0 not.
    std::optional<std::int32_t> compression_method;
};

using EncodedBytes = std::vector<std::byte>;

struct ImageExporter {
    std::span<const OSType> types;        ///< the file type first, then others that open the same exporter
    std::string_view extension;           ///< of file names, without the point
    std::string_view description;         ///< "PNG", as lists show it
    std::span<const std::int32_t> depths; ///< that the settings dialog offers, the usual one first
    bool has_quality;
    bool has_target_size;
    std::span<const std::int32_t> methods; ///< compression methods that the settings dialog offers
    /// Encodes the pixels behind what `out` holds. A setting that the format lacks is passed over; a depth is
    /// brought to the nearest that the format has. codecSizeErr for dimensions that the format can't hold.
    /// May throw std::bad_alloc; what `out` then holds behind its first bytes is worth nothing.
    ComponentResult (*encode)(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out);
    /// Passes the source's compressed data on without decoding when the format can do that; false when it
    /// can't for this source. Null: never.
    bool (*transcode)(DataSource& source, const ImageDescription& description, const ExportSettings& settings,
                      EncodedBytes& out) = nullptr;
};

std::span<const ImageExporter* const> ImageExporters();
/// The exporter of a type; null when there is none.
const ImageExporter* FindImageExporter(OSType type);

extern const ImageExporter kJpegExporter;
extern const ImageExporter kPngExporter;
extern const ImageExporter kTiffExporter;
extern const ImageExporter kGifExporter;
extern const ImageExporter kJpeg2000Exporter;
extern const ImageExporter kBmpExporter;
extern const ImageExporter kTgaExporter;
extern const ImageExporter kSgiExporter;
extern const ImageExporter kMacPaintExporter;
extern const ImageExporter kPhotoshopExporter;
extern const ImageExporter kPictExporter;
extern const ImageExporter kQuickTimeImageExporter;

} // namespace qt
