// Checks that every image format goes through: against ImageMagick, and with damaged data.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"
#include "tests/quicktime/pixels.h"
#include "tests/support/made_images.h"

#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// The last three letters of a text item's type, and the text.
using Texts = std::vector<std::pair<std::string, std::string>>;

Bytes BytesOf(std::initializer_list<int> values);
Bytes BytesOf(std::string_view text);
/// What is left of data that breaks off.
Bytes Prefix(const Bytes& bytes, std::size_t size);

/// A marker segment behind the start of the image.
Bytes WithSegment(const Bytes& jpeg, int marker, std::string_view content);

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
/// In decibels, over all channels.
double Psnr(const Bytes& left, const Bytes& right);

/// The codec that the content opens.
const qt::ImageCodec* SniffedCodec(const Bytes& bytes);
ComponentResult FactsCode(const qt::ImageCodec& codec, const Bytes& bytes);
/// Expecting success, as do the next two.
qt::ImageFacts FactsOf(const qt::ImageCodec& codec, const Bytes& bytes);
qt::PixelImage DecodeWhole(const qt::ImageCodec& codec, const Bytes& bytes, std::uint32_t index = 1);
/// The text items in their order.
Texts TextsOf(const qt::ImageCodec& codec, const Bytes& bytes);
/// Dots per inch, horizontal and vertical.
std::pair<int, int> ResolutionOf(const qt::ImageCodec& codec, const Bytes& bytes);
/// A line for each row: '#' black, '.' white, r, g, b pure colours, '?' others.
std::string Drawn(const qt::ImageCodec& codec, const Bytes& bytes);

/// Makes each sample and expects that its content opens this codec, what its header says, the pixels that
/// ImageMagick decodes with these options, and a result or a code for it cut at every tenth byte (at most 400
/// cuts) and with `flips` single bits flipped, or without damage when that is 0.
void ExpectSamplesAreRead(const qt::ImageCodec& codec, std::span<const Sample> samples,
                          const std::string& options = "", int flips = 300);
void ExpectDamageIsSurvived(const qt::ImageCodec& codec, const Bytes& whole, int flips = 300);
/// Facts, pixels of the first and the last image and texts end in a result within the limits or a code.
/// Images of more pixels than those are not decoded.
void ExpectResultOrCode(const qt::ImageCodec& codec, const Bytes& bytes,
                        int most_pixels = std::numeric_limits<int>::max());
/// Decoding fails with the code before memory is taken.
void ExpectNoRoomIsTaken(const qt::ImageCodec& codec, const Bytes& bytes, ComponentResult code);

} // namespace corvane::test
