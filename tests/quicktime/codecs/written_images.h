// Images that exporters write, and what reads them.
#pragma once

#include "platform/quicktime/image_exporters/exporter.h"
#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

namespace corvane::test {

inline qt::ExportSettings AtDepth(std::int32_t depth) {
    qt::ExportSettings settings;
    settings.depth = depth;
    return settings;
}

inline qt::ExportSettings AtResolution(int horizontal, int vertical) {
    qt::ExportSettings settings;
    settings.horizontal_resolution = horizontal << 16;
    settings.vertical_resolution = vertical << 16;
    return settings;
}

/// An image that ImageMagick makes with these arguments, 8 bits a channel.
inline qt::PixelImage MadeImage(const MadeImages& images, const std::string& arguments) {
    return DecodeWhole(qt::kPngCodec, images.MakeBytes(arguments + " -depth 8", "source.png"));
}

inline Bytes Written(OSType type, const qt::PixelImage& image, const qt::ExportSettings& settings = {}) {
    qt::EncodedBytes bytes;
    EXPECT_EQ(qt::FindImageExporter(type)->encode(image, settings, bytes), noErr);
    return bytes;
}

/// As ImageMagick decodes it.
inline Bytes MagickReads(const MadeImages& images, const Bytes& bytes, const std::string& name) {
    std::ofstream(images.folder.Path(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return MagickRgba(images, images.folder.Path(name));
}

} // namespace corvane::test
