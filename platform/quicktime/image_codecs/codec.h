// What an image format supplies: one file here and one row in table.cpp.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/image_description.h"
#include "platform/quicktime/pixel_image.h"

#include <span>
#include <string>
#include <vector>

namespace qt {

inline constexpr std::uint32_t kMaximumDimension = 30'000; ///< pixels, either way

struct ImageFacts {
    ImageDescription description;
    std::uint32_t image_count = 1;
    std::uint64_t data_offset = 0; ///< of the image's data in its source, and its size, in bytes
    std::uint64_t data_size = 0;
};

/// A text that the image carries. Types of readable texts begin with 0xA9: '\xA9nam'.
struct MetadataItem {
    OSType type = 0;
    std::string text; ///< ISO-8859-1
};

/// Pixels of a part of an image, or of all of it.
struct DecodedPart {
    PixelImage image;
    std::int32_t left = 0; ///< of the first pixel, in the coordinates of the whole image
    std::int32_t top = 0;
    std::int32_t reduction = 1; ///< side of the square of the image's pixels that each pixel stands for
};

struct ImageCodec {
    std::span<const OSType> types; ///< subtypes of the format's importer
    /// Whether data that begins so (kSniffedBytes, or all of shorter data) is of this format.
    bool (*sniff)(std::span<const std::byte> head);
    /// Reads as much of the source as the facts need: headers, not pixels. codecBadDataErr for broken data,
    /// codecSizeErr for dimensions above the limit, memFullErr.
    ComponentResult (*read_facts)(DataSource& source, ImageFacts& facts);
    bool validates; ///< read_facts fails on data that can't be decoded; else the format has no validation
    /// Decodes the image of that index, from 1. Data that breaks off gives the rows that are there (the rest
    /// white) when at least a part was decoded; codecBadDataErr when nothing was. Dimensions are checked
    /// against the limits, and against the data where the format allows it, before memory is taken.
    ComponentResult (*decode)(DataSource& source, std::uint32_t index, PixelImage& image) = nullptr;
    /// Appends the image's text items in their order. Null: the format has none.
    ComponentResult (*read_metadata)(DataSource& source, std::vector<MetadataItem>& items) = nullptr;
    /// Decodes no more of the image than its part needs, which lies in it, in pixels that stand for squares
    /// of at most `reduction` (1, 2, 4 or 8), as decode does. Null: only whole images.
    ComponentResult (*decode_part)(DataSource& source, std::uint32_t index, const Rect& part,
                                   std::int32_t reduction, DecodedPart& out) = nullptr;
    /// Describes the image of that index, from 1, as read_facts does the first. Null: all images of a source
    /// have one description.
    ComponentResult (*describe)(DataSource& source, std::uint32_t index,
                                ImageDescription& description) = nullptr;
};

inline constexpr std::size_t kSniffedBytes = 1024;

std::span<const ImageCodec* const> ImageCodecs();
/// The codec for data that begins so, or for a type; null when there is none.
const ImageCodec* FindImageCodec(std::span<const std::byte> head);
const ImageCodec* FindImageCodec(OSType type);

/// Takes over the dimensions when they are within the limits.
ComponentResult SetDimensions(ImageDescription& description, std::uint32_t width, std::uint32_t height);
/// Dots per inch as fixed point; 72 for what is no positive number, and held at 32,767.
Fixed FixedResolution(double dots_per_inch);

/// Unsigned integers of files, most significant byte first.
constexpr std::uint32_t BigEndian16(const std::byte* bytes) {
    return std::to_integer<std::uint32_t>(bytes[0]) << 8 | std::to_integer<std::uint32_t>(bytes[1]);
}
constexpr std::uint32_t BigEndian32(const std::byte* bytes) {
    return BigEndian16(bytes) << 16 | BigEndian16(bytes + 2);
}

extern const ImageCodec kJpegCodec;
extern const ImageCodec kPngCodec;
extern const ImageCodec kTiffCodec;
extern const ImageCodec kGifCodec;
extern const ImageCodec kBmpCodec;
extern const ImageCodec kJpeg2000Codec;
extern const ImageCodec kSgiCodec;
extern const ImageCodec kPcxCodec;
extern const ImageCodec kTgaCodec;
extern const ImageCodec kPhotoshopCodec;
extern const ImageCodec kQuickTimeImageCodec;
extern const ImageCodec kPictCodec;
extern const ImageCodec kMacPaintCodec;

} // namespace qt
