// The typed streams of a container: which one is the image, how it is read, and how results are built.
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/handles.h"
#include "plugin/host_data.h"

#include <optional>
#include <string_view>

namespace corvane {

/// Answer of GetMainImageType for a parameter that names a file instead of holding an image.
inline constexpr std::uint32_t kReferenceType = FourCC("ref ");

/// Bytes in front of the picture in a picture file, which streams of pictures lack.
inline constexpr std::uint32_t kPictureHeaderSize = 512;

/// The type code of a text parameter: four bytes, of which a "|" and anything may follow; 0 for the empty
/// text, which leaves the choice to the source. Nothing when it is none and that is reported.
std::optional<std::uint32_t> ParseImageTypeCode(const FM_Data* parameter);

/// File-name extension of an image type, without the dot; empty for a type that has none.
std::string_view ImageTypeExtension(std::uint32_t type);

/// Type of the stream that is the image, kReferenceType for a text or a container without streams, or 0
/// when there is none and that is reported.
std::uint32_t GetMainImageType(const FM_Data* parameter);

/// A stream's bytes; null when they can't be had and that is reported.
qt::MemoryHandle GetStreamData(const FM_BinaryData* container, std::uint32_t type);

/// An image stream as decoders read it: a picture (type "PICT") stands behind a header of 512 zero bytes,
/// as in a picture file, and an image of the plug-in's own wrapper type "CVIM" is unwrapped. `data` is null
/// when there is none: reported, unless the parameter's type is kReferenceType (which `type` then is).
struct MainImage {
    qt::MemoryHandle data;
    std::uint32_t type = 0;
};
MainImage GetMainImageData(const FM_Data* parameter);

/// Appends a stream with a copy of the bytes.
void AddStream(FM_BinaryData* container, std::uint32_t type, std::span<const std::byte> bytes);

/// Appends a stream with what a source holds from `offset` on, but at most so many bytes, read piece by
/// piece. Without memory, with too many bytes for a stream (32 bits), or when reading fails: a code, and
/// nothing is appended.
std::int32_t AddStreamFrom(FM_BinaryData* container, std::uint32_t type, qt::DataSource& source,
                           std::uint64_t offset = 0, std::uint64_t most = UINT64_MAX);

/// Appends a "SIZE" stream: width and height in pixels, 16 bits each, high byte first.
void AddSizeStream(FM_BinaryData* container, std::int32_t width, std::int32_t height);

} // namespace corvane
