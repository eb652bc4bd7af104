// Checks that every image format goes through: against ImageMagick, and with damaged data.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"
#include "tests/support/made_images.h"

#include <string>
#include <vector>

namespace corvane::test {

/// An image file made by ImageMagick's convert, and what its header says.
struct Sample {
    const char* arguments;
    const char* file; ///< with the prefix of the format where it matters: "bmp3:a.bmp"
    int depth;
    int tolerance = 0; ///< by which a channel may differ from what ImageMagick decodes
};

/// Rows of red, green, blue and alpha; the colours of what can't be seen at all are 0.
Bytes RgbaOf(const qt::PixelImage& image);
/// The same as ImageMagick decodes it; `path` may end in "[1]" for another image than the first.
Bytes MagickRgba(const MadeImages& images, const std::string& path, const std::string& options = "");
/// The largest difference of two channels; -1 for another count of them.
int Difference(const Bytes& left, const Bytes& right);

/// Decodes, expecting success.
qt::PixelImage DecodeWhole(const qt::ImageCodec& codec, const Bytes& bytes, std::uint32_t index = 1);

/// Makes each sample and expects that its content opens this codec, what its header says, and the
/// pixels that ImageMagick decodes with these options.
void ExpectSamplesAreRead(const qt::ImageCodec& codec, std::span<const Sample> samples,
                          const std::string& options = "");

/// Cut at every tenth byte (at most 400 cuts), and with `flips` single bits flipped: facts, pixels and texts
/// end in a result within the limits or a code.
void ExpectDamageIsSurvived(const qt::ImageCodec& codec, const Bytes& whole, int flips = 300);

} // namespace corvane::test
