#include "platform/quicktime/image_codecs/codec.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qt {
namespace {

/// In the order in which content is tried: the formats without a signature come last.
constexpr std::array kCodecs = {
    &kJpegCodec,           //
    &kPngCodec,            //
    &kTiffCodec,           //
    &kGifCodec,            //
    &kBmpCodec,            //
    &kJpeg2000Codec,       //
    &kPhotoshopCodec,      //
    &kQuickTimeImageCodec, //
    &kPictCodec,           //
    &kSgiCodec,            //
    &kPcxCodec,            //
    &kMacPaintCodec,       //
    &kTgaCodec,            //
};

template <class Predicate>
const ImageCodec* Find(Predicate matches) {
    const auto* found = std::ranges::find_if(kCodecs, matches);
    return found != kCodecs.end() ? *found : nullptr;
}

} // namespace

std::span<const ImageCodec* const> ImageCodecs() {
    return kCodecs;
}

const ImageCodec* FindImageCodec(std::span<const std::byte> head) {
    return Find([&](const ImageCodec* codec) { return codec->sniff(head); });
}

const ImageCodec* FindImageCodec(OSType type) {
    return Find(
        [&](const ImageCodec* codec) { return std::ranges::find(codec->types, type) != codec->types.end(); });
}

ComponentResult SetDimensions(ImageDescription& description, std::uint32_t width, std::uint32_t height) {
    if (width == 0 || height == 0) return codecBadDataErr;
    if (width > kMaximumDimension || height > kMaximumDimension) return codecSizeErr;
    description.width = static_cast<std::int16_t>(width);
    description.height = static_cast<std::int16_t>(height);
    return noErr;
}

Fixed FixedResolution(double dots_per_inch) {
    if (!(dots_per_inch > 0.0)) return 72 << 16;
    return static_cast<Fixed>(std::lround(std::min(dots_per_inch, 32'767.0) * 65'536.0));
}

} // namespace qt
